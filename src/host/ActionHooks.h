// The actions that input runs, reached through one table: the window procedure, press tracking and
// hover call these and nothing else of the interpreter, so a test can put recorders in their place
// and see what a click runs. The defaults are the interpreter's own functions.
#pragma once

#include <cstdint>
#include <string>

struct ActionHooks {
    int32_t (*RunItemAction)(void* window, uint16_t itemId, uint32_t spare);
    int32_t (*RunActionById)(uint16_t id, uint32_t spare, uint32_t wait, const std::string& name);
    int32_t (*RunNamedAction)(uint16_t id, uint32_t spare, uint32_t wait, int16_t labelStringId);
    bool (*ActionDoesSomething)(uint16_t id);
};

ActionHooks& GetActionHooks();
// Back to the interpreter's functions.
void ResetActionHooks();
