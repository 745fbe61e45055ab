#include "host/ActionHooks.h"

#include "actions/ActionQuery.h"
#include "actions/RunAction.h"

namespace {

ActionHooks DefaultHooks() {
    return {::RunItemAction, ::RunActionById, ::RunNamedAction, ::ActionDoesSomething};
}

ActionHooks gHooks = DefaultHooks();

}  // namespace

ActionHooks& GetActionHooks() { return gHooks; }
void ResetActionHooks() { gHooks = DefaultHooks(); }
