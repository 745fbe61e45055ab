#include "platform/Host.h"

#include "platform/headless/HeadlessHost.h"

namespace {
Host gHost;
bool gHostSet = false;
}  // namespace

Host& GetHost() {
    // Until a program installs its backend, the core runs headless.
    if (!gHostSet) SetHost(HeadlessHost());
    return gHost;
}

void SetHost(const Host& host) {
    gHost = host;
    gHostSet = true;
}
