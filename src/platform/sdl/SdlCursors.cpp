// The pointer's shapes: the arrow and the wait cursor are SDL's; every other id the core asks for
// is made from our own cursor picture the first time it is shown, and kept until shutdown.
#include <map>
#include <vector>

#include "pictures/CursorPicture.h"
#include "platform/sdl/SdlState.h"

namespace {

struct CursorCache {
    // Null for an id without a picture (or one SDL refused), so that it is not tried again.
    std::map<int32_t, SDL_Cursor*> made;
};
CursorCache gCache;

// A colour cursor from the picture: opaque pixels in their colour, the rest see-through.
SDL_Cursor* MakeCursor(const ResourcePicture& picture) {
    const int32_t w = picture.pixels.width, h = picture.pixels.height;
    std::vector<uint32_t> argb(static_cast<size_t>(w) * static_cast<size_t>(h));
    for (int32_t y = 0; y < h; ++y) {
        const uint32_t* row = picture.pixels.Row(y);
        for (int32_t x = 0; x < w; ++x) {
            const uint32_t alpha = picture.mask.Get(x, y) ? 0xFF000000u : 0u;
            argb[static_cast<size_t>(y) * static_cast<size_t>(w) + static_cast<size_t>(x)] =
                alpha | (row[x] & 0xFFFFFFu);
        }
    }
    SDL_Surface* surface =
        SDL_CreateRGBSurfaceWithFormatFrom(argb.data(), w, h, 32, w * 4, SDL_PIXELFORMAT_ARGB8888);
    if (!surface) return nullptr;
    // SDL copies the pixels into the cursor, so the surface and its buffer may go now.
    SDL_Cursor* cursor = SDL_CreateColorCursor(surface, picture.hotSpotX, picture.hotSpotY);
    SDL_FreeSurface(surface);
    return cursor;
}

SDL_Cursor* CursorFor(int32_t cursorId) {
    SDL_Cursor* arrow = GetSdlState().arrowCursor;
    if (cursorId == kArrowCursor) return arrow;
    auto found = gCache.made.find(cursorId);
    if (found == gCache.made.end()) {
        const ResourcePicture* picture = FindCursorPicture(cursorId);
        found = gCache.made.emplace(cursorId, picture ? MakeCursor(*picture) : nullptr).first;
    }
    return found->second ? found->second : arrow;
}

void ShowCursor() {
    SdlState& s = GetSdlState();
    SDL_Cursor* cursor = s.waitCursorDepth > 0 ? s.waitCursor : CursorFor(s.cursorId);
    // The window procedure sets the cursor on every move; SDL is told only of a change.
    if (!cursor || cursor == s.shownCursor) return;
    SDL_SetCursor(cursor);
    s.shownCursor = cursor;
}

}  // namespace

void SdlSetCursor(int32_t cursorId) {
    GetSdlState().cursorId = cursorId;
    ShowCursor();
}

void SdlSetWaitCursor(bool wait) {
    SdlState& s = GetSdlState();
    s.waitCursorDepth += wait ? 1 : -1;
    if (s.waitCursorDepth < 0) s.waitCursorDepth = 0;
    ShowCursor();
}

void CreateSdlCursors() {
    SdlState& s = GetSdlState();
    s.arrowCursor = SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_ARROW);
    s.waitCursor = SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_WAIT);
    ShowCursor();
}

void FreeSdlCursors() {
    SdlState& s = GetSdlState();
    // SDL puts its default cursor back itself when the one shown is freed.
    for (const auto& entry : gCache.made) {
        if (entry.second) SDL_FreeCursor(entry.second);
    }
    gCache = CursorCache{};
    if (s.arrowCursor) SDL_FreeCursor(s.arrowCursor);
    if (s.waitCursor) SDL_FreeCursor(s.waitCursor);
    s.arrowCursor = s.waitCursor = s.shownCursor = nullptr;
}
