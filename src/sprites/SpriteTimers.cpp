// The actors' timers run on the host clock: they are checked on the tick and in the waits of
// actions, and a due timer only sets its fired flag, which the actor's handlers read and clear.
#include "card/DisplayList.h"
#include "platform/Host.h"
#include "sprites/Sprites.h"
#include "sprites/Stage.h"

void EnterSpriteTimer(SpriteTimer& timer) {
    timer.entered = true;
    timer.deadline = 0;
}

void ArmSpriteTimer(SpriteTimer& timer, uint32_t ms) {
    const uint32_t deadline = GetHost().GetTickCount() + ms;
    timer.deadline = deadline ? deadline : 1;
}

void RemoveActorTimers(Actor& actor) {
    for (SpriteTimer* t : {&actor.frameTimer, &actor.pathTimer, &actor.endTimer}) *t = SpriteTimer{};
}

void TickSpriteTimers(uint32_t now) {
    SpriteState& s = GetSpriteState();
    // With another tool than browse the timers keep their state and nothing moves.
    if (!s.stage || !IsBrowsing()) return;
    for (Layer& layer : s.stage->layers) {
        for (auto& actor : layer.actors) {
            for (SpriteTimer* t : {&actor->frameTimer, &actor->pathTimer, &actor->endTimer}) {
                if (t->entered && t->deadline != 0 && static_cast<int32_t>(now - t->deadline) >= 0) t->fired = true;
            }
        }
    }
}
