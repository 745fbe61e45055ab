#include "support/Golden.h"

#include <cstdio>
#include <filesystem>
#include <vector>

#include "PngFile.h"

namespace {

std::string GoldenPath(const std::string& name, const char* suffix) {
    return std::string(QB_GOLDEN_DIR) + "/" + name + suffix + ".png";
}

bool WriteSurface(const std::string& path, const Surface& s) {
    std::vector<uint8_t> rgba(s.pixels.size() * 4);
    for (size_t i = 0; i < s.pixels.size(); ++i) {
        rgba[4 * i] = RedOf(s.pixels[i]);
        rgba[4 * i + 1] = GreenOf(s.pixels[i]);
        rgba[4 * i + 2] = BlueOf(s.pixels[i]);
        rgba[4 * i + 3] = 255;
    }
    return WritePng(path, s.width, s.height, rgba);
}

bool ReadSurface(const std::string& path, Surface* s, std::string* error) {
    PngImage image;
    if (!ReadPng(path, &image, error)) return false;
    *s = Surface(image.width, image.height);
    for (size_t i = 0; i < s->pixels.size(); ++i) {
        s->pixels[i] = Rgb(image.rgba[4 * i], image.rgba[4 * i + 1], image.rgba[4 * i + 2]);
    }
    return true;
}

}  // namespace

testing::AssertionResult MatchesGolden(const Surface& surface, const std::string& name) {
    const std::string expectedPath = GoldenPath(name, "");
    const std::string actualPath = GoldenPath(name, "-actual");
    if (!std::filesystem::exists(expectedPath)) {
        const bool written = WriteSurface(expectedPath, surface);
        return testing::AssertionFailure()
               << "no reference " << expectedPath << "; "
               << (written ? "written from this run: look at it, then commit it"
                           : "and it could not be written");
    }
    Surface expected;
    std::string error;
    if (!ReadSurface(expectedPath, &expected, &error)) {
        return testing::AssertionFailure()
               << "cannot read the reference " << expectedPath << ": " << error;
    }
    if (expected.width != surface.width || expected.height != surface.height) {
        WriteSurface(actualPath, surface);
        return testing::AssertionFailure()
               << name << ": " << surface.width << "x" << surface.height << ", the reference is "
               << expected.width << "x" << expected.height << "; wrote " << actualPath;
    }
    size_t differing = 0, first = 0;
    for (size_t i = surface.pixels.size(); i-- > 0;) {
        if ((surface.pixels[i] & 0xFFFFFF) != expected.pixels[i]) {
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
    char detail[96];
    std::snprintf(detail, sizeof detail, "first at (%zu, %zu): 0x%06X, the reference has 0x%06X",
                  first % static_cast<size_t>(surface.width),
                  first / static_cast<size_t>(surface.width), surface.pixels[first] & 0xFFFFFF,
                  expected.pixels[first]);
    return testing::AssertionFailure()
           << name << ": " << differing << " pixels differ, " << detail << "; wrote " << actualPath;
}
