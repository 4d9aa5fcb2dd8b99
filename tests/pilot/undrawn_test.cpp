// SPDX-License-Identifier: MIT
// Blits that draw nothing: what SDL writes back is written all the same.
#include "front/front.h"
#include "pilot/random.h"
#include "pilot/undrawn.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

constexpr int BLITS = 20000;

auto allOf(const SDL_Rect& rect) {
    return std::make_tuple(rect.x, rect.y, rect.w, rect.h);
}

Sint16 place(pilot::Random& random, int most) {
    return static_cast<Sint16>(random.between(-most, most));
}

Uint16 extent(pilot::Random& random, int most) {
    return static_cast<Uint16>(random.between(0, most));
}

TEST(Undrawn, BlitsAreClippedAsTheLibraryClipsThem) {
    SDL_Surface* screen = makeScreen(64, 48);
    SDL_Surface* picture = makePicture(13, 9, RED);
    pilot::Random random(1);
    for (int i = 0; i < BLITS; ++i) {
        SDL_Rect from = {place(random, 20), place(random, 20), extent(random, 40),
                         extent(random, 40)};
        const bool whole = random.chance(20);
        SDL_Rect drawn = {place(random, 80), place(random, 80), 7, 7};
        SDL_Rect undrawn = drawn;
        pilot::clipBlit(picture, whole ? nullptr : &from, screen, &undrawn);
        front::real::SDL_UpperBlit(picture, whole ? nullptr : &from, screen, &drawn);
        ASSERT_EQ(allOf(undrawn), allOf(drawn)) << "blit " << i;
    }
}

TEST(Undrawn, NothingReachesTheScreen) {
    SDL_Surface* screen = makeScreen(64, 48);
    SDL_Surface* picture = makePicture(13, 9, RED);
    pilot::stopDrawing();
    SDL_Rect to = {60, 40, 0, 0};
    EXPECT_EQ(SDL_BlitSurface(picture, nullptr, screen, &to), 0);
    EXPECT_EQ(allOf(to), std::make_tuple(60, 40, 4, 8));
    EXPECT_EQ(countOf(screen, BLACK), 64 * 48);
    EXPECT_EQ(SDL_BlitSurface(nullptr, nullptr, screen, &to), -1);
}

}  // namespace
