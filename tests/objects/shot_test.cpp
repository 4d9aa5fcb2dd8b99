// SPDX-License-Identifier: MIT
#include "objects/shot.h"

#include "objects/flight.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_base_of_v<FlyingObject, Shot>);
static_assert(!std::is_polymorphic_v<Shot>);
static_assert(std::is_same_v<decltype(Shot::deathFactor), int>);
static_assert(std::is_same_v<decltype(&Shot::show), int (FlyingObject::*)()>);
static_assert(std::is_same_v<decltype(&Shot::control), void (FlyingObject::*)()>);

Shot& makeShot(int x, int y) {
    return make<Shot>(nullptr, x, y, 11, 8, nullptr, 640, 480, false);
}

TEST(Shot, KeepsItsFieldBehindThoseOfAFlyingObject) {
    Shot& s = makeShot(0, 0);
    expectInThisOrder(
        {{"miniExplosionSound", &s.miniExplosionSound}, {"deathFactor", &s.deathFactor}});
}

TEST(Shot, StartsWithWhatItIsGiven) {
    SDL_Surface* const picture = makePicture(11, 8, RED);
    SDL_Surface* const screen = makeScreen();
    for (const bool flag : {false, true}) {
        const Shot& shot = make<Shot>(picture, 120, 70, 11, 8, screen, 640, 480, flag);
        EXPECT_EQ(shot.image, picture);
        EXPECT_EQ(shot.xFloat, 120.0f);
        EXPECT_EQ(shot.yFloat, 70.0f);
        EXPECT_EQ(shot.width, 11);
        EXPECT_EQ(shot.height, 8);
        EXPECT_EQ(shot.screen, screen);
        EXPECT_EQ(shot.fieldWidth, 640);
        EXPECT_EQ(shot.fieldHeight, 480);
        EXPECT_EQ(shot.externallySteered, flag);
        EXPECT_TRUE(shot.active);
    }
}

TEST(Shot, TakesOnePointOfEnergyFromWhatItHits) {
    EXPECT_EQ(makeShot(120, 70).deathFactor, 1);
}

TEST(Shot, StartsUpwardAtFullSpeed) {
    Shot& shot = makeShot(120, 300);
    EXPECT_TRUE(shot.goingUp);
    EXPECT_FALSE(shot.goingDown);
    EXPECT_FALSE(shot.goingLeft);
    EXPECT_FALSE(shot.goingRight);
    EXPECT_EQ(shot.speedUp, 5.0f);
    EXPECT_EQ(shot.maxSpeedUp, 5.0f);
    EXPECT_EQ(shot.speedDown, 0.0f);
    shot.setFrameDelay(10);
    const double heights[] = {295.6, 291.2, 286.8};  // 5 x 10 x 0.088 = 4.4 pixels a frame
    for (const double height : heights) {
        shot.control();
        EXPECT_NEAR(shot.yFloat, height, 1e-4);
        EXPECT_EQ(shot.xFloat, 120.0f);
        EXPECT_EQ(shot.speedUp, 5.0f);
    }
}

}  // namespace
