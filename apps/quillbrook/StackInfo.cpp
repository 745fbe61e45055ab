#include "StackInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "StackJson.h"
#include "base/ByteOrder.h"
#include "base/Windows1252.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/ItemFields.h"
#include "text/TextRecord.h"
#include "stack/Names.h"
#include "stack/StackHeader.h"
#include "stack/SubRecord.h"

using Json = nlohmann::ordered_json;

namespace {

// How a record's numbers are read: native after the normalisation, or big-endian as stored, where
// rectangles also stand in the other order.
struct Order {
    bool stored = false;

    uint16_t U16(const uint8_t* p) const { return stored ? ReadBE16(p) : Read16(p); }
    int16_t S16(const uint8_t* p) const { return static_cast<int16_t>(U16(p)); }
    uint32_t U32(const uint8_t* p) const { return stored ? ReadBE32(p) : Read32(p); }
    // Always printed as [left, top, right, bottom].
    Json Rect(const uint8_t* r) const {
        if (stored) return Json::array({S16(r + 2), S16(r), S16(r + 6), S16(r + 4)});
        return Json::array({S16(r), S16(r + 2), S16(r + 4), S16(r + 6)});
    }
};

bool AllZero(const uint8_t* bytes, uint32_t count) {
    return std::all_of(bytes, bytes + count, [](uint8_t b) { return b == 0; });
}

// One description in progress. A stored description carries the contents behind the heads, and
// notes the first place where the file holds something that building it back would not give.
struct Walk {
    Order order;
    bool contents = false;
    std::string where;
    std::string problem;

    void Problem(const std::string& what) {
        if (problem.empty()) problem = where + ": " + what;
    }
    // The builder writes a name as its length and characters with zeros behind them.
    void CheckName(const uint8_t* name, uint32_t fieldSize, const char* owner) {
        if (!contents) return;
        if (name[0] >= fieldSize) {
            Problem(fmt::format("the {} name's length byte says {}", owner, name[0]));
        } else if (!AllZero(name + 1 + name[0], fieldSize - 1 - name[0])) {
            Problem(fmt::format("bytes behind the end of the {} name", owner));
        }
    }
};

std::string Text(const uint8_t* name, uint32_t field) { return Utf8FromWindows1252(NameText(name, field)); }

Json Hex(const uint8_t* bytes, uint32_t count) {
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(count * 2);
    for (uint32_t i = 0; i < count; ++i) {
        hex += kDigits[bytes[i] >> 4];
        hex += kDigits[bytes[i] & 15];
    }
    return hex;
}

// Raw stretches are printed only when they hold something; the builder writes zero for the others.
void PutReserved(Json& j, const uint8_t* head, const ReservedArea& area) {
    if (!AllZero(head + area.offset, area.size)) j[area.key] = Hex(head + area.offset, area.size);
}

Json Header(const uint8_t* h, const Order& o) {
    Json j;
    const auto s16 = [&](const char* name, uint32_t at) { j[name] = o.S16(h + at); };
    s16("autoSave", kHdrAutoSave);
    s16("advancedUser", kHdrAdvancedUser);
    s16("cardCount", kHdrCardCount);
    s16("reserved6", kHdrReserved6);
    s16("version", kHdrVersion);
    s16("nextCardId", kHdrNextCardId);
    s16("nextItemId", kHdrNextItemId);
    s16("stackFlags", kHdrStackFlags);
    s16("depth", kHdrDepth);
    s16("reserved18", kHdrReserved18);
    s16("autoTimers", kHdrAutoTimers);
    s16("reserved22", kHdrReserved22);
    s16("locked", kHdrLocked);
    s16("showCardNumber", kHdrShowCardNumber);
    j["reserved28"] = Hex(h + kHdrReserved28, 4);
    j["password"] = Utf8FromWindows1252(std::string(reinterpret_cast<const char*>(h + kHdrPassword),
                                                    strnlen(reinterpret_cast<const char*>(h + kHdrPassword), 16)));
    s16("presentationMode", kHdrPresentationMode);
    s16("presentationColor", kHdrPresentationColor);
    s16("reserved52", kHdrReserved52);
    s16("windowFlags", kHdrWindowFlags);
    s16("cardWidth", kHdrCardWidth);
    s16("cardHeight", kHdrCardHeight);
    j["blobOffset"] = o.U32(h + kHdrBlobOffset);
    j["blobCount"] = o.U32(h + kHdrBlobCount);
    j["nextBlobId"] = o.U32(h + kHdrNextBlobId);
    s16("arriveAction", kHdrArriveAction);
    s16("leaveAction", kHdrLeaveAction);
    s16("stackCursor", kHdrStackCursor);
    s16("clickAction", kHdrClickAction);
    PutReserved(j, h, {0, "reserved80", kHdrReserved80, kHdrReserved80Size});
    return j;
}

Json Fields(const uint8_t* chunk, const ItemFieldTable& table, const Order& o) {
    Json fields = Json::object();
    for (uint32_t at : table.words) fields[std::to_string(at)] = o.S16(chunk + at);
    for (uint32_t at : table.longs) fields[std::to_string(at)] = o.U32(chunk + at);
    return fields;
}

// The sub-record chain behind a button's head. Returns whether it fills the body exactly.
bool SubRecords(const uint8_t* chunk, uint32_t length, Walk& w, Json* subs) {
    *subs = Json::array();
    uint32_t at = kButtonHeadSize;
    while (at + kSubHeadSize <= length) {
        const uint32_t subLength = w.order.U32(chunk + at + kSubLength);
        if (subLength < kSubHeadSize || subLength > length - at) break;
        // The builder takes no laser-disc sub-record shorter than its head: such a body goes out raw.
        if (w.contents && w.order.U16(chunk + at + kSubType) == kTagLaserDisc && subLength < kLaserDiscHeadSize) break;
        Json sub = {{"type", w.order.U16(chunk + at + kSubType)}, {"length", subLength}};
        if (w.contents) sub["hex"] = Hex(chunk + at, subLength);
        subs->push_back(sub);
        at += subLength;
    }
    return at == length;
}

Json Item(const uint8_t* chunk, uint32_t length, Walk& w) {
    const Order& o = w.order;
    Json j;
    const int16_t kind = o.S16(chunk + kItemKind);
    j["kind"] = kind;
    j["id"] = o.S16(chunk + kItemId);
    j["rect"] = o.Rect(chunk + kItemRect);
    j["itemFlags"] = o.U16(chunk + kItemFlags);
    j["length"] = length;

    uint32_t headSize = 0;
    if (kind == kItemKindGraphic) {
        headSize = kGraphicHeadSize;
    } else if (kind == kItemKindButton) {
        headSize = kButtonHeadSize;
    } else if (kind == kItemKindText) {
        headSize = kTextHeadSize;
    } else {
        w.Problem(fmt::format("an item of kind {}", kind));
        return j;
    }
    if (length < headSize) {
        w.Problem(fmt::format("item {} is shorter than its head", o.S16(chunk + kItemId)));
        return j;
    }
    const uint32_t nameOffset = kind == kItemKindGraphic ? kGraphicName : kind == kItemKindButton ? kButtonName : kTextName;
    const uint32_t nameSize = kind == kItemKindButton ? 32 : 16;
    j["name"] = Text(chunk + nameOffset, nameSize);
    w.CheckName(chunk + nameOffset, nameSize, "item");
    for (const NamedItemField& named : kNamedItemFields) {
        if (named.kind != kind) continue;
        if (named.width == 4) {
            j[named.key] = o.U32(chunk + named.offset);
        } else {
            j[named.key] = o.S16(chunk + named.offset);
        }
    }
    if (kind == kItemKindGraphic) j["pictureRect"] = o.Rect(chunk + kGraphicRect2);
    j["fields"] = Fields(chunk, kind == kItemKindGraphic ? kGraphicFields : kind == kItemKindButton ? kButtonFields : kTextFields, o);
    for (const ReservedArea& area : kItemReservedAreas) {
        if (area.kind == kind) PutReserved(j, chunk, area);
    }
    if (kind == kItemKindButton) {
        Json subs;
        const bool whole = SubRecords(chunk, length, w, &subs);
        j["subRecords"] = subs;
        // A body that is not a clean chain goes out as it stands, so that it is built back the same.
        if (w.contents && !whole) j["raw"] = Hex(chunk + headSize, length - headSize);
    } else if (w.contents) {
        j["raw"] = Hex(chunk + headSize, length - headSize);
    } else if (kind == kItemKindText && !(o.U16(chunk + kItemFlags) & kItemFlagFileRef)) {
        // The text of the first record, which serves every card that has none of its own.
        uint32_t at = 0;
        TextRecord record;
        if (FindTextRecord(chunk, length, 0, false, &at) &&
            ReadTextRecord(chunk + at, length - at, StackTextIsMacintosh(), &record) == 0) {
            j["text"] = Utf8FromWindows1252(record.text);
        }
    }
    return j;
}

Json Card(const uint8_t* c, uint32_t size, Walk& w, const Json& header) {
    const Order& o = w.order;
    Json j;
    const int16_t kind = o.S16(c + kCardKind);
    j["id"] = o.S16(c + kCardId);
    j["kind"] = kind;
    j["name"] = Text(c + kCardName, 16);
    w.CheckName(c + kCardName, 16, "card");
    j["ownerId"] = o.S16(c + kCardOwnerId);
    j["cardFlags"] = o.U16(c + kCardFlags);
    j["size"] = o.U32(c + kCardSize);
    j["depth"] = o.S16(c + kCardDepth);
    j["menuShown"] = o.S16(c + kCardMenuShown);
    // Loading puts the stack's card size here; a file may say otherwise.
    if (o.S16(c + kCardWidth) != header["cardWidth"].get<int>()) j["width"] = o.S16(c + kCardWidth);
    if (o.S16(c + kCardHeight) != header["cardHeight"].get<int>()) j["height"] = o.S16(c + kCardHeight);
    j["arriveAction"] = o.S16(c + kCardArriveAction);
    j["leaveAction"] = o.S16(c + kCardLeaveAction);
    j["clickAction"] = o.S16(c + kCardClickAction);
    j["cardCursor"] = o.S16(c + kCardCursor);
    for (const ReservedArea& area : kCardReservedAreas) PutReserved(j, c, area);
    if (w.contents && kind != kCardKindBlank && kind != kCardKindPicture && kind != kCardKindGroupMember) {
        w.Problem(fmt::format("a card of kind {}", kind));
    }
    if (o.S16(c + kCardReserved56) != 0) j["reserved56"] = o.S16(c + kCardReserved56);

    uint32_t at = kCardHeadSize;
    if (kind == kCardKindPicture) {
        const uint8_t* bg = c + kCardHeadSize;
        const uint32_t length = kCardHeadSize + kBgHeadSize <= size ? o.U32(bg + kBgLength) : 0;
        if (length < kBgHeadSize || length > size - kCardHeadSize) {
            w.Problem("the background chunk does not fit the card");
            j["items"] = Json::array();
            return j;
        }
        const uint16_t flags = o.U16(bg + kBgFlags);
        const int16_t format = o.S16(bg + kBgFormat);
        const uint32_t tableSize = o.U32(bg + kBgTableSize);
        Json b = {{"format", format}, {"length", length}, {"tableSize", tableSize}, {"flags", flags}};
        for (const ReservedArea& area : kBackgroundReservedAreas) PutReserved(b, bg, area);
        if (w.contents) {
            // The pad byte is the builder's to add.
            const uint32_t pad = (flags & kBgFlagOddPad) && length > kBgHeadSize ? 1 : 0;
            const uint32_t count = length - kBgHeadSize - pad;
            if (format < 1 || format > 3) w.Problem(fmt::format("a background of format {}", format));
            if (count == 0 || tableSize > count) w.Problem("a background without an image behind its colour table");
            if (pad && bg[length - 1] != 0) w.Problem("the background's pad byte is not zero");
            if (count % 2 == 0 && pad) w.Problem("the background is padded to an odd length");
            if (count % 2 != 0 && !pad) w.Problem("the background is of odd length without its pad byte");
            b["hex"] = Hex(bg + kBgHeadSize, count);
        }
        j["background"] = b;
        at += length;
    }
    Json items = Json::array();
    while (at + 2 <= size && o.S16(c + at) != 0) {
        const uint32_t length = at + kItemCommonHeadSize <= size ? o.U32(c + at + kItemLength) : 0;
        if (length < kItemCommonHeadSize || length > size - at) {
            w.Problem(fmt::format("the item at card offset {} does not fit the card", at));
            break;
        }
        items.push_back(Item(c + at, length, w));
        at += length;
    }
    j["items"] = items;
    if (w.contents) {
        static const uint8_t kTail[] = {0, 0, 0xFA, 0xCE};
        if (at + kCardTailSize != size || std::memcmp(c + at, kTail, kCardTailSize) != 0) {
            w.Problem("the card does not end in its chain's end mark and 0xFACE right behind the items");
        }
    }
    return j;
}

Json Record(const BlobEntryInfo& e) {
    Json j = {{"type", Utf8FromWindows1252(FourCCText(e.type))},
              {"id", e.id},
              {"name", Text(e.name, kBlobNameSize)},
              {"size", e.size},
              {"flags", e.flags & ~kBlobDeleted},
              {"deleted", (e.flags & kBlobDeleted) != 0}};
    if (e.reserved != 0) j["reserved6"] = e.reserved;
    return j;
}

}  // namespace

Json DescribeOpenStack() {
    const Document& doc = GetDocument();
    Walk w;
    Json j;
    {
        MemRefLock lock(doc.stackHeader);
        j = Header(lock.data(), w.order);
    }
    Json cards = Json::array();
    for (int32_t i = 1; i <= CardCount(); ++i) {
        const MemRef card = GetCardByPosition(i);
        MemRefLock lock(card);
        cards.push_back(Card(lock.data(), GetMemRefSize(card), w, j));
    }
    j["cards"] = cards;
    Json records = Json::array();
    for (uint32_t i = 0; i < CountBlobEntries(doc.storeRef); ++i) {
        BlobEntryInfo e;
        GetBlobEntry(doc.storeRef, i, &e);
        records.push_back(Record(e));
    }
    j["records"] = records;
    return j;
}

bool DescribeStoredStack(const std::vector<uint8_t>& file, Json* description, std::string* problem) {
    Walk w;
    w.order.stored = true;
    w.contents = true;
    w.where = "header";
    if (file.size() < kStackHeaderSize) {
        *problem = "the file is shorter than a stack header";
        return false;
    }
    const uint8_t* f = file.data();
    Json j = Header(f, w.order);
    const size_t passwordLength = strnlen(reinterpret_cast<const char*>(f + kHdrPassword), 16);
    if (passwordLength == 16 || !AllZero(f + kHdrPassword + passwordLength, static_cast<uint32_t>(16 - passwordLength))) {
        w.Problem("the password field holds more than a zero-terminated text of at most 15 characters");
    }

    Json cards = Json::array();
    uint64_t at = kStackHeaderSize;
    const int count = ReadBE16(f + kHdrCardCount);
    for (int i = 1; i <= count && w.problem.empty(); ++i) {
        w.where = fmt::format("card {} at file offset {}", i, at);
        const uint32_t size = at + kCardHeadSize <= file.size() ? ReadBE32(f + at + kCardSize) : 0;
        if (size < kEmptyCardSize || size > file.size() - at) {
            w.Problem("the card does not fit the file");
            break;
        }
        cards.push_back(Card(f + at, size, w, j));
        at += size;
    }
    j["cards"] = cards;

    Json records = Json::array();
    w.where = fmt::format("typed records at file offset {}", at);
    if (w.problem.empty() && at != ReadBE32(f + kHdrBlobOffset)) w.Problem("the area does not start where the cards end");
    const uint32_t blobCount = ReadBE32(f + kHdrBlobCount);
    for (uint32_t i = 0; i < blobCount && w.problem.empty(); ++i) {
        w.where = fmt::format("record {} at file offset {}", i, at);
        if (at + kBlobHeadSize > file.size()) {
            w.Problem("the entry head does not fit the file");
            break;
        }
        const uint8_t* e = f + at;
        BlobEntryInfo info;
        info.type = ReadBE32(e + kBlobHeadType);
        info.id = ReadBE16(e + kBlobHeadId);
        info.reserved = ReadBE16(e + kBlobHeadReserved6);
        std::memcpy(info.name, e + kBlobHeadName, kBlobNameSize);
        info.flags = ReadBE32(e + kBlobHeadFlags);
        info.size = ReadBE32(e + kBlobHeadSizeField);
        const uint32_t next = ReadBE32(e + kBlobHeadNext);
        if (next != ((info.size + 3) & ~3u) || next > file.size() - at - kBlobHeadSize) {
            w.Problem(fmt::format("size {} and next {} do not agree with the file", info.size, next));
            break;
        }
        w.CheckName(info.name, kBlobNameSize, "record");
        Json r = Record(info);
        PutReserved(r, e, {0, "reserved52", kBlobHeadReserved52, kBlobHeadReserved52Size});
        r["hex"] = Hex(e + kBlobHeadSize, info.size);
        if (!AllZero(e + kBlobHeadSize + info.size, next - info.size)) w.Problem("the data's padding is not zero");
        records.push_back(r);
        at += kBlobHeadSize + next;
    }
    if (w.problem.empty() && at != file.size()) {
        w.where = fmt::format("file offset {}", at);
        w.Problem("bytes behind the last typed record");
    }
    j["records"] = records;
    if (!w.problem.empty()) {
        *problem = w.problem;
        return false;
    }
    *description = std::move(j);
    return true;
}
