// The pointer's shapes. The system's own cursor pictures are not drawn yet: every id shows the
// arrow, as the host does for an id it has no picture for; the wait cursor is SDL's.
#include "platform/sdl/SdlState.h"

namespace {

SDL_Cursor* CursorFor(int32_t cursorId) {
    (void)cursorId;
    return GetSdlState().arrowCursor;
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
    if (s.arrowCursor) SDL_FreeCursor(s.arrowCursor);
    if (s.waitCursor) SDL_FreeCursor(s.waitCursor);
    s.arrowCursor = s.waitCursor = s.shownCursor = nullptr;
}
