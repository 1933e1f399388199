#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

// Every test program runs in a home of its own, so that none can read or soil the developer's.
int main(int argc, char** argv) {
    const halvane::test::TemporaryHome home;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
