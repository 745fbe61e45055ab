// Replays files and folders of inputs (notes, *.md, skipped) through a fuzz target without libFuzzer;
// a missing argument or nothing replayed fails, so a wrong path cannot pass.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg = argv[i];
        std::error_code error;
        if (fs::is_directory(arg, error)) {
            for (const auto& entry : fs::recursive_directory_iterator(arg, error)) {
                if (entry.is_regular_file() && entry.path().extension() != ".md")
                    inputs.push_back(entry.path());
            }
        } else if (fs::is_regular_file(arg, error)) {
            inputs.push_back(arg);
        } else {
            std::fprintf(stderr, "replay: %s is neither a file nor a folder\n", argv[i]);
            return 2;
        }
    }
    std::sort(inputs.begin(), inputs.end());
    if (inputs.empty()) {
        std::fprintf(stderr, "replay: no inputs found\n");
        return 2;
    }
    for (const fs::path& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        if (!in.good() && !in.eof()) {
            std::fprintf(stderr, "replay: cannot read %s\n", path.c_str());
            return 2;
        }
        // Named before it runs, so a crash's log says which input it was.
        std::printf("%s (%zu bytes)\n", path.c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return 0;
}
