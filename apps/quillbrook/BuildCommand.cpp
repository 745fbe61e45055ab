// `quillbrook build` and `quillbrook info --json --raw`: a stack from its JSON description, and the
// description of a stack file that builds it back.
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "Commands.h"
#include "StackBuilder.h"
#include "StackInfo.h"
#include "stack/Document.h"
#include "stack/StackReader.h"

namespace {

bool ReadWhole(const std::string& path, std::string* text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    text->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

// The parser's message without its "[json.exception.parse_error.101] " tag.
std::string ParseMessage(const char* what) {
    std::string message = what;
    const size_t tagEnd = message.find("] ");
    return message.front() == '[' && tagEnd != std::string::npos ? message.substr(tagEnd + 2) : message;
}

// Writes beside the target and renames, so that a failed write never leaves half a stack there.
bool WriteAtomically(const std::string& outPath, const std::vector<uint8_t>& bytes, std::string* error) {
    const std::string partial = outPath + ".partial";
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        if (!out) {
            *error = "cannot create it";
            return false;
        }
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::error_code ignored;
            std::filesystem::remove(partial, ignored);
            *error = "cannot write it";
            return false;
        }
    }
    std::error_code ec;
    std::filesystem::rename(partial, outPath, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
        *error = ec.message();
        return false;
    }
    return true;
}

}  // namespace

int RunBuild(const std::string& jsonPath, const std::string& outPath) {
    std::string text;
    if (!ReadWhole(jsonPath, &text)) {
        fmt::print(stderr, "{}: cannot read the description\n", jsonPath);
        return 1;
    }
    nlohmann::ordered_json description;
    try {
        description = nlohmann::ordered_json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        fmt::print(stderr, "{}: not valid JSON: {}\n", jsonPath, ParseMessage(e.what()));
        return 1;
    }
    std::vector<uint8_t> bytes;
    std::string error;
    if (!BuildStack(description, std::filesystem::path(jsonPath).parent_path(), &bytes, &error)) {
        fmt::print(stderr, "{}: {}\n", jsonPath, error);
        return 1;
    }
    if (!WriteAtomically(outPath, bytes, &error)) {
        fmt::print(stderr, "{}: {}\n", outPath, error);
        return 1;
    }
    return 0;
}

int RunInfoRaw(const std::string& path) {
    LoadFault fault;
    ReadStackFile(path, &fault);
    const bool opened = fault.opened;
    CloseStack();
    if (!opened) {
        fmt::print(stderr, "{}: does not open as a stack: {}\n", path, fault.detail);
        return 1;
    }
    std::string text;
    if (!ReadWhole(path, &text)) {
        fmt::print(stderr, "{}: cannot read the file\n", path);
        return 1;
    }
    nlohmann::ordered_json description;
    std::string problem;
    if (!DescribeStoredStack(std::vector<uint8_t>(text.begin(), text.end()), &description, &problem)) {
        fmt::print(stderr, "{}: --raw cannot describe this file so that it builds back the same: {}\n", path, problem);
        return 1;
    }
    fmt::print("{}\n", description.dump(1));
    return 0;
}
