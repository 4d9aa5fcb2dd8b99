// SPDX-License-Identifier: MIT
#include "graphics/stars.h"

#include "front/front.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

namespace {

TEST(Stars, StayAwayFromAScreenThatCannotBeLocked) {
    SDL_Surface* screen = makeScreen();
    screen->flags |= SDL_RLEACCEL;
    Stars stars(screen, 640, 480, 60);
    front::hooks().SDL_LockSurface = [](SDL_Surface*) { return -1; };
    const std::string said = capturedError([&] { stars.show(0, Stars::DIRECTION_DOWN); });
    EXPECT_EQ(said.substr(0, 20), "Can't lock screen: \n");
    EXPECT_EQ(countOf(screen, BLACK), 640 * 480);
}

}  // namespace
