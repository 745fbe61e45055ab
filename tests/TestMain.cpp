#include <gtest/gtest.h>

#include "memory/MemRef.h"
#include "support/StackBytes.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    InitMemRefs();
    const int result = RUN_ALL_TESTS();
    RemoveTempFiles();
    return result;
}
