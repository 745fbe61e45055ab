// The writer against bytes derived by hand from the format's tables: native records in, stored
// bytes out, and the live record untouched. The fixture stacks' round trip is in StackFlowsTest.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "memory/MemRef.h"
#include "platform/HostFile.h"
#include "stack/PathSlot.h"
#include "stack/RecordWriter.h"
#include "stack/StagingBuffer.h"
#include "support/StackBytes.h"

namespace {

using namespace std::string_literals;
using Offsets = std::vector<uint32_t>;

// The same record in both forms. Both start as a pattern in which no two neighbouring bytes are
// equal, so any exchange the writer makes where it shouldn't shows.
struct Pair { Bytes native, stored; };

Pair Patterned(size_t size, uint8_t seed) {
    Pair p;
    for (size_t i = 0; i < size; ++i) p.native.push_back(static_cast<uint8_t>(seed + 7 * i));
    p.stored = p.native;
    return p;
}
void Word(Pair& p, uint32_t at) { p.stored[at] = p.native[at + 1]; p.stored[at + 1] = p.native[at]; }
void Long(Pair& p, uint32_t at) { for (uint32_t k = 0; k < 4; ++k) p.stored[at + k] = p.native[at + 3 - k]; }
// Native left, top, right, bottom -> stored top, left, bottom, right.
void Rect(Pair& p, uint32_t at) {
    const uint32_t from[4] = {2, 0, 6, 4};
    for (uint32_t k = 0; k < 4; ++k) {
        p.stored[at + 2 * k] = p.native[at + from[k] + 1];
        p.stored[at + 2 * k + 1] = p.native[at + from[k]];
    }
}
void Turn(Pair& p, const Offsets& words, const Offsets& longs, const Offsets& rects) {
    for (uint32_t o : words) Word(p, o);
    for (uint32_t o : longs) Long(p, o);
    for (uint32_t o : rects) Rect(p, o);
}
void SetWord(Pair& p, uint32_t at, uint16_t v) { std::memcpy(&p.native[at], &v, 2); PutBE16(p.stored, at, v); }
void SetLong(Pair& p, uint32_t at, uint32_t v) { std::memcpy(&p.native[at], &v, 4); PutBE32(p.stored, at, v); }
void Join(Pair& to, const Pair& more) { Append(to.native, more.native); Append(to.stored, more.stored); }

// An item chunk: common head (kind, id, flags, rect, length) plus the kind's own fields.
Pair Item(uint16_t kind, uint32_t size, const Offsets& words, const Offsets& longs, const Offsets& rects) {
    Pair p = Patterned(size, static_cast<uint8_t>(kind + 1));
    Turn(p, words, longs, rects);
    Turn(p, {2}, {}, {4});
    SetWord(p, 0, kind);
    SetLong(p, 12, size);
    SetWord(p, 22, 0x0091);  // no file reference, no pad byte
    return p;
}
const Offsets kButtonWords = {16, 18, 20, 24, 26, 60, 62, 64, 66, 68, 70, 74, 76, 78, 80};
Pair ButtonHead(uint32_t length) {
    Pair p = Item(48, 136, kButtonWords, {}, {});
    SetLong(p, 12, length);
    return p;
}
// A card of the given chunks. The size field lies: the writer takes the block's size. The tail
// holds what NewCardMemRef leaves, a native 0xFACE.
Pair Card(const std::vector<Pair>& chunks, uint16_t kind = 0) {
    Pair c = Patterned(96, 3);
    Turn(c, {0, 6, 8, 10, 16, 18, 20, 22, 48, 50, 52, 54, 56}, {}, {});
    SetWord(c, 6, kind);
    for (const Pair& chunk : chunks) Join(c, chunk);
    Join(c, {{0, 0, 0xCE, 0xFA}, {0, 0, 0xFA, 0xCE}});
    SetLong(c, 2, static_cast<uint32_t>(c.native.size()));
    std::memcpy(&c.native[2], "lie!", 4);
    return c;
}

class RecordWriterTest : public testing::Test {
protected:
    void SetUp() override {
        ResetFileFaults();
        ASSERT_TRUE(InitPathSlots());
        ASSERT_TRUE(SetSlotPath(kSlotStack, "D:\\Stacks\\x.stk"));
    }
    void TearDown() override { ResetFileFaults(); }

    // What a writer puts in a file through a staging buffer that already holds `prefill` bytes.
    static Bytes Emit(const std::function<int32_t(StagingBuffer&)>& write, int32_t expected = 0, uint32_t prefill = 0) {
        const std::string path = WriteTempFile("writer.out", {});
        HostFile* file = nullptr;
        EXPECT_EQ(OpenHostFile(path, FileMode::Create, &file), 0);
        StagingBuffer buffer;
        EXPECT_EQ(NewStagingBuffer(&buffer, file), 0);
        const Bytes zeros(prefill, 0);
        if (prefill) WriteBuffered(buffer, zeros.data(), prefill);
        EXPECT_EQ(write(buffer), expected);
        FlushBuffered(buffer);
        FreeStagingBuffer(&buffer);
        CloseHostFile(file);
        const Bytes all = ReadWholeFile(path);
        return all.size() < prefill ? Bytes{} : Bytes(all.begin() + prefill, all.end());
    }
    // Each writer on a block holding `native`, which must come out of it unchanged.
    static Bytes Write(const Bytes& native, const std::function<int32_t(StagingBuffer&, MemRef)>& write,
                       int32_t expected = 0) {
        const MemRef ref = BlockOf(native);
        const Bytes out = Emit([&](StagingBuffer& b) { return write(b, ref); }, expected);
        EXPECT_EQ(BlockBytes(ref), native) << "the live record changed";
        FreeMemRef(ref);
        return out;
    }
    static Bytes WriteCard(const Bytes& native, int32_t expected = 0) {
        return Write(native, [](StagingBuffer& b, MemRef r) { return WriteCardRecord(b, r); }, expected);
    }
    static Bytes WriteButton(const Bytes& native, uint32_t* written, int32_t expected = 0) {
        return Write(native, [&](StagingBuffer& b, MemRef r) { return WriteButtonRecord(b, r, 0, written); }, expected);
    }
    static Bytes WriteHlnk(const Bytes& native, uint32_t* written, int32_t expected = 0) {
        return Write(native, [&](StagingBuffer& b, MemRef r) { return WriteHlnkRecord(b, r, written); }, expected);
    }
};

TEST_F(RecordWriterTest, WritesEachItemKindThroughItsTables) {
    // The picture: width and height turned, the rest and the pad byte behind it as they stand.
    Pair graphic = Item(16, 89, {16, 18, 20, 24, 28, 54, 56, 58}, {}, {30});
    SetWord(graphic, 22, 0x0291);
    SetLong(graphic, 60, 8);
    Turn(graphic, {80, 82}, {}, {});
    Pair text = Item(96, 148,
                     {20, 24, 26, 28, 30, 32, 34, 36, 38, 44, 50, 56, 58, 60, 62, 64, 66, 68, 70, 88, 102, 104},
                     {16, 40, 46, 52}, {});
    Turn(text, {128, 130}, {132}, {});  // one text block of four bytes
    SetLong(text, 136, 4);
    SetLong(text, 140, 20);
    // An empty card has the tail 00 00 FA CE whatever the block held; an unknown kind gets its
    // common head turned and its body as it stands.
    for (const Pair& card : {Card({}), Card({graphic, text, ButtonHead(136), Item(32, 40, {}, {}, {})})}) {
        EXPECT_EQ(WriteCard(card.native), card.stored);
    }
}

TEST_F(RecordWriterTest, SubRecordsFollowTheWritersOwnRules) {
    struct Case { const char* name; uint16_t type; uint32_t length; Offsets words, longs; bool rect; uint32_t kept; };
    const Case cases[] = {
        {"51: offset 2 and the rect too, though the reader left them", 51, 40, {0, 2, 22, 16}, {12}, true, 40},
        {"82 without a path: 16 as well, which the reader left", 82, 32, {0, 22, 16, 24, 4}, {12}, false, 32},
        {"83: its body stays as it stands", 83, 36, {0, 22, 16, 24, 4}, {12}, false, 36},
        {"89 without a path: offset 2 stays native", 89, 32, {0, 22, 20}, {12, 16}, true, 32},
        {"119: cut to 96 bytes, offset 18 left native", 119, 100, {0, 2, 22, 24, 20}, {12}, true, 96},
        {"56 with a sprite film: the film stays raw", 56, 40, {0, 22}, {12}, true, 40},
        {"an unknown type is dropped: nothing emitted", 77, 40, {}, {}, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Pair sub = Patterned(c.length, 5);
        Turn(sub, c.words, c.longs, c.rect ? Offsets{4} : Offsets{});
        SetWord(sub, 0, c.type);
        SetLong(sub, 12, c.length);
        if (c.type == 56) {
            std::memcpy(&sub.native[32], "Sprt", 4);
            std::memcpy(&sub.stored[32], "Sprt", 4);
        }
        Pair button = ButtonHead(136 + c.length);
        Join(button, sub);
        uint32_t written = 1;
        const Bytes out = WriteButton(button.native, &written);
        EXPECT_EQ(out, Bytes(button.stored.begin(), button.stored.begin() + 136 + c.kept));
        EXPECT_EQ(written, 1 + 136 + c.kept);
    }
}

TEST_F(RecordWriterTest, AnAnimationGoesOutWithItsFramesTurned) {
    // Head, the frame-delta head, one frame of 20 bytes, and two stray bytes that keep their place.
    Pair anim = Patterned(32 + 18 + 20 + 2, 5);
    Turn(anim, {0, 22, 32, 34, 36, 38, 42, 44, 50}, {12}, {4});
    SetWord(anim, 0, 56);
    SetLong(anim, 12, 72);
    SetWord(anim, 40, 1);  // frame count
    SetLong(anim, 58, 20);
    Pair button = ButtonHead(136 + 72);
    Join(button, anim);
    EXPECT_EQ(WriteButton(button.native, nullptr), button.stored);
    SetLong(button, 136 + 58, 90);  // a frame longer than the record is a lie
    WriteButton(button.native, nullptr, -1);
}

TEST_F(RecordWriterTest, ConvertsNativeReferencesBack) {
    // A reference as memory holds it: path, terminator, pad to even, six zero bytes, name, terminator.
    Bytes junk = Of("D:\\Pic\\Sun\0\0\0\0\0\0\0\0Sun\0"s);  // 10 + terminator: a pad byte follows
    junk[11] = 0x55;
    std::memset(&junk[12], 0xEE, 6);
    Bytes junkStored = StoredFileRef("D::Pic:Sun", "Sun");
    junkStored[11] = 0x55;
    struct Case { const char* name; Bytes native, stored; };
    const Case cases[] = {
        {"the pad byte stays, the six bytes are cleared", junk, junkStored},
        {"the name keeps its backslash", Of("C:\\a\0\0\0\0\0\0\0\0b\\c\0"s), StoredFileRef("C::a", "b\\c")},
        {"no terminator", Of("C:\\abc"), {}},
        {"no room for the six bytes", Of("C:\\a\0\0\0\0"s), {}},
        {"name without its terminator", Of("C:\\a\0\0\0\0\0\0\0\0xy"s), {}},
        {"path longer than a length byte holds", Of(std::string(256, 'p') + std::string(8, '\0') + "x\0"s), {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const MemRef ref = ConvertNativePath(c.native.data(), static_cast<uint32_t>(c.native.size()));
        EXPECT_EQ(ref ? BlockBytes(ref) : Bytes{}, c.stored);
        if (ref) FreeMemRef(ref);
    }
}

TEST_F(RecordWriterTest, PathsInSubRecordsAndTheLaunchCount) {
    const Bytes nat = Of("C:\\Stacks\\art.bmp\0\0\0\0\0\0\0art.bmp\0"s);  // 32 bytes, as stored
    const Bytes sto = StoredFileRef("C::Stacks:art.bmp", "art.bmp");
    const Bytes oddNat = Of("C:\\a\0\0\0\0\0\0\0\0bc\0"s);  // 15 bytes: the reader rounds it up to 16
    const Bytes oddSto = StoredFileRef("C::a", "bc");
    struct Case { const char* name; uint16_t type, flags; uint32_t documentLength; std::vector<Bytes> native, stored; };
    const Case cases[] = {
        {"82: one path behind the head", 82, 0, 0, {nat}, {sto}},
        {"59: the round-up byte belongs to the lone document", 59, 0x200, 15, {oddNat, {0}}, {oddSto, {0}}},
        {"59: a pad flag with nothing behind keeps to the record", 59, 0x200, 32, {nat}, {sto}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Pair sub = Patterned(32, 5);
        for (size_t i = 0; i < c.native.size(); ++i) Join(sub, {c.native[i], c.stored[i]});
        const uint32_t length = static_cast<uint32_t>(sub.native.size());
        SetWord(sub, 0, c.type);
        SetLong(sub, 12, length);
        SetWord(sub, 22, c.flags);
        if (c.type == 59) SetLong(sub, 18, c.documentLength);
        if (c.type == 59) Turn(sub, {2, 16}, {}, {4});
        if (c.type == 82) Turn(sub, {16, 24, 4}, {}, {});
        Pair button = ButtonHead(136 + length);
        Join(button, sub);
        EXPECT_EQ(WriteButton(button.native, nullptr), button.stored);
    }
}

TEST_F(RecordWriterTest, HlnkTextGoesBackDownAByte) {
    // Native: the byte the reader kept at 23 ('Z') goes back behind the text.
    Pair link = Patterned(28, 0);
    std::memset(link.native.data() + 8, 0, 20);
    link.stored = link.native;
    SetWord(link, 0, 9);
    SetWord(link, 2, 201);
    SetWord(link, 4, 1);
    SetWord(link, 6, 3);
    std::memcpy(&link.native[23], "Zhot", 4);
    std::memcpy(&link.stored[23], "hotZ", 4);
    uint32_t written = 0;
    EXPECT_EQ(WriteHlnk(link.native, &written), link.stored);
    EXPECT_EQ(written, 28u);

    // With an action block at 24 + pad + text, through the button writer.
    link.native[8] = link.stored[8] = 1;
    Join(link, ButtonHead(136));
    written = 0;
    EXPECT_EQ(WriteHlnk(link.native, &written), link.stored);
    EXPECT_EQ(written, 28u + 136);
}

TEST_F(RecordWriterTest, LyingLengthsStopTheWrite) {
    // A card around one chunk, with a long word of the chunk replaced.
    auto card = [](const Pair& chunk, uint32_t at, uint32_t value) {
        Pair c = Card({chunk});
        std::memcpy(&c.native[96 + at], &value, 4);
        return c.native;
    };
    // A button holding one sub-record of `type` and `length`, with a native long word set.
    auto button = [](uint16_t type, uint32_t length, uint32_t at = 12, uint32_t value = 0) {
        Pair b = ButtonHead(136 + length);
        Join(b, Patterned(length, 1));
        SetWord(b, 136, type);
        SetLong(b, 136 + 12, length);
        if (at != 12 || value != 0) SetLong(b, 136 + at, value);
        return b.native;
    };
    Pair text = Item(96, 144, {}, {}, {});
    SetLong(text, 140, 16);
    Bytes shortCard = Card({}).native;
    shortCard.resize(99);
    Bytes unended = Card({ButtonHead(136)}).native;
    unended.resize(96 + 136 + 2);
    Bytes zeroSub = button(77, 64);
    std::memset(&zeroSub[136 + 12], 0, 4);
    struct Case { const char* name; Bytes native; bool card; };
    const Case cases[] = {
        {"card smaller than its head and tail", shortCard, true},
        {"item length beyond the card", card(ButtonHead(136), 12, 137 + 4 + 1), true},
        {"chain without its end mark", unended, true},
        {"text block beyond the field", card(text, 140, 17), true},
        {"sub-record beyond the button", button(60, 64, 12, 65), false},
        {"sub-record of length zero", zeroSub, false},
        {"launch document beyond the sub-record", button(59, 64, 18, 33), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.card ? WriteCard(c.native, -1) : WriteButton(c.native, nullptr, -1);
    }
    Bytes link(30, 0);
    link[6] = 7;  // text beyond the record
    WriteHlnk(link, nullptr, -1);
    link[6] = 3;
    link[4] = 4;  // the action block beyond the record
    link[8] = 1;
    WriteHlnk(link, nullptr, -1);
}

TEST_F(RecordWriterTest, AFailingFileWriteIsReported) {
    const Pair card = Card({ButtonHead(136)});
    const MemRef ref = BlockOf(card.native);
    GetFileFaults().failWriteAt = 1;
    Emit([&](StagingBuffer& b) { return WriteCardRecord(b, ref); }, -1, kStagingBufferSize - 100);
    FreeMemRef(ref);
}

}  // namespace
