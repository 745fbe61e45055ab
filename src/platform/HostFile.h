// The file layer: the one door to the host's files. Every read and write of the core goes through
// it, and so does the fault seam that tests use to play a locked folder, a read-only file, a full
// disk or a failing write (tests run as root, where chmod proves nothing).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct HostFile;  // an open file

enum class FileMode { Read, ReadWrite, Create };

// Result codes: 0 success, -1 any failure.
int32_t OpenHostFile(const std::string& hostPath, FileMode mode, HostFile** file);
void CloseHostFile(HostFile* file);
// Reads or writes exactly `count` bytes; anything shorter is -1.
int32_t ReadHostFile(HostFile* file, void* buffer, uint32_t count);
int32_t WriteHostFile(HostFile* file, const void* buffer, uint32_t count);
int32_t SeekHostFile(HostFile* file, uint64_t offset);
uint64_t TellHostFile(HostFile* file);
int32_t HostFileLength(HostFile* file, uint64_t* length);
int32_t SetHostFileLength(HostFile* file, uint64_t length);

struct HostFileStatus {
    bool exists = false;
    bool readOnly = false;
    bool isFolder = false;
    uint64_t length = 0;
};
HostFileStatus GetHostFileStatus(const std::string& hostPath);
int32_t DeleteHostFile(const std::string& hostPath);
int32_t RenameHostFile(const std::string& from, const std::string& to);
// Bytes free on the volume holding `hostPath`; -1 if unknown.
int64_t HostFreeSpace(const std::string& hostPath);
std::string HostTempFolder();

// Whole files through the same door (and its faults): 0, or -1. The read refuses files of 4 GB
// and more; the write creates the file or replaces what it held.
int32_t ReadWholeHostFile(const std::string& hostPath, std::string* bytes);
int32_t WriteWholeHostFile(const std::string& hostPath, const void* bytes, size_t count);

// The fault seam. Counters count calls since the last reset; an index of 0 injects nothing.
struct FileFaults {
    uint32_t failOpenAt = 0;   // the Nth open fails
    uint32_t failReadAt = 0;   // the Nth read fails
    uint32_t failWriteAt = 0;  // the Nth write fails
    std::string readOnlyPath;  // status says read-only, and opening it for writing fails
    std::string lockedFolder;  // nothing can be created inside this folder
    int64_t freeSpace = -1;    // overrides the volume's free space when not negative
    std::string programFolder;  // stands for the program's folder when not empty
    uint32_t opens = 0, reads = 0, writes = 0;
};
FileFaults& GetFileFaults();
void ResetFileFaults();

// The folder of the program's own files (preferences, media folders, NBAs), as a host path.
std::string HostProgramFolder();
// The program's own file, as a host path.
std::string HostProgramFile();
