#include "stack/Navigation.h"

#include "stack/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

void LeaveCard(bool pushBack) {
    // Message 9 to the extensions, the card's leave action, stopping scripts, media and sprites,
    // and storing a changed picture come here as their subsystems arrive.
}

void ArriveAtCard(int32_t position, int16_t effect, int16_t speed, bool runActions) {
    Document& doc = GetDocument();
    doc.currentCard = GetCardByPosition(position);
    doc.currentCardId = 0;
    if (doc.currentCard) {
        MemRefLock lock(doc.currentCard);
        doc.currentCardId = ReadS16(lock.data() + kCardId);
    }
    // Composing the card offscreen, the transition, the items coming to life, message 10 and the
    // arrive actions come here as their subsystems arrive.
}
