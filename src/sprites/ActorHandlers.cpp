// The rows of handlers an actor is bound to: how its frames advance, how it steps along its path,
// when it ends. Each is chosen by index from the record when the actor starts.
#include <cstdlib>
#include <iterator>

#include "gfx/Blit.h"
#include "sprites/Stage.h"

namespace {

bool StillGoing(Actor& a) { return !a.h.stillGoing || a.h.stillGoing(a); }

// One step of an index in [first, end): past either end it counts a loop and, if the actor goes
// on, wraps to the end it comes in from (forward to first, backward to the last); else it stays.
int32_t StepWithin(Actor& a, int32_t index, int32_t step, uint32_t first, uint32_t end, uint32_t* loops) {
    const int32_t next = index + step;
    if (next >= static_cast<int32_t>(first) && next < static_cast<int32_t>(end)) return next;
    ++*loops;
    if (!StillGoing(a)) return index;
    return step > 0 ? static_cast<int32_t>(first) : static_cast<int32_t>(end) - 1;
}

// Frames, forward or backward by the sign of the step.
bool FrameWithin(Actor& a) {
    const int32_t was = a.frame;
    a.frame = StepWithin(a, a.frame, a.frameStep, a.record.firstFrame, a.record.endFrame, &a.frameLoops);
    SelectFrame(a);
    return a.frame != was;
}

// No bounds: a frame the film lacks is not selected and the last one stays.
bool FrameFree(Actor& a) {
    const int32_t was = a.frame;
    a.frame += a.frameStep;
    if (!SelectFrame(a)) a.frame = was;
    return a.frame != was;
}

bool FrameHold(Actor& a) {
    SelectFrame(a);
    return false;
}

bool (*const kFrameAdvancers[])(Actor&) = {nullptr, FrameWithin, FrameWithin, FrameFree, FrameHold};

// Paths.
void PlaceAtPoint(Actor& a) {
    const PathPoint& p = a.record.points[static_cast<size_t>(a.pathIndex)];
    PlaceActor(a, p.x, p.y);
}

// Forward or backward by the sign of the step, ending (or wrapping) at the path's ends.
void PathWithin(Actor& a) {
    a.pathIndex = StepWithin(a, a.pathIndex, a.pathStep, a.record.firstPoint, a.record.endPoint, &a.pathLoops);
    PlaceAtPoint(a);
}

void PathLoop(Actor& a) {
    const auto first = static_cast<int32_t>(a.record.firstPoint);
    const auto end = static_cast<int32_t>(a.record.endPoint);
    a.pathIndex += a.pathStep;
    if (a.pathIndex >= end) {
        a.pathIndex = first;
        ++a.pathLoops;
    } else if (a.pathIndex < first) {
        a.pathIndex = end - 1;
        ++a.pathLoops;
    }
    PlaceAtPoint(a);
}

// Turns at each end point, counting every turn. The leg's stamps and overItems come in at the
// turn; a change of overItems hides the actor for one step, so it never shows half in front.
void PathPingPong(Actor& a) {
    const auto first = static_cast<int32_t>(a.record.firstPoint);
    const auto last = static_cast<int32_t>(a.record.endPoint) - 1;
    a.pathIndex += a.pathStep;
    if (a.hiddenOneStep) {
        SetVisible(a, true);
        a.hiddenOneStep = false;
    }
    const bool up = a.pathStep >= 1;
    if ((up && a.pathIndex >= last) || (!up && a.pathIndex <= first)) {
        a.pathIndex = up ? last : first;
        ++a.pathLoops;
        a.pathStep = -a.pathStep;
        const int leg = a.pathStep >= 1 ? 1 : 2;
        a.stamps = a.record.stamps[leg] != 0;
        const bool over = a.record.overItems[leg] != 0;
        if (over != a.overItems) {
            a.overItems = over;
            a.hiddenOneStep = true;
            SetVisible(a, false);
        }
        const bool mirrorHere = up ? a.record.mirrorAtEnd : a.record.mirrorAtStart;
        if (StillGoing(a) && (mirrorHere || a.images.showingMirrored)) {
            ToggleMirror(a.images);
            SelectFrame(a);
            a.moved = true;
        }
    }
    PlaceAtPoint(a);
}

void (*const kPathSteppers[])(Actor&) = {nullptr, PathWithin, PathWithin, PathPingPong, PathLoop};

// The linked form: one frame for each step on the path.
void StepPathAndFrame(Actor& a) {
    a.h.advancePath(a);
    a.frameTimer.fired = true;
}
void ClearFrameDue(Actor& a) { a.frameTimer.fired = false; }

// Time.
void RearmFrameTimer(Actor& a) {
    if (a.frameInterval >= 1) {
        a.frameTimer.fired = false;
        ArmSpriteTimer(a.frameTimer, a.frameInterval);
    }
}
void RearmPathTimer(Actor& a) {
    if (a.pathInterval >= 1) {
        a.pathTimer.fired = false;
        ArmSpriteTimer(a.pathTimer, a.pathInterval);
    }
}
void RearmPathTimerByPoint(Actor& a) {
    const PathPoint& p = a.record.points[static_cast<size_t>(a.pathIndex)];
    const uint64_t ms = uint64_t{p.timeMs} * a.record.speedPercent / 100;
    if (ms >= 1) {
        a.pathTimer.fired = false;
        ArmSpriteTimer(a.pathTimer, static_cast<uint32_t>(ms > UINT32_MAX / 2 ? UINT32_MAX / 2 : ms));
    }
}

// End tests, by endMode. Modes 1 and 3 name no test: the actor ends after one pass of its path, or
// of its frames without a path.
bool RunsUntilStopped(Actor&) { return true; }
bool EndTimerNotDue(Actor& a) { return !a.endTimer.fired; }
bool FrameLoopsLeft(Actor& a) { return a.frameLoops < a.record.frameLoopLimit; }
bool PathLoopsLeft(Actor& a) {
    return a.pathLoops / (a.record.pathMode == 3 ? 2 : 1) < a.record.pathLoopLimit;
}
bool OnePass(Actor& a) { return a.h.stepPath ? a.pathLoops < 1 : a.frameLoops < 1; }

bool (*const kEndTests[])(Actor&) = {RunsUntilStopped, OnePass, EndTimerNotDue, OnePass, FrameLoopsLeft,
                                     PathLoopsLeft};

void EndActor(Actor& a) { SetVisible(a, a.record.endVisible != 0); }

// What each behaviour runs: frames, a path, or both; 4 links a frame to each path step.
struct BehaviourRow {
    bool frames, path, linked;
};
constexpr BehaviourRow kBehaviours[] = {
    {false, false, false}, {true, false, false}, {false, true, false}, {true, true, false}, {true, true, true}};

uint16_t PickBehaviour(const SpriteRecord& r) {
    const size_t frames = r.film.frames.size();
    if (r.points.size() < 2) return frames > 1 ? 1 : 0;
    return frames < 2 ? 2 : 3;
}

}  // namespace

bool SelectFrame(Actor& a) {
    if (a.frame < 0 || static_cast<size_t>(a.frame) >= a.images.frames.size()) return false;
    const FilmFrame& f = a.record.film.frames[static_cast<size_t>(a.frame)];
    const Surface& picture = a.images.frames[static_cast<size_t>(a.frame)];
    a.hotspotX = f.hotspotX;
    a.hotspotY = f.hotspotY;
    a.rect.right = a.rect.left + picture.width;
    a.rect.bottom = a.rect.top + picture.height;
    return true;
}

void SetVisible(Actor& a, bool on) {
    a.visible = on;
    a.moved = true;
    a.erase = !on;
}

void PlaceActor(Actor& a, int32_t x, int32_t y) {
    const Rect to = OffsetRect(a.rect, x + a.hotspotX - a.rect.left, y + a.hotspotY - a.rect.top);
    if (to == a.rect) return;
    a.rect = to;
    a.moved = true;
}

void DrawActorFrame(const Actor& a, Surface& target, const Rect& part) {
    if (a.frame < 0 || static_cast<size_t>(a.frame) >= a.images.frames.size()) return;
    const Surface& picture = a.images.frames[static_cast<size_t>(a.frame)];
    BitMask mask = a.images.masks[static_cast<size_t>(a.frame)];
    mask.left = a.rect.left;
    mask.top = a.rect.top;
    const Rect area = IntersectRect(part, a.rect);
    if (area.IsEmpty()) return;
    const Rect from = OffsetRect(area, -a.rect.left, -a.rect.top);
    MaskedCopy(target, target.Bounds(), area.left, area.top, picture, from, mask);
}

void BindActorHandlers(Actor& a) {
    SpriteRecord& r = a.record;
    a.behaviour = r.behaviour == kBehaviourPick ? PickBehaviour(r) : r.behaviour;
    const BehaviourRow row = a.behaviour < std::size(kBehaviours) ? kBehaviours[a.behaviour] : BehaviourRow{};
    a.h = ActorHandlers{};
    a.h.onEnd = EndActor;
    a.h.stillGoing = r.endMode < std::size(kEndTests) ? kEndTests[r.endMode] : RunsUntilStopped;
    const bool hasFilm = r.endFrame > r.firstFrame;
    if (row.frames && hasFilm && r.frameMode < std::size(kFrameAdvancers)) {
        a.h.advanceFrame = kFrameAdvancers[r.frameMode];
        a.frameStep = r.frameMode == 2 ? -std::abs(r.frameStep) : r.frameStep;
        // Without a timer the frame moves on every step.
        a.frameTimer.fired = true;
        if (r.frameTimeMode == 2) {
            a.h.rearmFrame = RearmFrameTimer;
            EnterSpriteTimer(a.frameTimer);
            a.frameInterval = r.frameRate;
            a.frameTimer.fired = false;
        }
    }
    const bool hasPath = r.endPoint > r.firstPoint;
    if (row.path && hasPath && r.pathMode < std::size(kPathSteppers)) {
        a.h.stepPath = kPathSteppers[r.pathMode];
        a.pathStep = r.pathMode == 2 ? -std::abs(r.pathStep) : r.pathStep;
        if (a.pathStep == 0) a.pathStep = r.pathMode == 2 ? -1 : 1;
        if (row.linked && a.h.stepPath) {
            a.h.advancePath = a.h.stepPath;
            a.h.stepPath = StepPathAndFrame;
            a.h.rearmFrame = ClearFrameDue;
            a.frameTimer.fired = false;
        }
        a.pathTimer.fired = true;
        if (r.pathTimeMode == 2) {
            EnterSpriteTimer(a.pathTimer);
            if (r.pathTimeSource == 1) {
                a.h.rearmPath = RearmPathTimerByPoint;
            } else {
                a.pathInterval = r.pathRate;
                a.h.rearmPath = RearmPathTimer;
            }
            a.pathTimer.fired = false;
        }
    }
    if (r.endMode == 2) {
        EnterSpriteTimer(a.endTimer);
        a.endTimer.fired = false;
    }
}
