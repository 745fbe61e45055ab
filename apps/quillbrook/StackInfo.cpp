#include "StackInfo.h"

#include <cstring>

#include "stack/Blob.h"
#include "stack/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/ItemFields.h"
#include "stack/Names.h"
#include "stack/StackHeader.h"
#include "text/Windows1252.h"

using Json = nlohmann::ordered_json;

namespace {

std::string Text(const uint8_t* name, uint32_t field) { return Utf8FromWindows1252(NameText(name, field)); }

Json Hex(const uint8_t* bytes, uint32_t count) {
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (uint32_t i = 0; i < count; ++i) {
        hex += kDigits[bytes[i] >> 4];
        hex += kDigits[bytes[i] & 15];
    }
    return hex;
}

Json Header(const uint8_t* h) {
    Json j;
    const auto s16 = [&](const char* name, uint32_t at) { j[name] = ReadS16(h + at); };
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
    j["password"] = Utf8FromWindows1252(
        std::string(reinterpret_cast<const char*>(h + kHdrPassword), strnlen(reinterpret_cast<const char*>(h + kHdrPassword), 16)));
    s16("presentationMode", kHdrPresentationMode);
    s16("presentationColor", kHdrPresentationColor);
    s16("reserved52", kHdrReserved52);
    s16("windowFlags", kHdrWindowFlags);
    s16("cardWidth", kHdrCardWidth);
    s16("cardHeight", kHdrCardHeight);
    j["blobOffset"] = Read32(h + kHdrBlobOffset);
    j["blobCount"] = Read32(h + kHdrBlobCount);
    j["nextBlobId"] = Read32(h + kHdrNextBlobId);
    s16("arriveAction", kHdrArriveAction);
    s16("leaveAction", kHdrLeaveAction);
    s16("stackCursor", kHdrStackCursor);
    s16("clickAction", kHdrClickAction);
    return j;
}

Json Fields(const uint8_t* chunk, const ItemFieldTable& table) {
    Json fields = Json::object();
    for (uint32_t at : table.words) fields[std::to_string(at)] = ReadS16(chunk + at);
    for (uint32_t at : table.longs) fields[std::to_string(at)] = Read32(chunk + at);
    return fields;
}

Json Rect(const uint8_t* r) { return Json::array({ReadS16(r), ReadS16(r + 2), ReadS16(r + 4), ReadS16(r + 6)}); }

Json Item(const uint8_t* chunk) {
    Json j;
    const int16_t kind = ReadS16(chunk + kItemKind);
    j["kind"] = kind;
    j["id"] = ReadS16(chunk + kItemId);
    j["rect"] = Rect(chunk + kItemRect);
    j["itemFlags"] = Read16(chunk + kItemFlags);
    j["length"] = Read32(chunk + kItemLength);
    if (kind == kItemKindGraphic) {
        j["name"] = Text(chunk + kGraphicName, 16);
        j["action"] = ReadS16(chunk + kGraphicAction);
        j["pictureSize"] = Read32(chunk + kGraphicPictureSize);
        j["pictureRect"] = Rect(chunk + kGraphicRect2);
        j["fields"] = Fields(chunk, kGraphicFields);
    } else if (kind == kItemKindButton) {
        j["name"] = Text(chunk + kButtonName, 32);
        j["shape"] = ReadS16(chunk + kButtonShape);
        j["buttonFlags"] = Read16(chunk + kButtonFlags);
        j["textColor"] = ReadS16(chunk + kButtonTextColor);
        j["fillColor"] = ReadS16(chunk + kButtonFillColor);
        j["iconId"] = ReadS16(chunk + kButtonIconId);
        j["cursorId"] = ReadS16(chunk + kButtonCursorId);
        j["fields"] = Fields(chunk, kButtonFields);
        Json subs = Json::array();
        const uint32_t length = Read32(chunk + kItemLength);
        for (uint32_t at = kButtonHeadSize; at + kSubHeadSize <= length;) {
            const uint32_t subLength = Read32(chunk + at + kSubLength);
            subs.push_back({{"type", Read16(chunk + at + kSubType)}, {"length", subLength}});
            if (subLength < kSubHeadSize) break;
            at += subLength;
        }
        j["subRecords"] = subs;
    } else if (kind == kItemKindText) {
        j["name"] = Text(chunk + kTextName, 16);
        j["action"] = ReadS16(chunk + kTextAction);
        j["fields"] = Fields(chunk, kTextFields);
    }
    return j;
}

Json Card(MemRef card) {
    MemRefLock lock(card);
    const uint8_t* c = lock.data();
    Json j;
    j["id"] = ReadS16(c + kCardId);
    j["kind"] = ReadS16(c + kCardKind);
    j["name"] = Text(c + kCardName, 16);
    j["ownerId"] = ReadS16(c + kCardOwnerId);
    j["cardFlags"] = Read16(c + kCardFlags);
    j["size"] = Read32(c + kCardSize);
    j["depth"] = ReadS16(c + kCardDepth);
    j["arriveAction"] = ReadS16(c + kCardArriveAction);
    j["leaveAction"] = ReadS16(c + kCardLeaveAction);
    j["clickAction"] = ReadS16(c + kCardClickAction);
    j["cardCursor"] = ReadS16(c + kCardCursor);
    if (ReadS16(c + kCardKind) == kCardKindPicture) {
        const uint8_t* bg = c + kCardHeadSize;
        j["background"] = {{"format", ReadS16(bg + kBgFormat)}, {"length", Read32(bg + kBgLength)},
                           {"tableSize", Read32(bg + kBgTableSize)}};
    }
    Json items = Json::array();
    const uint32_t size = GetMemRefSize(card);
    for (uint32_t at = ItemChainStart(c); at + kItemCommonHeadSize <= size && ReadS16(c + at) != 0;) {
        items.push_back(Item(c + at));
        at += Read32(c + at + kItemLength);
    }
    j["items"] = items;
    return j;
}

}  // namespace

Json DescribeOpenStack() {
    const Document& doc = GetDocument();
    Json j;
    {
        MemRefLock lock(doc.stackHeader);
        j = Header(lock.data());
    }
    Json cards = Json::array();
    for (int32_t i = 1; i <= CardCount(); ++i) cards.push_back(Card(GetCardByPosition(i)));
    j["cards"] = cards;
    Json records = Json::array();
    for (uint32_t i = 0; i < CountBlobEntries(doc.storeRef); ++i) {
        BlobEntryInfo e;
        GetBlobEntry(doc.storeRef, i, &e);
        records.push_back({{"type", Utf8FromWindows1252(FourCCText(e.type))},
                           {"id", e.id},
                           {"name", Text(e.name, kBlobNameSize)},
                           {"size", e.size},
                           {"flags", e.flags & ~kBlobDeleted},
                           {"deleted", (e.flags & kBlobDeleted) != 0}});
    }
    j["records"] = records;
    return j;
}
