// The end splash: when the player is closed, our own picture (resources/pictures/end-splash.txt)
// stands centred in the cleared window for the host's `endSplashMs`. The desktop player asks for
// it; `render` and the web player close at once.
#pragma once

void ShowEndSplash();
