// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>

// The libraries play into nothing: no display, no sound device.
int main(int argc, char* argv[]) {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
