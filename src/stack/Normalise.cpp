// Placeholder until the normalisation lands.
#include "stack/Normalise.h"
namespace { bool gSeen = false, gWhite = false; }
void ResetWhiteFirstTest() { gSeen = false; gWhite = false; }
bool IsWhiteFirstStack() { return gWhite; }
int32_t NormaliseCard(MemRef) { return 0; }
int32_t NormaliseButton(MemRef, uint32_t) { return 0; }
int32_t NormaliseActn(MemRef) { return 0; }
int32_t NormaliseHlnk(MemRef) { return 0; }
MemRef ConvertStoredPath(const uint8_t*, uint32_t, bool*, bool) { return 0; }
