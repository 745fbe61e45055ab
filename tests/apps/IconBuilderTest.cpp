// 'Icon' records built from PNG files: the button code reads back their size and depth and draws them
// transparent where the picture was; bad pictures and depths stop the build naming the key.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "StackBuilder.h"
#include "base/ByteOrder.h"
#include "card/ButtonDraw.h"
#include "support/CommandFixture.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kScreen = Rgb(1, 2, 3);  // what a transparent pixel must leave

class IconBuilder : public CommandFixture {
protected:
    // Builds a one-card stack with the record; its data, or the builder's message in `*error`.
    Bytes BuildRecord(const std::string& record, std::string* error) const {
        const std::string json = R"({"cards": [{"id": 1}], "records": [{"type": "Icon", "id": 1, )" + record + "}]}";
        Bytes stack;
        if (!BuildStack(nlohmann::ordered_json::parse(json), dir_, &stack, error)) return {};
        const uint32_t entry = ReadBE32(&stack[60]);  // the header's offset of the records
        return Bytes(stack.begin() + entry + 68, stack.begin() + entry + 68 + ReadBE32(&stack[entry + 44]));
    }
    // A picture of `colours` colours, transparent in the column x = 1 and the last corner, as a PNG.
    std::vector<uint32_t> WritePattern(const std::string& name, int32_t width, int32_t height, uint32_t colours) const {
        std::vector<uint32_t> argb;
        Bytes rgba;
        for (int32_t i = 0; i < width * height; ++i) {
            const uint32_t k = static_cast<uint32_t>(i % width * 3 + i / width * 5) % colours;
            const bool clear = i % width == 1 || i == width * height - 1;
            argb.push_back(clear ? 0 : 0xFF000000u | Rgb(static_cast<uint8_t>(40 + k * 13), static_cast<uint8_t>(200 - k * 11),
                                                          static_cast<uint8_t>(k * 7)));
            rgba.insert(rgba.end(), {RedOf(argb.back()), GreenOf(argb.back()), BlueOf(argb.back()), clear ? uint8_t{0} : uint8_t{255}});
        }
        EXPECT_TRUE(WritePng(Path(name), width, height, rgba));
        return argb;
    }
};

TEST_F(IconBuilder, RecordsReadBackAndDrawTransparentWhereThePictureWas) {
    struct Case { int32_t width, height, depth; uint32_t colours; };
    const Case cases[] = {
        {16, 16, 4, 15},  // 15 colours and black for the transparent pixels fill a 4-bit table
        {5, 3, 4, 3},     // odd width: colour and mask rows are padded to 4 bytes
        {13, 2, 8, 40},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << "x" << c.height << " at " << c.depth);
        const std::vector<uint32_t> argb = WritePattern("icon.png", c.width, c.height, c.colours);
        std::string error;
        const Bytes icon = BuildRecord(R"("png": "icon.png", "depth": )" + std::to_string(c.depth), &error);
        ASSERT_EQ(error, "");
        const IconInfo info = ReadIconInfo(icon.data(), static_cast<uint32_t>(icon.size()));
        ASSERT_TRUE(info.valid);
        // The head's height counts the mask rows.
        EXPECT_EQ((std::vector<int32_t>{info.width, info.height, info.depth}), (std::vector<int32_t>{c.width, 2 * c.height, c.depth}));
        Surface screen(c.width, c.height, kScreen);
        DrawIcon(screen, screen.Bounds(), 0, 0, icon.data(), static_cast<uint32_t>(icon.size()), nullptr);
        for (int32_t i = 0; i < c.width * c.height; ++i) {
            const uint32_t p = argb[static_cast<size_t>(i)];
            ASSERT_EQ(screen.Row(i / c.width)[i % c.width], p >> 24 ? p & 0xFFFFFF : kScreen) << "pixel " << i;
        }
    }
}

TEST_F(IconBuilder, BadPicturesAndDepthsStopTheBuildNamingTheKey) {
    WritePattern("small.png", 4, 4, 3);
    WritePattern("wide.png", 257, 1, 1);
    WritePattern("many.png", 18, 1, 17);  // 16 and black
    struct Case { const char* record; const char* message; };
    const Case cases[] = {
        {R"("png": "small.png", "depth": 24)", "records[0].depth: an icon is of depth 4 or 8, not 24"},
        {R"("png": "wide.png", "depth": 8)", "records[0].png: an icon is at most 256 x 256 pixels, not 257 x 1"},
        {R"("png": "many.png")", "records[0].png: the picture has more than 16 colours"},
        {R"("png": "many.png", "depth": 8)", ""},  // at 8 bits the same many-coloured picture fits
    };
    for (const Case& c : cases) {
        std::string error;
        BuildRecord(c.record, &error);
        EXPECT_NE(error.find(c.message), std::string::npos) << c.record << " gave: " << error;
        EXPECT_EQ(error.empty(), c.message[0] == '\0') << c.record;
    }
}

}  // namespace

#endif  // QB_WITH_CLI
