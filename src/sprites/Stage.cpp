// The stage: made by the first actor, stepped on the tick, gone after the last actor. Each step
// updates the actors, then draws only the union of each changed actor's old and new places into
// the back buffer and copies those rectangles to the window through the mask of the card's items,
// so that films pass behind items unless they are set to go over them.
#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/OffscreenCard.h"
#include "gfx/Blit.h"
#include "gfx/DisplayDepth.h"
#include "gfx/Palette.h"
#include "platform/Host.h"
#include "sprites/Sprites.h"
#include "stack/CardList.h"
#include "stack/SubRecord.h"
#include "sprites/Stage.h"

namespace {

SpriteState gSprites;

// The clean card as the window shows it (its picture and its items), and where the card shows
// between the items. Without a card on show, what the window holds.
void SnapshotCard(Stage& stage) {
    OffscreenState& card = GetOffscreenState();
    Surface* window = GetHost().GetWindowSurface();
    if (card.hasScreen) {
        stage.background = Surface(card.screenWidth, card.screenHeight);
        CopyRect(stage.background, stage.background.Bounds(), 0, 0, card.screen, stage.background.Bounds());
        if (card.showObjects) {
            card.drawingCard = true;
            DrawItems(stage.background, stage.background.Bounds(), nullptr, false);
            card.drawingCard = false;
        }
        QuantizeToDepth(stage.background, stage.background.Bounds(), DisplayDepth());
        stage.cardMask = MakeItemsMask();
        if (stage.cardMask.width != stage.background.width || stage.cardMask.height < stage.background.height) {
            stage.cardMask = BitMask(stage.background.width, stage.background.height);
        }
        InvertMask(stage.cardMask);
    } else {
        if (window) stage.background = *window;
        stage.cardMask = BitMask(stage.background.width, stage.background.height, true);
    }
    stage.buffer = stage.background;
}

Rect CardToWindow(const Rect& r) {
    const Rect& card = GetOffscreenState().cardRect;
    return OffsetRect(r, card.left, card.top);
}

// Where a new actor goes, by its layerMode.
Layer& AddToLayer(Stage& stage, const Actor& actor) {
    std::vector<Layer>& layers = stage.layers;
    const auto atEnd = [&]() -> Layer& { return layers.emplace_back(); };
    if (layers.empty()) return atEnd();
    switch (actor.record.layerMode) {
        case 0: case 4: case 5: case 6:
            return layers.size() > 1 ? layers[1] : atEnd();
        case 1:
            return layers.size() > 1 ? layers.back() : atEnd();
        case 2:
            return *layers.emplace(layers.begin());
        case 3:
            for (Layer& l : layers) {
                if (l.number == actor.record.layerNumber) return l;
            }
            return atEnd();
        default:
            return layers.front();
    }
}

Actor* FindActor(uint16_t ownerId) {
    if (!gSprites.stage) return nullptr;
    for (Layer& layer : gSprites.stage->layers) {
        for (auto& a : layer.actors) {
            if (a->ownerId == ownerId) return a.get();
        }
    }
    return nullptr;
}

// The actor at the start of its run: first frame, first point, the leg going forward.
int32_t ResetActor(Actor& a) {
    const SpriteRecord& r = a.record;
    BindActorHandlers(a);
    a.frameLoops = 0;
    a.frame = static_cast<int32_t>(r.startFrame);
    a.pathLoops = 0;
    a.pathIndex = static_cast<int32_t>(r.startPathIndex);
    a.hiddenOneStep = false;
    a.stamps = r.stamps[1] != 0;
    a.overItems = r.overItems[1] != 0;
    if (r.mirrorAtStart || r.mirrorAtEnd) {
        // The twin flips as either end's angles say; with none said it flips left to right.
        bool h = r.startAngles[0] == 180 || r.endAngles[0] == 180;
        const bool v = r.startAngles[1] == 180 || r.endAngles[1] == 180;
        if (!h && !v) h = true;
        if (PrepareMirrorImages(r.film, a.images, h, v) != 0) return -1;
    }
    a.alive = true;
    return 0;
}

// First frame at the first point, without anything to wipe.
void PlaceActorClean(Actor& a) {
    SelectFrame(a);
    if (a.pathIndex >= 0 && static_cast<size_t>(a.pathIndex) < a.record.points.size()) {
        const PathPoint& p = a.record.points[static_cast<size_t>(a.pathIndex)];
        a.rect = OffsetRect(a.rect, p.x + a.hotspotX - a.rect.left, p.y + a.hotspotY - a.rect.top);
    }
    a.oldRect = a.dirtyRect = a.rect;
}

void ArmStartTimers(Actor& a) {
    const SpriteRecord& r = a.record;
    if (a.frameTimer.entered && a.frameInterval >= 1) ArmSpriteTimer(a.frameTimer, a.frameInterval);
    if (a.pathTimer.entered) {
        if (a.h.rearmPath) a.h.rearmPath(a);
    }
    if (a.endTimer.entered) {
        ArmSpriteTimer(a.endTimer, static_cast<uint32_t>(std::min<uint64_t>(uint64_t{r.endSeconds} * 1000, UINT32_MAX / 2)));
    }
}

void UpdateActors(Stage& stage) {
    for (Layer& layer : stage.layers) {
        for (auto& actor : layer.actors) {
            Actor& a = *actor;
            if (a.pathTimer.fired && a.h.stepPath) {
                a.h.stepPath(a);
                if (a.h.rearmPath) a.h.rearmPath(a);
            }
            if (a.frameTimer.fired && a.h.advanceFrame) {
                if (a.h.advanceFrame(a)) a.moved = true;
                if (a.h.rearmFrame) a.h.rearmFrame(a);
            }
            a.alive = a.h.stillGoing(a);
            if (!a.alive) a.h.onEnd(a);
        }
    }
}

void RenderFrame(Stage& stage) {
    Actor* firstDirty = nullptr;
    Actor** tail = &firstDirty;
    const Rect bounds = stage.buffer.Bounds();
    for (Layer& layer : stage.layers) {
        for (auto& actor : layer.actors) {
            Actor& a = *actor;
            if (!((a.moved && a.visible) || (a.erase && !a.visible))) continue;
            a.nextDirty = nullptr;
            *tail = &a;
            tail = &a.nextDirty;
            a.dirtyRect = a.oldRect.IsEmpty() ? a.rect : UnionRect(a.oldRect, a.rect);
            const Rect wipe = IntersectRect(a.oldRect, bounds);
            if (!wipe.IsEmpty()) CopyRect(stage.buffer, bounds, wipe.left, wipe.top, stage.background, wipe);
        }
    }
    if (!firstDirty) return;
    for (Layer& layer : stage.layers) {
        for (auto& actor : layer.actors) {
            Actor& a = *actor;
            if (!a.visible) continue;
            if (a.moved) {
                DrawActorFrame(a, stage.buffer, a.rect);
                if (a.stamps) DrawActorFrame(a, stage.background, a.rect);
                continue;
            }
            // Still actors that a changed one wiped over are drawn again where they meet it.
            for (Actor* d = firstDirty; d; d = d->nextDirty) DrawActorFrame(a, stage.buffer, d->dirtyRect);
        }
    }
    Surface* window = GetHost().GetWindowSurface();
    for (Actor* d = firstDirty; d; d = d->nextDirty) {
        const Rect area = IntersectRect(d->dirtyRect, bounds);
        if (window && !area.IsEmpty()) {
            const Rect to = CardToWindow(area);
            if (d->overItems || d->hiddenOneStep) {
                CopyRect(*window, window->Bounds(), to.left, to.top, stage.buffer, area);
            } else {
                BitMask& mask = stage.cardMask;
                mask.left = to.left - area.left;
                mask.top = to.top - area.top;
                MaskedCopy(*window, window->Bounds(), to.left, to.top, stage.buffer, area, mask);
            }
            GetHost().Present(to);
        }
        d->oldRect = d->dirtyRect = d->rect;
        d->moved = d->erase = false;
    }
}

void RemoveEnded(Stage& stage) {
    for (Layer& layer : stage.layers) {
        auto& actors = layer.actors;
        actors.erase(std::remove_if(actors.begin(), actors.end(), [](const std::unique_ptr<Actor>& a) {
                         if (!a->alive) RemoveActorTimers(*a);
                         return !a->alive;
                     }),
                     actors.end());
    }
    auto& layers = stage.layers;
    layers.erase(std::remove_if(layers.begin(), layers.end(), [](const Layer& l) { return l.actors.empty(); }),
                 layers.end());
}

}  // namespace

SpriteState& GetSpriteState() { return gSprites; }

void ResetSpriteState() { gSprites = SpriteState{}; }

int32_t StartActor(const uint8_t* data, uint32_t size, uint16_t ownerId) {
    if (!IsSpriteFilm(data, size) || size < kSprtFixedSize) return 0;
    // A film already running for this owner starts again only if the new record allows it.
    if (FindActor(ownerId) && data[kSprtRestartable] == 0) return 0;
    auto actor = std::make_unique<Actor>();
    Actor& a = *actor;
    if (ExpandSpriteRecord(data, size, &a.record) != 0) return -1;
    a.ownerId = ownerId;
    a.restartable = a.record.restartable != 0;
    if (MakeFilmImages(a.record.film, &a.images) != 0) return -1;
    if (ResetActor(a) != 0) return -1;
    gSprites.now = GetHost().GetTickCount();
    if (!gSprites.stage) {
        gSprites.stage = std::make_unique<Stage>();
        SnapshotCard(*gSprites.stage);
    }
    PlaceActorClean(a);
    SetVisible(a, true);
    ArmStartTimers(a);
    AddToLayer(*gSprites.stage, a).actors.push_back(std::move(actor));
    return 0;
}

int32_t PlaySpriteFilm(MemRef film, uint16_t itemId) {
    bool isFilm = false;
    {
        MemRefLock lock(film);
        const uint32_t size = GetMemRefSize(film);
        isFilm = lock && IsSpriteFilm(lock.data(), size);
        // A film that can't start is given up silently, as any memory failure on the way.
        if (isFilm) StartActor(lock.data(), size, itemId);
    }
    FreeMemRef(film);
    return isFilm ? 1 : 0;
}

void StepSprites() {
    if (!gSprites.stage) return;
    gSprites.now = GetHost().GetTickCount();
    TickSpriteTimers(gSprites.now);
    Stage& stage = *gSprites.stage;
    if (!stage.layers.empty()) {
        UpdateActors(stage);
        RenderFrame(stage);
        RemoveEnded(stage);
        if (!stage.layers.empty()) return;
    }
    gSprites.stage.reset();
}

void StopSprites() { gSprites.stage.reset(); }

bool IsSpriteRunning(uint16_t itemId) {
    if (!gSprites.stage) return false;
    for (Layer& layer : gSprites.stage->layers) {
        for (auto& a : layer.actors) {
            if (a->ownerId == itemId && a->alive && a->record.endMode != 0 && a->behaviour != 0) return true;
        }
    }
    return false;
}

void DrawSpriteOnCard(const uint8_t* data, uint32_t size, Surface& destination) {
    Actor a;
    if (ExpandSpriteRecord(data, size, &a.record) != 0 || MakeFilmImages(a.record.film, &a.images) != 0) return;
    if (ResetActor(a) != 0) return;
    PlaceActorClean(a);
    DrawActorFrame(a, destination, a.rect);
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Sprites, ResetSpriteState);
}  // namespace

void DrawCardSprites(MemRef card, Surface& destination) {
    ItemWalker walker;
    BeginItemWalk(&walker, card, true);
    MemRef at = 0;
    uint32_t offset = 0;
    while (NextItem(&walker, &at, &offset, false)) {
        MemRefLock lock(at);
        const uint32_t size = GetMemRefSize(at);
        if (!lock || offset > size || size - offset < kActionHeadSize) continue;
        const uint8_t* head = lock.data() + offset;
        if (ReadS16(head + kItemKind) != kItemKindButton) continue;
        uint32_t position = 0;
        if (!FindSubRecord(head, size - offset, kTagAnimation, &position)) continue;
        const uint8_t* payload = head + position + kSubHeadSize;
        const uint32_t length = SubRecordPayloadSize(head + position);
        if (length >= kSprtFixedSize && IsSpriteFilm(payload, length) && payload[kSprtShowWithCard] == 1) {
            DrawSpriteOnCard(payload, length, destination);
        }
    }
    EndItemWalk(&walker);
}
