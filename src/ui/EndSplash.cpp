#include "ui/EndSplash.h"

#include "gfx/Draw.h"
#include "pictures/ResourcePicture.h"
#include "platform/Host.h"

namespace {

// The card goes as the system's hidden window would: the splash stands on a plain grey.
inline constexpr uint32_t kSplashGround = Rgb(0x80, 0x80, 0x80);

}  // namespace

void ShowEndSplash() {
    const Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    const ResourcePicture* picture = FindResourcePicture("end-splash");
    if (host.endSplashMs == 0 || !window || !picture) return;
    const Rect all = window->Bounds();
    FillRect(*window, all, all, kSplashGround);
    DrawResourcePicture(*window, all, (window->width - picture->pixels.width) / 2,
                        (window->height - picture->pixels.height) / 2, *picture);
    host.Present(all);
    // Input that comes meanwhile stays queued and ends nothing: the program is going.
    const uint32_t end = host.GetTickCount() + host.endSplashMs;
    while (static_cast<int32_t>(host.GetTickCount() - end) < 0) host.WaitUntil(end);
}
