#include "platform/HostPath.h"

#include <cctype>
#include <filesystem>

std::string HostPathFromDos(const std::string& dosPath) {
    if (dosPath.size() < 3 || std::toupper(static_cast<unsigned char>(dosPath[0])) != 'C' ||
        dosPath[1] != ':' || dosPath[2] != '\\')
        return "";
    std::string host = dosPath.substr(2);
    for (char& c : host) {
        if (c == '\\') c = '/';
    }
    return host;
}

std::string DosPathFromHost(const std::string& hostPath) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(hostPath, error);
    std::string path = error ? hostPath : absolute.lexically_normal().string();
    for (char& c : path) {
        if (c == '/') c = '\\';
    }
    return "C:" + path;
}
