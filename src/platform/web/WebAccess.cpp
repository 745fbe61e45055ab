// What a screen reader hears of the card on show: its name, its visible buttons' names and its
// visible fields' text, handed to the page (an offscreen live region) whenever another card comes
// up. Looked at on each present, which every change of card ends with.
#include <emscripten.h>

#include <string>

#include "base/Windows1252.h"
#include "card/DisplayList.h"
#include "memory/MemRef.h"
#include "platform/web/WebState.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

EM_JS(void, QbJsDescribeCard, (const char* text), { Module.qbDescribeCard(UTF8ToString(text)); });

namespace {

inline constexpr size_t kCardNameBytes = 16;

struct WebAccess {
    MemRef card = 0;
    int16_t cardId = 0;
    const DisplayItem* firstItem = nullptr;
};
WebAccess gAccess;

std::string CardName(MemRef card) {
    if (!card || GetMemRefSize(card) < kCardName + kCardNameBytes) return "";
    const MemRefLock lock(card);
    const uint8_t* name = lock.data() + kCardName;
    const size_t length = name[0] < kCardNameBytes ? name[0] : kCardNameBytes - 1;
    return std::string(reinterpret_cast<const char*>(name + 1), length);
}

bool Visible(const DisplayItem& item) {
    return !item.hidden && (item.flags & kItemFlagHidden) == 0;
}

std::string DescribeCard(MemRef card) {
    std::string buttons, fields;
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (!Visible(*item)) continue;
        if (item->type == kItemKindButton && !item->name.empty()) {
            buttons += (buttons.empty() ? "" : ", ") + item->name;
        } else if (item->type == kItemKindText && !item->document.text.empty()) {
            std::string text = item->document.text;
            for (char& c : text) {
                if (c == '\r') c = '\n';
            }
            fields += text + "\n";
        }
    }
    std::string text = "Card: " + CardName(card) + "\n";
    if (!buttons.empty()) text += "Buttons: " + buttons + "\n";
    return text + fields;
}

}  // namespace

void DescribeCardIfChanged() {
    const Document& doc = GetDocument();
    const DisplayItem* first = DisplayListHead();
    if (doc.currentCard == gAccess.card && doc.currentCardId == gAccess.cardId && first == gAccess.firstItem) return;
    gAccess = WebAccess{doc.currentCard, doc.currentCardId, first};
    QbJsDescribeCard(Utf8FromWindows1252(DescribeCard(doc.currentCard)).c_str());
}
