// The pointer shapes the window procedure can ask the host for, drawn as our own pictures
// (resources/pictures/cursor-*.txt, each with its hot spot). Stacks name their cursors by resource
// id, 28000 + 16 × (k + 1) for the k-th of the system's cursors; the two hands have no id there,
// so they get ids above the 16-bit range that a stored id can never reach.
#pragma once

#include <cstdint>

#include "pictures/ResourcePicture.h"

inline constexpr int32_t kArrowCursor = 0;
inline constexpr int32_t kFlatHandCursor = 0x10001;  // the picture can be grabbed
inline constexpr int32_t kGrabHandCursor = 0x10002;  // the picture is being dragged
// How many numbered cursors the system has, and the id of the k-th (from 0).
inline constexpr int32_t kNumberedCursorCount = 7;
inline constexpr int32_t NumberedCursorId(int32_t k) {
    return 28000 + 16 * (k + 1);
}

// The picture of a cursor id, with its hot spot; null for the arrow and for an id we have no
// picture for (the host shows the arrow then).
const ResourcePicture* FindCursorPicture(int32_t cursorId);
