// Find: the text of every field of the stack searched card by card from the card on show, and a
// hit shown by going to its card and selecting it in its field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

inline constexpr uint16_t kFindAllFields = 1;
inline constexpr uint16_t kFindEditableFields = 2;
inline constexpr uint16_t kFindReadOnlyFields = 4;
inline constexpr uint16_t kFindMatchCase = 16;
inline constexpr uint16_t kFindWrap = 32;
inline constexpr uint16_t kFindAgain = 64;  // go on after the last hit, without the dialog
inline constexpr size_t kFindTextMax = 255;

// Kept from one search to the next.
struct FindRequest {
    uint16_t card = 0;    // card of the last hit
    uint16_t field = 0;   // id of its field
    uint32_t offset = 0;  // of the hit in the field's text
    uint32_t index = 0;   // ordinal of the field among the card's items, where Find Again goes on
    uint16_t options = kFindAllFields;
    std::string text;
};
FindRequest& GetFindRequest();

// The first place at or after `from` where `needle` stands in `text`; letters compare without
// regard to case unless `matchCase`, and only the ASCII ones are folded.
bool FindInBytes(const std::string& text, const std::string& needle, size_t from, bool matchCase, size_t* at);
// Searches for the request's text and shows the hit; false when there was none.
bool FindInStack(FindRequest* request);
