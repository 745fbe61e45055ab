// The window title: the stack's name and, when the stack asks for it, the card's number.
#include <string>

#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/Host.h"
#include "player/Navigation.h"
#include "player/NavigationInternal.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

struct TitleState {
    bool hasTitle = false;          // the window has been given a title
    bool showedCardNumber = false;  // showCardNumber at the last update
};
TitleState gTitle;

// The current card's number among the numbered cards; 0 for none or an unnumbered card.
int32_t CardNumber(MemRef current) {
    const int32_t position = GetCardPosition(current);
    if (position == 0 || (GetCardFlags(current) & kCardFlagUnnumbered)) return 0;
    int32_t number = 0;
    for (int32_t i = 1; i <= position; ++i) {
        if (!(GetCardFlags(GetCardByPosition(i)) & kCardFlagUnnumbered)) ++number;
    }
    return number;
}

}  // namespace

std::string CardTitle() {
    const Document& doc = GetDocument();
    std::string title = doc.hasFile ? doc.stackName : GetString(kStringUntitled);
    const int32_t number = doc.showCardNumber ? CardNumber(doc.currentCard) : 0;
    if (number > 0) {
        std::string label = GetString(kStringCardNumber);
        if (label.size() >= 2 && IsGroupCard(doc.currentCard)) label[1] = '*';
        title += label + std::to_string(number);
    }
    return title;
}

void UpdateTitle(bool force) {
    const bool showNumber = GetDocument().showCardNumber;
    // Without numbers a title only changes with the stack, which forces the update.
    if (!showNumber && !gTitle.showedCardNumber && !force && gTitle.hasTitle) return;
    gTitle.showedCardNumber = showNumber;
    gTitle.hasTitle = true;
    GetHost().SetTitle(CardTitle());
}

void ResetTitleState() {
    gTitle = TitleState{};
}
