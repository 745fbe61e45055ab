#include "stack/Normalise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "base/ByteOrder.h"
#include "memory/GlobalBlock.h"
#include "memory/MemRef.h"
#include "stack/PathSlot.h"
#include "support/StackBytes.h"

namespace {

using namespace std::string_literals;

// Neighbouring bytes always differ, so a missing or extra swap shows.
void Pattern(Bytes& b, uint8_t seed) {
    for (size_t i = 0; i < b.size(); ++i) b[i] = static_cast<uint8_t>(i * 37 + seed);
}
Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) Append(out, p);
    return out;
}
Bytes Splice(Bytes b, size_t at, size_t oldLength, const Bytes& with) {
    b.erase(b.begin() + static_cast<std::ptrdiff_t>(at), b.begin() + static_cast<std::ptrdiff_t>(at + oldLength));
    b.insert(b.begin() + static_cast<std::ptrdiff_t>(at), with.begin(), with.end());
    return b;
}

constexpr uint8_t kEndMark[] = {0, 0, 0xFA, 0xCE};

Bytes Card(uint16_t kind, const std::vector<Bytes>& chunks) {
    Bytes c(96);
    Pattern(c, 1);
    PutBE16(c, 6, kind);
    for (const Bytes& chunk : chunks) c.insert(c.end(), chunk.begin(), chunk.end());
    c.insert(c.end(), std::begin(kEndMark), std::end(kEndMark));
    PutBE32(c, 2, static_cast<uint32_t>(c.size()));
    return c;
}
Bytes Item(uint16_t kind, uint32_t size, uint16_t flags = 0) {
    Bytes b(size);
    Pattern(b, static_cast<uint8_t>(kind));
    PutBE16(b, 0, kind);
    PutBE32(b, 12, size);
    PutBE16(b, 22, flags);
    return b;
}
Bytes Background(uint16_t format, uint32_t tableSize, uint32_t imageLength) {
    Bytes b(24 + tableSize + imageLength);
    Pattern(b, 5);
    PutBE16(b, 0, 8);
    PutBE16(b, 2, format);
    PutBE32(b, 12, static_cast<uint32_t>(b.size()));
    PutBE32(b, 16, tableSize);
    return b;
}
Bytes Graphic(const Bytes& reference, uint32_t pictureSize, bool padByte, uint16_t flags) {
    const uint32_t size = 80 + static_cast<uint32_t>(reference.size()) + pictureSize + (padByte ? 1 : 0);
    Bytes g = Item(16, size, static_cast<uint16_t>(flags | (padByte ? 0x200 : 0)));
    PutBE32(g, 60, pictureSize);
    std::copy(reference.begin(), reference.end(), g.begin() + 80);
    return g;
}
Bytes Sub(uint16_t type, uint32_t length) {
    Bytes b(length);
    Pattern(b, static_cast<uint8_t>(type));
    PutBE16(b, 0, type);
    PutBE32(b, 12, length);
    return b;
}
Bytes SubWithBody(uint16_t type, const Bytes& body, uint16_t flags) {
    Bytes b = Sub(type, 32 + static_cast<uint32_t>(body.size()));
    PutBE16(b, 22, flags);
    std::copy(body.begin(), body.end(), b.begin() + 32);
    return b;
}
// A head with its parts behind it, the length at 12 covering both.
Bytes Chain(Bytes head, const std::vector<Bytes>& parts) {
    for (const Bytes& part : parts) Append(head, part);
    PutBE32(head, 12, static_cast<uint32_t>(head.size()));
    return head;
}
Bytes Button(const std::vector<Bytes>& subs) { return Chain(Item(48, 136), subs); }
Bytes TextBlock(uint32_t dataLength, uint32_t size) {
    Bytes b(size);
    Pattern(b, 99);
    PutBE32(b, 8, dataLength);
    PutBE32(b, 12, size);
    return b;
}
Bytes TextField(const std::vector<Bytes>& blocks, uint16_t flags) { return Chain(Item(96, 128, flags), blocks); }

struct Conversion { std::vector<uint32_t> swap16, swap32, rects, cleared16; };
const Conversion kCardHead{{0, 6, 8, 10, 16, 18, 20, 22, 48, 50, 52, 54, 56}, {2}, {}, {}};
const Conversion kBackgroundHead{{0, 2, 10}, {12, 16}, {}, {}};
const Conversion kItemHead{{0, 2, 22}, {12}, {4}, {}};
const Conversion kGraphicHead{{16, 18, 20, 24, 28, 54, 56, 58}, {60}, {30}, {}};
const Conversion kButtonHead{{16, 18, 20, 24, 26, 60, 62, 64, 66, 68, 70, 74, 76, 78, 80}, {}, {}, {}};
const Conversion kTextHead{{20, 24, 26, 28, 30, 32, 34, 36, 38, 44, 50, 56, 58, 60, 62, 64, 66, 68, 70, 88, 102, 104},
                           {16, 40, 46, 52}, {}, {}};
const Conversion kTextBlockHead{{0, 2}, {4, 8, 12}, {}, {}};
const Conversion kSubWalk{{0}, {12}, {}, {}};
const Conversion kSub64{{22}, {}, {4}, {}};

void Apply(Bytes& b, size_t base, const Conversion& c) {
    for (uint32_t o : c.swap16) std::swap(b[base + o], b[base + o + 1]);
    for (uint32_t o : c.swap32) std::reverse(b.begin() + static_cast<std::ptrdiff_t>(base + o),
                                             b.begin() + static_cast<std::ptrdiff_t>(base + o + 4));
    for (uint32_t o : c.rects) {
        // stored top, left, bottom, right (big-endian) -> left, top, right, bottom (native)
        const Bytes r(b.begin() + static_cast<std::ptrdiff_t>(base + o),
                      b.begin() + static_cast<std::ptrdiff_t>(base + o + 8));
        const uint8_t native[8] = {r[3], r[2], r[1], r[0], r[7], r[6], r[5], r[4]};
        std::copy(std::begin(native), std::end(native), b.begin() + static_cast<std::ptrdiff_t>(base + o));
    }
    for (uint32_t o : c.cleared16) Write16(&b[base + o], 0);
}
void Apply(Bytes& b, size_t base, const std::vector<Conversion>& cs) {
    for (const Conversion& c : cs) Apply(b, base, c);
}

// What a card reads as: the stored head turned, then the given native chunks and the end mark.
Bytes NativeCard(const Bytes& stored, std::initializer_list<Bytes> chunks) {
    Bytes out(stored.begin(), stored.begin() + 96);
    Apply(out, 0, kCardHead);
    for (const Bytes& chunk : chunks) out.insert(out.end(), chunk.begin(), chunk.end());
    out.insert(out.end(), std::begin(kEndMark), std::end(kEndMark));
    return out;
}
Bytes NativeItem7() { Bytes item = Item(7, 30); Apply(item, 0, kItemHead); return item; }

// Names the first difference, where a vector comparison would print hundreds of bytes.
testing::AssertionResult SameBytes(const Bytes& actual, const Bytes& expected) {
    const auto diff = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (diff.first == actual.end() && diff.second == expected.end()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "sizes " << actual.size() << " and " << expected.size()
                                       << ", first difference at offset " << (diff.first - actual.begin());
}

class NormaliseTest : public testing::Test {
protected:
    void SetUp() override {
        savedStackPath_ = GetSlotPath(kSlotStack);
        ASSERT_TRUE(SetSlotPath(kSlotStack, "D:\\Stacks\\x.stk"));
        ResetWhiteFirstTest();
    }
    void TearDown() override {
        SetGlobalAllocFailAfter(-1);
        for (MemRef ref : refs_) FreeMemRef(ref);
        SetSlotPath(kSlotStack, savedStackPath_);
        ResetWhiteFirstTest();
    }

    MemRef Make(const Bytes& bytes) {
        refs_.push_back(BlockOf(bytes));
        return refs_.back();
    }
    // Normalises a stored card and returns what memory then holds.
    Bytes ReadCard(const Bytes& stored) {
        MemRef card = Make(stored);
        EXPECT_EQ(NormaliseCard(card), 0);
        return BlockBytes(card);
    }

private:
    std::vector<MemRef> refs_;
    std::string savedStackPath_;
};

// --- Cards -------------------------------------------------------------------------------------

TEST_F(NormaliseTest, AppliesTheHeadTablesOfCardsChunksAndItems) {
    const Conversion imageFields{{}, {28 + 32, 36 + 32}, {}, {}};
    struct Case { const char* name; Bytes stored; std::vector<std::pair<size_t, std::vector<Conversion>>> behindHead; };
    const Case cases[] = {
        {"blank card", Card(0, {}), {}},
        {"picture card, format 2: the image's two fields too", Card(1, {Background(2, 32, 20)}),
         {{96, {kBackgroundHead, imageFields}}}},
        {"picture card, format 1: the image stays as stored", Card(1, {Background(1, 32, 20), Item(7, 30)}),
         {{96, {kBackgroundHead}}, {96 + 76, {kItemHead}}}},
        {"unknown kind gets the common head and is walked over",
         Card(0, {Item(7, 30), Graphic({}, 0, false, 0)}), {{96, {kItemHead}}, {126, {kItemHead, kGraphicHead}}}},
        {"text field head and its blocks, chained by their length",
         Card(0, {TextField({TextBlock(10, 30), TextBlock(2, 20)}, 0x10)}),
         {{96, {kItemHead, kTextHead}}, {96 + 128, {kTextBlockHead}}, {96 + 158, {kTextBlockHead}}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes expected = c.stored;
        Apply(expected, 0, kCardHead);
        for (const auto& [at, conversions] : c.behindHead) Apply(expected, at, conversions);
        EXPECT_TRUE(SameBytes(ReadCard(c.stored), expected));
    }
}

// The picture's size comes from the rect unless only its height is zero; a stored reference is
// converted in place and the chunk's length follows.
TEST_F(NormaliseTest, GraphicPictureSizeAndFileReference) {
    const std::string longPath(255, 'f'), longName(255, 'n');
    const Bytes native = Of("C:\\Pics\\Sun\0\0\0\0\0\0\0Sun\0"s);
    const Bytes sun = StoredFileRef("Disk:Pics:Sun", "Sun");
    const Bytes sunNative = Of("D:\\Pics\\Sun\0\0\0\0\0\0\0Sun\0"s);
    struct Case {  // stored and expected: the reference
        const char* name; Bytes stored, expected; uint32_t pictureSize; bool padByte;
        uint16_t width = 0, height = 0, expectWidth = 100, expectHeight = 50;
    };
    // rect: top 20, left -10, bottom 70, right 90: 100 wide, 50 high
    const Case cases[] = {
        {"no stored size", {}, {}, 12, false},
        {"stored height alone zero keeps both", {}, {}, 12, false, 30, 0, 30, 0},
        {"native reference left alone, picture behind", native, native, 8, false},
        {"other platform: stack's drive, two bytes shorter", sun, sunNative, 0, false},
        {"empty volume: two bytes longer", StoredFileRef(":Pics:Sun", "Sun"), sunNative, 8, true},
        {"written here: its own drive", StoredFileRef("C::Art:a", "a"), Of("C:\\Art\\a\0\0\0\0\0\0\0\0a\0"s), 0, false},
        {"odd path: a pad byte", StoredFileRef("Disk:Pic:Sun", "Sun"), Of("D:\\Pic\\Sun\0\0\0\0\0\0\0\0Sun\0"s), 0, false},
        {"bare name", StoredFileRef("Sun", "Sun"), Of("D:\\Sun\0\0\0\0\0\0\0\0Sun\0"s), 0, false},
        {"empty path stays empty", StoredFileRef("", "x"), Of("\0\0\0\0\0\0\0\0x\0"s), 0, false},
        {"longer than the 500-byte start", StoredFileRef(longPath, longName),
         Of("D:\\" + longPath + "\0\0"s + std::string(6, '\0') + longName + "\0"s), 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes g = Graphic(c.stored, c.pictureSize, c.padByte, c.stored.empty() ? 0 : 0x40);
        for (const auto& [at, v] : {std::pair{4, 20}, std::pair{6, -10}, std::pair{8, 70}, std::pair{10, 90}})
            PutBE16(g, at, static_cast<uint16_t>(v));
        const size_t picture = g.size() - c.pictureSize - (c.padByte ? 1 : 0);
        if (c.pictureSize) {
            PutBE16(g, picture, c.width);
            PutBE16(g, picture + 2, c.height);
        }
        const Bytes stored = Card(0, {g, Item(7, 30)});

        Bytes eg = g;
        Apply(eg, 0, {kItemHead, kGraphicHead});
        if (c.pictureSize) {
            Write16(&eg[picture], c.expectWidth);
            Write16(&eg[picture + 2], c.expectHeight);
            Write32(&eg[picture + 4], 0);
        }
        eg = Splice(eg, 80, c.stored.size(), c.expected);
        Write32(&eg[12], static_cast<uint32_t>(eg.size()));
        EXPECT_TRUE(SameBytes(ReadCard(stored), NativeCard(stored, {eg, NativeItem7()})));
    }
}

// --- Buttons and their sub-records -------------------------------------------------------------

TEST_F(NormaliseTest, EachSubRecordTypeGetsItsReaderRule) {
    Bytes launchEmpty = Sub(59, 32);
    PutBE32(launchEmpty, 18, 0);
    Bytes film = Sub(56, 32 + 24);
    std::memcpy(film.data() + 32, "Sprt", 4);
    Bytes animation = Sub(56, 32 + 18 + 20 + 24);
    PutBE16(animation, 40, 2);  // frame count
    PutBE32(animation, 50 + 8, 20);
    PutBE32(animation, 70 + 8, 24);

    struct Case { const char* name; Bytes sub; Conversion rule; };
    const Case cases[] = {
        {"51 NBA", Sub(51, 40), {{22, 16}, {}, {}, {}}},
        {"56 sprite film: body kept", film, {{22}, {}, {4}, {}}},
        {"56 frame-delta animation: head words and each frame's tag and size", animation,
         {{22, 32, 34, 36, 38, 40, 42, 44, 50, 70}, {58, 78}, {4}, {}}},
        {"59 launch without paths", launchEmpty, {{22, 16}, {18}, {}, {}}},
        {"60 other stack without a path: nothing", Sub(60, 32), {}},
        {"83 stack sound", Sub(83, 32), {{22, 24, 4, 16}, {}, {}, {}}},
        {"89 movie without a path", Sub(89, 32), {{22, 2, 20}, {16}, {4}, {}}},
        {"119 laser disc", Sub(119, 96), {{22, 18, 20, 24}, {}, {4}, {}}},
        {"130 icon sizes, two words cleared", Sub(130, 40), {{22, 32, 34}, {}, {}, {36, 38}}},
        {"foreign type walked over", Sub(77, 44), {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes button = Button({c.sub, Sub(64, 32)});
        const Bytes stored = Card(0, {button});
        Bytes e = stored;
        Apply(e, 0, kCardHead);
        Apply(e, 96, {kItemHead, kButtonHead});
        Apply(e, 96 + 136, {kSubWalk, c.rule});
        Apply(e, 96 + 136 + c.sub.size(), {kSubWalk, kSub64});
        EXPECT_TRUE(SameBytes(ReadCard(stored), e));
    }
}

TEST_F(NormaliseTest, PathSubRecordsTakeTheConvertedReference) {
    const Bytes sun = StoredFileRef("Disk:Pics:Sun", "Sun");          // 24 bytes
    const Bytes sunNative = Of("D:\\Pics\\Sun\0\0\0\0\0\0\0Sun\0"s);  // 22
    const Bytes suns = StoredFileRef("Disk:Pics:Sun", "Suns");        // 25
    const Bytes sunsNative = Of("D:\\Pics\\Sun\0\0\0\0\0\0\0Suns\0"s);  // 23
    const Bytes paint = StoredFileRef("Disk:Apps:Paint", "Paint");    // 28
    const Bytes paintNative = Of("D:\\Apps\\Paint\0\0\0\0\0\0\0Paint\0"s);  // 26

    struct Case {  // the document lengths are type 59's
        const char* name; uint16_t type; Bytes body; uint32_t documentLength; Conversion rule; Bytes expectedBody;
        bool oddRounded; uint32_t expectedDocumentLength;
    };
    const Conversion none{};
    const Conversion launch{{22, 16}, {18}, {}, {}};
    const Conversion soundFile{{22, 24, 4}, {}, {}, {}};
    const Case cases[] = {
        {"60 odd result rounded, flags 0x200", 60, suns, 0, none, Cat({sunsNative, {0}}), true, 0},
        {"82 stored pad byte dropped", 82, Cat({sun, {0}}), 0, soundFile, sunNative, false, 0},
        {"59 document and program", 59, Cat({sun, paint}), 24, launch, Cat({sunNative, paintNative}), false, 22},
        {"59 program only", 59, paint, 0, launch, paintNative, false, 0},
        {"59 odd document with its pad byte", 59, Cat({suns, {0}}), 25, launch, Cat({sunsNative, {0}}), true, 23},
        {"59 odd document and program rounded together", 59, Cat({suns, paint}), 25, launch,
         Cat({sunsNative, paintNative, {0}}), true, 23},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes sub = SubWithBody(c.type, c.body, c.oddRounded ? 0 : 0x0104);
        if (c.type == 59) PutBE32(sub, 18, c.documentLength);
        const Bytes stored = Card(0, {Button({sub, Sub(64, 32)})});

        Bytes es = sub;
        Apply(es, 0, {kSubWalk, c.rule});
        es = Splice(es, 32, c.body.size(), c.expectedBody);
        Write32(&es[12], static_cast<uint32_t>(es.size()));
        if (c.oddRounded) Write16(&es[22], 0x200);
        if (c.type == 59) Write32(&es[18], c.expectedDocumentLength);
        Bytes tailSub = Sub(64, 32);
        Apply(tailSub, 0, {kSubWalk, kSub64});
        Bytes eb = Cat({Bytes(stored.begin() + 96, stored.begin() + 96 + 136), es, tailSub});
        Apply(eb, 0, {kItemHead, kButtonHead});
        Write32(&eb[12], static_cast<uint32_t>(eb.size()));
        EXPECT_TRUE(SameBytes(ReadCard(stored), NativeCard(stored, {eb})));
    }
}

// --- Typed records: an 'Actn' is the buttons' walk at 0, which the card tests above run ---------

TEST_F(NormaliseTest, HlnkMovesItsTextUpAByteAndTurnsItsAction) {
    struct Case { const char* name; uint16_t padLength; std::string text; bool withAction; };
    const Case cases[] = {
        {"text and pad, no action", 3, "hello", false},
        {"action right behind the text", 0, "go", true},
        {"action behind a pad, path growing", 2, "hello", true},
    };
    const Bytes ref = StoredFileRef(":Pics:Sun", "Sun");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const size_t n = c.text.size();
        const size_t action = 24 + c.padLength + n;
        Bytes head(action);
        PutBE16(head, 0, 0x0102);
        PutBE16(head, 2, 0x0304);
        PutBE16(head, 4, c.padLength);
        PutBE16(head, 6, static_cast<uint16_t>(n));
        head[8] = c.withAction ? 1 : 0;
        std::copy(c.text.begin(), c.text.end(), head.begin() + 23);
        for (size_t i = 23 + n; i < action; ++i) head[i] = static_cast<uint8_t>(0xA0 + i);
        const Bytes actn = c.padLength ? Button({SubWithBody(60, ref, 0)}) : Button({Sub(83, 32)});
        const Bytes stored = c.withAction ? Cat({head, actn}) : head;
        MemRef record = Make(stored);
        ASSERT_EQ(NormaliseHlnk(record), 0);
        const Bytes memory = BlockBytes(record);

        Bytes expected = head;
        Apply(expected, 0, Conversion{{0, 2, 4, 6}, {}, {}, {}});
        expected[23] = head[23 + n];
        std::copy(c.text.begin(), c.text.end(), expected.begin() + 24);
        if (c.withAction) {
            MemRef alone = Make(actn);
            ASSERT_EQ(NormaliseActn(alone), 0);
            expected = Cat({expected, BlockBytes(alone)});
        }
        EXPECT_TRUE(SameBytes(memory, expected));
    }
}

// --- Damaged records ---------------------------------------------------------------------------

TEST_F(NormaliseTest, DamagedRecordsGiveMinusOneAndStayInside) {
    enum class As { Card, Actn, Hlnk };
    struct Case { const char* name; As as; Bytes bytes; };
    const Bytes sun = StoredFileRef("Disk:Pics:Sun", "Sun");
    auto cardWith = [](Bytes item) { return Card(0, {std::move(item)}); };
    auto with16 = [](Bytes b, size_t at, uint16_t v) { PutBE16(b, at, v); return b; };
    auto with32 = [](Bytes b, size_t at, uint32_t v) { PutBE32(b, at, v); return b; };
    auto cut = [](Bytes b, size_t size) { b.resize(size); return b; };
    Bytes lyingRef = sun;
    lyingRef[0] = 60;
    Bytes animation = Sub(56, 32 + 18 + 20);
    PutBE16(animation, 40, 1);
    PutBE32(animation, 58, 20);
    // A block that holds only the path of its 24-byte reference: the six zero bytes behind the
    // field would pass for the end of the chain if the reference were taken whole.
    Bytes refBlock = Cat({TextBlock(24, 16), Bytes(sun.begin(), sun.begin() + 14)});
    PutBE32(refBlock, 12, 30);
    const Bytes shortBlockRef = Card(0, {TextField({refBlock}, 0x40), Bytes(sun.begin() + 14, sun.end())});
    Bytes hlnk(28);  // four bytes of text at 23, so an action would stand at 28
    PutBE16(hlnk, 6, 4);
    Bytes hlnkAction = Cat({hlnk, Button({Sub(83, 32)})});
    hlnkAction[8] = 1;

    const Case cases[] = {
        {"card shorter than its head", As::Card, cut(Card(0, {}), 60)},
        {"background past the card", As::Card, with32(Card(1, {Background(1, 0, 8)}), 96 + 12, 400)},
        {"colour table past the chunk", As::Card, with32(Card(1, {Background(1, 16, 8)}), 96 + 16, 100)},
        {"format 2 without room for the image fields", As::Card, Card(1, {Background(2, 16, 8)})},
        {"no end mark", As::Card, cut(Card(0, {Item(7, 30)}), 96 + 30)},
        {"item past the card", As::Card, cardWith(with32(Item(7, 30), 12, 300))},
        {"graphic shorter than its head", As::Card, cardWith(Item(16, 40))},
        {"picture size that wraps", As::Card, cardWith(with32(Graphic({}, 8, true, 0), 60, 0xFFFFFFFF))},
        {"picture too small for its size words", As::Card, cardWith(Graphic({}, 4, false, 0))},
        {"reference path longer than its bytes", As::Card, cardWith(Graphic(lyingRef, 0, false, 0x40))},
        {"button shorter than its head", As::Card, cardWith(Item(48, 100))},
        {"sub-record length of zero", As::Card, cardWith(Button({with32(Sub(51, 40), 12, 0)}))},
        {"icon sub-record without its sizes", As::Card, cardWith(Button({Sub(130, 32)}))},
        {"animation frame of size zero", As::Card, cardWith(Button({with32(animation, 58, 0)}))},
        {"launch document longer than the body", As::Card,
         cardWith(Button({with32(SubWithBody(59, sun, 0), 18, 25)}))},
        {"path longer than its sub-record", As::Card, cardWith(Button({SubWithBody(60, lyingRef, 0)}))},
        {"text block past the field", As::Card, cardWith(TextField({with32(TextBlock(4, 30), 12, 31)}, 0))},
        {"text block remainder below a block head, at the card's end", As::Card,
         cut(cardWith(TextField({TextBlock(4, 30), Bytes(8)}, 0)), 96 + 128 + 38)},
        {"text reference longer than its block", As::Card, shortBlockRef},
        {"Actn length past the record", As::Actn, with32(Button({Sub(83, 32)}), 12, 400)},
        {"Hlnk text past the record", As::Hlnk, with16(hlnk, 6, 17)},
        {"Hlnk action past the record", As::Hlnk, with16(hlnkAction, 4, 100)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MemRef ref = Make(c.bytes);
        const int32_t result = c.as == As::Card ? NormaliseCard(ref)
                               : c.as == As::Actn ? NormaliseActn(ref)
                                                  : NormaliseHlnk(ref);
        EXPECT_EQ(result, -1);
    }
}

TEST_F(NormaliseTest, ARefusedConversionGivesMinusOneAndKeepsTheCardsSize) {
    const Bytes stored = Card(0, {Graphic(StoredFileRef("Disk:Pics:Sun", "Sun"), 0, false, 0x40)});
    MemRef card = Make(stored);
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(NormaliseCard(card), -1);
    SetGlobalAllocFailAfter(-1);
    EXPECT_EQ(GetMemRefSize(card), stored.size());
}

}  // namespace
