// Whether a stack may start a program or open a document outside the player.
#include <string>

#include "policy/Policy.h"

void SetPolicyConfirmLaunch(PolicyConfirmLaunch confirm) {
    GetPolicyState().confirmLaunch = confirm;
}

bool PolicyAllowsLaunch(const std::string& program) {
    if (program.empty() || program.find('\0') != std::string::npos || PolicyOnWeb()) return false;
    PolicyState& state = GetPolicyState();
    const std::string& stack = state.context.stackPath;
    if (state.context.place == PolicyPlace::Headless) {
        state.launchesRecorded.push_back({stack, program, false});
        return false;
    }
    for (const PolicyLaunchAnswer& answer : state.launchAnswers) {
        if (answer.stackPath == stack && answer.program == program) return answer.allowed;
    }
    if (!state.confirmLaunch) return false;
    const bool allowed = state.confirmLaunch(program, stack);
    state.launchAnswers.push_back({stack, program, allowed});
    return allowed;
}
