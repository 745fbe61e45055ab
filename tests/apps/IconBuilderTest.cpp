// 'Icon' records built from PNG files: the button code reads back their size and depth and draws
// them with the right colours, transparent where the picture was; bad pictures and depths stop
// the build with a message that names the key.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "PngFile.h"
#include "StackBuilder.h"
#include "base/ByteOrder.h"
#include "card/ButtonDraw.h"
#include "support/CommandFixture.h"

namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t kScreen = Rgb(1, 2, 3);  // what a transparent pixel must leave

class IconBuilder : public CommandFixture {
protected:
    // Builds a one-card stack with the record; its data, or the builder's message in `*error`.
    Bytes BuildRecord(const std::string& record, std::string* error) const {
        const std::string json = R"({"cards": [{"id": 1}], "records": [)" + record + "]}";
        Bytes stack;
        if (!BuildStack(Json::parse(json), dir_, &stack, error)) return {};
        const uint32_t entry = ReadBE32(&stack[60]);  // the header's offset of the records
        const uint32_t size = ReadBE32(&stack[entry + 44]);
        return Bytes(stack.begin() + entry + 68, stack.begin() + entry + 68 + size);
    }
};

// A picture of a few colours with a transparent column at x = 1 and a transparent corner.
std::vector<uint32_t> Pattern(int32_t width, int32_t height, uint32_t colours) {
    std::vector<uint32_t> argb;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const bool clear = x == 1 || (x == width - 1 && y == height - 1);
            const uint32_t k = static_cast<uint32_t>(x * 3 + y * 5) % colours;
            const uint32_t colour = Rgb(static_cast<uint8_t>(40 + k * 13), static_cast<uint8_t>(200 - k * 11), static_cast<uint8_t>(k * 7));
            argb.push_back(clear ? 0 : 0xFF000000u | colour);
        }
    }
    return argb;
}

bool WriteArgb(const std::string& path, int32_t width, int32_t height, const std::vector<uint32_t>& argb) {
    Bytes rgba;
    for (uint32_t p : argb) rgba.insert(rgba.end(), {RedOf(p), GreenOf(p), BlueOf(p), static_cast<uint8_t>(p >> 24)});
    return WritePng(path, width, height, rgba);
}

TEST_F(IconBuilder, RecordsReadBackAndDrawTransparentWhereThePictureWas) {
    struct Case { int32_t width, height, depth; uint32_t colours; };
    const Case cases[] = {
        {16, 16, 4, 15},  // 15 colours and black for the transparent pixels fill a 4-bit table
        {5, 3, 4, 3},     // odd width: colour and mask rows are padded to 4 bytes
        {13, 2, 8, 40},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << "x" << c.height << " at " << c.depth);
        const std::vector<uint32_t> argb = Pattern(c.width, c.height, c.colours);
        ASSERT_TRUE(WriteArgb(Path("icon.png"), c.width, c.height, argb));
        std::string error;
        const Bytes icon = BuildRecord(R"({"type": "Icon", "id": 1, "png": "icon.png", "depth": )" + std::to_string(c.depth) + "}", &error);
        ASSERT_EQ(error, "");
        ASSERT_GT(icon.size(), 22u);

        const IconInfo info = ReadIconInfo(icon.data(), static_cast<uint32_t>(icon.size()));
        ASSERT_TRUE(info.valid);
        // The head's height counts the mask rows.
        EXPECT_EQ((std::vector<int32_t>{info.width, info.height, info.depth}), (std::vector<int32_t>{c.width, 2 * c.height, c.depth}));

        Surface screen(c.width, c.height, kScreen);
        DrawIcon(screen, screen.Bounds(), 0, 0, icon.data(), static_cast<uint32_t>(icon.size()), nullptr);
        for (int32_t y = 0; y < c.height; ++y) {
            for (int32_t x = 0; x < c.width; ++x) {
                const uint32_t p = argb[static_cast<size_t>(y * c.width + x)];
                const uint32_t expected = p >> 24 ? p & 0xFFFFFF : kScreen;
                ASSERT_EQ(screen.Row(y)[x], expected) << "at " << x << "," << y;
            }
        }
    }
}

TEST_F(IconBuilder, BadPicturesAndDepthsStopTheBuildNamingTheKey) {
    ASSERT_TRUE(WriteArgb(Path("small.png"), 4, 4, Pattern(4, 4, 3)));
    ASSERT_TRUE(WriteArgb(Path("wide.png"), 257, 1, std::vector<uint32_t>(257, 0xFF000000)));
    ASSERT_TRUE(WriteArgb(Path("many.png"), 18, 1, Pattern(18, 1, 17)));  // 16 and black
    Write("fake.png", "not a picture");
    struct Case { const char* record; const char* message; };
    const Case cases[] = {
        {R"("png": "small.png", "depth": 24)", "records[0].depth: an icon is of depth 4 or 8, not 24"},
        {R"("png": "fake.png")", "is not a PNG file"},
        {R"("png": "wide.png", "depth": 8)", "records[0].png: an icon is at most 256 x 256 pixels, not 257 x 1"},
        {R"("png": "many.png")", "records[0].png: the picture has more than 16 colours"},
        {R"("png": "small.png", "hex": "00")", "records[0].png: give either png or"},
    };
    std::string error;
    for (const Case& c : cases) {
        BuildRecord(std::string(R"({"type": "Icon", "id": 1, )") + c.record + "}", &error);
        EXPECT_NE(error.find(c.message), std::string::npos) << c.record << " gave: " << error;
    }
    BuildRecord(R"({"type": "Actn", "id": 1, "png": "small.png"})", &error);
    EXPECT_EQ(error, "records[0].png: a picture from PNG makes an 'Icon' record only");
    // At 8 bits the same many-coloured picture fits.
    error.clear();
    BuildRecord(R"({"type": "Icon", "id": 1, "png": "many.png", "depth": 8})", &error);
    EXPECT_EQ(error, "");
}

}  // namespace

#endif  // QB_WITH_CLI
