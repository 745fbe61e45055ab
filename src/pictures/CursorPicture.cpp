#include "pictures/CursorPicture.h"

#include <fmt/core.h>

#include <string>

const ResourcePicture* FindCursorPicture(int32_t cursorId) {
    std::string name;
    if (cursorId == kFlatHandCursor) {
        name = "cursor-flathand";
    } else if (cursorId == kGrabHandCursor) {
        name = "cursor-grabhand";
    } else {
        const int32_t k = (cursorId - 28000) / 16 - 1;
        if (k < 0 || k >= kNumberedCursorCount || NumberedCursorId(k) != cursorId) return nullptr;
        name = fmt::format("cursor-{}", cursorId);
    }
    const ResourcePicture* picture = FindResourcePicture(name);
    // A picture without a hot spot can't aim: better the arrow than a guess.
    return picture && picture->hasHotSpot ? picture : nullptr;
}
