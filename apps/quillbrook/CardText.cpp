#include "CardText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "base/Windows1252.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "text/Fontmap.h"
#include "text/TextRecord.h"

namespace {

std::string PascalName(const uint8_t* name, uint32_t bytes) {
    return Utf8FromWindows1252(std::string(reinterpret_cast<const char*>(name + 1), std::min<uint32_t>(name[0], bytes - 1)));
}

nlohmann::ordered_json RunJson(const StyleRun& run) {
    LogFont font;
    FontToLogFont(run.fontId, &font, run.size);
    return {{"start", run.start},
            {"face", std::string(font.faceName, strnlen(font.faceName, sizeof font.faceName))},
            {"size", run.size},
            {"style", run.style},
            {"color", fmt::format("#{:02x}{:02x}{:02x}", run.red >> 8, run.green >> 8, run.blue >> 8)}};
}

}  // namespace

bool CardText(MemRef card, int32_t position, nlohmann::ordered_json* json, std::string* plain) {
    const auto cardId = static_cast<uint16_t>(GetCardId(card));
    nlohmann::ordered_json fields = nlohmann::ordered_json::array();
    ItemWalker walker;
    BeginItemWalk(&walker, card, true);
    MemRef owner = 0;
    uint32_t offset = 0;
    while (NextItem(&walker, &owner, &offset, false)) {
        MemRefLock lock(owner);
        const uint32_t size = GetMemRefSize(owner);
        const uint8_t* chunk = lock.data() + offset;
        if (ReadS16(chunk + kItemKind) != kItemKindText || offset + kTextHeadSize > size) continue;
        const uint32_t length = std::min(Read32(chunk + kItemLength), size - offset);
        TextRecord record;
        if (!ReadFieldText(chunk, length, cardId, &record)) continue;
        std::string text = record.text;
        std::replace(text.begin(), text.end(), '\r', '\n');
        text = Utf8FromWindows1252(text);
        nlohmann::ordered_json runs = nlohmann::ordered_json::array();
        for (const StyleRun& run : record.runs) runs.push_back(RunJson(run));
        fields.push_back({{"id", Read16(chunk + kItemId)},
                          {"name", PascalName(chunk + kTextName, kItemNameBytes)},
                          {"rect", {ReadS16(chunk + kItemRect), ReadS16(chunk + kItemRect + 2),
                                    ReadS16(chunk + kItemRect + 4), ReadS16(chunk + kItemRect + 6)}},
                          {"text", text},
                          {"runs", runs}});
        *plain += (plain->empty() ? "" : "\n\n") + text;
    }
    EndItemWalk(&walker);
    if (fields.empty()) return false;
    *json = {{"card", position}, {"cardId", cardId}, {"fields", fields}};
    return true;
}
