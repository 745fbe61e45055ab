// `quillbrook build` and `quillbrook info --json --raw`: a stack from its JSON description, and the
// description of a stack file that builds it back.
#include <fmt/format.h>

#include <filesystem>

#include "Commands.h"
#include "StackBuilder.h"
#include "StackInfo.h"
#include "platform/HostFile.h"
#include "stack/Document.h"
#include "stack/StackReader.h"

namespace {

// The parser's message without its "[json.exception.parse_error.101] " tag.
std::string ParseMessage(const char* what) {
    std::string message = what;
    const size_t tagEnd = message.find("] ");
    return message.front() == '[' && tagEnd != std::string::npos ? message.substr(tagEnd + 2) : message;
}

// Writes beside the target and renames, so that a failed write never leaves half a stack there.
bool WriteAtomically(const std::string& outPath, const std::vector<uint8_t>& bytes, std::string* error) {
    const std::string partial = outPath + ".partial";
    if (WriteWholeHostFile(partial, bytes.data(), bytes.size()) != 0) {
        *error = GetHostFileStatus(partial).exists ? "cannot write it" : "cannot create it";
        DeleteHostFile(partial);
        return false;
    }
    if (RenameHostFile(partial, outPath) != 0) {
        DeleteHostFile(partial);
        *error = "cannot put it in place";
        return false;
    }
    return true;
}

}  // namespace

int RunBuild(const std::string& jsonPath, const std::string& outPath) {
    std::string text;
    if (ReadWholeHostFile(jsonPath, &text) != 0) {
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
    if (ReadWholeHostFile(path, &text) != 0) {
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
