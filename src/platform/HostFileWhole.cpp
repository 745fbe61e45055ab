// Whole-file reads and writes on top of the file layer, so that its faults reach them too.
#include <cstdint>
#include <limits>
#include <string>

#include "platform/HostFile.h"

int32_t ReadWholeHostFile(const std::string& hostPath, std::string* bytes) {
    bytes->clear();
    HostFile* file = nullptr;
    if (OpenHostFile(hostPath, FileMode::Read, &file) != 0) return -1;
    uint64_t length = 0;
    int32_t result = HostFileLength(file, &length);
    if (result == 0 && length > std::numeric_limits<uint32_t>::max()) result = -1;
    if (result == 0 && length > 0) {
        bytes->resize(static_cast<size_t>(length));
        result = ReadHostFile(file, bytes->data(), static_cast<uint32_t>(length));
    }
    CloseHostFile(file);
    if (result != 0) bytes->clear();
    return result;
}

int32_t WriteWholeHostFile(const std::string& hostPath, const void* bytes, size_t count) {
    if (count > std::numeric_limits<uint32_t>::max()) return -1;
    HostFile* file = nullptr;
    if (OpenHostFile(hostPath, FileMode::Create, &file) != 0) return -1;
    const int32_t result = WriteHostFile(file, bytes, static_cast<uint32_t>(count));
    CloseHostFile(file);
    return result;
}
