#include "support/Golden.h"

#include <cstdio>
#include <filesystem>
#include <vector>

#include "PngFile.h"

namespace {

bool WriteSurface(const std::string& path, const Surface& s) {
    std::vector<uint8_t> rgba;
    for (uint32_t p : s.pixels) rgba.insert(rgba.end(), {RedOf(p), GreenOf(p), BlueOf(p), 255});
    return WritePng(path, s.width, s.height, rgba);
}

}  // namespace

testing::AssertionResult MatchesGolden(const Surface& surface, const std::string& name) {
    const std::string expectedPath = std::string(QB_GOLDEN_DIR) + "/" + name + ".png";
    const std::string actualPath = std::string(QB_GOLDEN_DIR) + "/" + name + "-actual.png";
    if (!std::filesystem::exists(expectedPath)) {
        const bool written = WriteSurface(expectedPath, surface);
        return testing::AssertionFailure()
               << "no reference " << expectedPath << "; "
               << (written ? "written from this run: look at it, then commit it" : "and it could not be written");
    }
    PngImage expected;
    std::string error;
    if (!ReadPng(expectedPath, &expected, &error)) {
        return testing::AssertionFailure() << "cannot read the reference " << expectedPath << ": " << error;
    }
    if (expected.width != surface.width || expected.height != surface.height) {
        WriteSurface(actualPath, surface);
        return testing::AssertionFailure() << name << ": " << surface.width << "x" << surface.height
                                           << ", the reference is " << expected.width << "x" << expected.height
                                           << "; wrote " << actualPath;
    }
    size_t differing = 0, first = 0;
    for (size_t i = surface.pixels.size(); i-- > 0;) {
        const uint8_t* e = &expected.rgba[4 * i];
        if ((surface.pixels[i] & 0xFFFFFF) != Rgb(e[0], e[1], e[2])) {
            ++differing;
            first = i;
        }
    }
    if (differing == 0) {
        std::error_code ignored;
        std::filesystem::remove(actualPath, ignored);  // a stale one from an earlier failure
        return testing::AssertionSuccess();
    }
    WriteSurface(actualPath, surface);
    const uint8_t* e = &expected.rgba[4 * first];
    char detail[96];
    std::snprintf(detail, sizeof detail, "first at (%zu, %zu): 0x%06X, the reference has 0x%06X",
                  first % static_cast<size_t>(surface.width), first / static_cast<size_t>(surface.width),
                  surface.pixels[first] & 0xFFFFFF, Rgb(e[0], e[1], e[2]));
    return testing::AssertionFailure()
           << name << ": " << differing << " pixels differ, " << detail << "; wrote " << actualPath;
}
