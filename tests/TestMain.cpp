#include <gtest/gtest.h>

#include "host/Application.h"
#include "memory/MemRef.h"
#include "platform/headless/HeadlessHost.h"
#include "subsystems/Subsystems.h"
#include "support/StackBytes.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    InitMemRefs();
    // The tests run as the program does: on the headless host, with the program's subsystems.
    SetHost(HeadlessHost());
    InstallSubsystems(ApplicationSubsystems());
    const int result = RUN_ALL_TESTS();
    RemoveTempFiles();
    return result;
}
