// Where every transition test starts: the headless host, no transition or palette state left
// over, and a 32-bit display, so that colours reach the window as they are.
#pragma once

#include <gtest/gtest.h>

#include "base/StateRegistry.h"
#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "transitions/TransitionSteps.h"

class TransitionFixture : public testing::Test {
protected:
    void SetUp() override {
        SetHost(HeadlessHost());
        ResetAllState();
        ForceDisplayDepth(32);
    }
    void TearDown() override {
        ResetAllState();
        SetHost(HeadlessHost());
    }
};
