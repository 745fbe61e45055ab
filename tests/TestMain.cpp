#include <gtest/gtest.h>

#include "memory/MemRef.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    InitMemRefs();
    return RUN_ALL_TESTS();
}
