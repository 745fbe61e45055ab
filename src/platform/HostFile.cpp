// POSIX implementation of the file layer; emscripten provides the same calls over its file system.
#include "base/StateRegistry.h"
#include "platform/HostFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

struct HostFile {
    int fd = -1;
};

namespace {

FileFaults gFaults;

bool Injected(uint32_t& counter, uint32_t failAt) { return ++counter == failAt && failAt != 0; }

std::string FolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

FileFaults& GetFileFaults() { return gFaults; }
void ResetFileFaults() { gFaults = FileFaults{}; }

int32_t OpenHostFile(const std::string& hostPath, FileMode mode, HostFile** file) {
    *file = nullptr;
    if (Injected(gFaults.opens, gFaults.failOpenAt)) return -1;
    if (mode != FileMode::Read && !gFaults.readOnlyPath.empty() && hostPath == gFaults.readOnlyPath)
        return -1;
    if (mode == FileMode::Create && !gFaults.lockedFolder.empty() &&
        FolderOf(hostPath) == gFaults.lockedFolder)
        return -1;
    int flags = O_RDONLY;
    if (mode == FileMode::ReadWrite) flags = O_RDWR;
    if (mode == FileMode::Create) flags = O_RDWR | O_CREAT | O_TRUNC;
    const int fd = ::open(hostPath.c_str(), flags | O_CLOEXEC, 0644);
    if (fd < 0) return -1;
    struct stat st;
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        ::close(fd);
        return -1;
    }
    *file = new HostFile{fd};
    return 0;
}

void CloseHostFile(HostFile* file) {
    if (!file) return;
    ::close(file->fd);
    delete file;
}

int32_t ReadHostFile(HostFile* file, void* buffer, uint32_t count) {
    if (Injected(gFaults.reads, gFaults.failReadAt)) return -1;
    auto* out = static_cast<uint8_t*>(buffer);
    uint32_t done = 0;
    while (done < count) {
        const ssize_t n = ::read(file->fd, out + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return -1;
        done += static_cast<uint32_t>(n);
    }
    return 0;
}

int32_t WriteHostFile(HostFile* file, const void* buffer, uint32_t count) {
    if (count == 0) return 0;
    if (Injected(gFaults.writes, gFaults.failWriteAt)) return -1;
    const auto* in = static_cast<const uint8_t*>(buffer);
    uint32_t done = 0;
    while (done < count) {
        const ssize_t n = ::write(file->fd, in + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return -1;
        done += static_cast<uint32_t>(n);
    }
    return 0;
}

int32_t SeekHostFile(HostFile* file, uint64_t offset) {
    return ::lseek(file->fd, static_cast<off_t>(offset), SEEK_SET) < 0 ? -1 : 0;
}

uint64_t TellHostFile(HostFile* file) {
    const off_t at = ::lseek(file->fd, 0, SEEK_CUR);
    return at < 0 ? 0 : static_cast<uint64_t>(at);
}

int32_t HostFileLength(HostFile* file, uint64_t* length) {
    struct stat st;
    if (::fstat(file->fd, &st) != 0) return -1;
    *length = static_cast<uint64_t>(st.st_size);
    return 0;
}

int32_t SetHostFileLength(HostFile* file, uint64_t length) {
    return ::ftruncate(file->fd, static_cast<off_t>(length)) == 0 ? 0 : -1;
}

HostFileStatus GetHostFileStatus(const std::string& hostPath) {
    HostFileStatus status;
    struct stat st;
    if (::stat(hostPath.c_str(), &st) != 0) return status;
    status.exists = true;
    status.isFolder = S_ISDIR(st.st_mode);
    status.length = static_cast<uint64_t>(st.st_size);
    status.readOnly = (st.st_mode & S_IWUSR) == 0 || hostPath == gFaults.readOnlyPath;
    return status;
}

int32_t DeleteHostFile(const std::string& hostPath) {
    return ::unlink(hostPath.c_str()) == 0 ? 0 : -1;
}

int32_t RenameHostFile(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : -1;
}

int64_t HostFreeSpace(const std::string& hostPath) {
    if (gFaults.freeSpace >= 0) return gFaults.freeSpace;
    struct statvfs vfs;
    if (::statvfs(FolderOf(hostPath).c_str(), &vfs) != 0) return -1;
    return static_cast<int64_t>(vfs.f_bavail) * static_cast<int64_t>(vfs.f_frsize);
}

std::string HostTempFolder() {
    const char* dir = std::getenv("TMPDIR");
    return dir && *dir ? dir : "/tmp";
}

std::string HostProgramFile() {
    char path[4096];
    const ssize_t n = ::readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (n <= 0) return "/quillbrook";
    return std::string(path, static_cast<size_t>(n));
}

std::string HostProgramFolder() {
    if (!gFaults.programFolder.empty()) return gFaults.programFolder;
    const std::string file = HostProgramFile();
    return FolderOf(file);
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Platform, ResetFileFaults);
}  // namespace
