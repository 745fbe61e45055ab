// Hot words: an 'Hlnk' record names a piece of text, in one text field or in all of them, and the
// action behind it; a click on those words in a field on show runs it, after the words flash.
// In read-only text the point of the click decides; in a field being typed into, the selection
// the click made (the insertion point counts on the words' first character too).
#pragma once

#include <cstddef>
#include <cstdint>

struct DisplayItem;  // card/DisplayList.h

// A flash shows the words this long, and hides them as long between.
inline constexpr uint32_t kLinkFlashMs = 300;

// The link whose words hold the character at (x, y), in window coordinates, of `field` (or, in the
// field being typed into, its selection): first the links of the field's own id, then those of
// every field (id 0), each in store order; 0 when none. A click on the words' first character
// misses, as it always has. `*start` and `*end` get the words.
int16_t FindHyperLink(const DisplayItem& field, int32_t x, int32_t y, size_t* start, size_t* end);
// Runs the action of link `id` (in the browse tool): 1 when the link exists.
int32_t RunHyperLink(uint16_t id, uint32_t wait);
// A mouse-up at (x, y): with timers and links on, on a text field's link, flashes its words and
// runs it. True when a link ran.
bool ClickHyperLink(void* window, int32_t x, int32_t y);
