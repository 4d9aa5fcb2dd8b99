// SPDX-License-Identifier: MIT
#include "objects/myshot.h"

#include "objects/flight.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

static_assert(std::is_base_of_v<Shot, MyShot>);
static_assert(!std::is_polymorphic_v<MyShot>);
static_assert(std::is_same_v<decltype(MyShot::maxTargets), int>);
static_assert(std::is_same_v<decltype(MyShot::shipTargetList), FlyingObject**>);
static_assert(std::is_same_v<decltype(&MyShot::hittingTarget), bool (MyShot::*)(bool)>);
static_assert(std::is_same_v<decltype(&MyShot::show), int (FlyingObject::*)()>);
static_assert(std::is_same_v<decltype(&MyShot::control), void (FlyingObject::*)()>);

constexpr int TARGETS = 10;

// A target list with one ship of 39 x 31 pixels at (100, 200) and 10 points of energy in slot 3,
// and a shot whose hit point, 24 pixels below its top, is the ship's middle.
struct Range : Flight {
    Range() : shot(makeShot(targets, TARGETS)) { ship = &enter(3, 100, 200); }

    FlyingObject& enter(int slot, int x, int y) {
        FlyingObject& target = make<FlyingObject>(nullptr, x, y, 39, 31, screen, 640, 480, true);
        target.energy = 10;
        targets[slot] = &target;
        return target;
    }

    MyShot& makeShot(FlyingObject** list, int count) const {
        return make<MyShot>(nullptr, 119, 191, 7, 11, screen, 640, 480, false, list, count);
    }

    // Tests the shot; `said` is then what it wrote to the terminal.
    bool hits(bool startMiniExplosion = true) {
        bool hit = false;
        said = capturedOutput([&] { hit = shot.hittingTarget(startMiniExplosion); });
        return hit;
    }

    FlyingObject* targets[TARGETS] = {};
    FlyingObject* ship;
    MyShot& shot;
    std::string said;
};

TEST(MyShot, KeepsItsFieldsInTheOrderOfTheDesign) {
    Range range;
    MyShot& s = range.shot;
    expectInThisOrder({
        {"deathFactor", &s.deathFactor},
        {"maxTargets", &s.maxTargets},
        {"shipTargetList", &s.shipTargetList},
    });
}

TEST(MyShot, StartsAsAShotWithTheListThatItIsGiven) {
    Range range;
    SDL_Surface* const picture = makePicture(7, 11, RED);
    for (const bool flag : {false, true}) {
        const MyShot& shot =
            make<MyShot>(picture, 120, 70, 7, 11, range.screen, 640, 480, flag, range.targets, 8);
        EXPECT_EQ(shot.image, picture);
        EXPECT_EQ(shot.xFloat, 120.0f);
        EXPECT_EQ(shot.yFloat, 70.0f);
        EXPECT_EQ(shot.width, 7);
        EXPECT_EQ(shot.height, 11);
        EXPECT_EQ(shot.screen, range.screen);
        EXPECT_EQ(shot.fieldWidth, 640);
        EXPECT_EQ(shot.fieldHeight, 480);
        EXPECT_EQ(shot.externallySteered, flag);
        EXPECT_EQ(shot.shipTargetList, range.targets);
        EXPECT_EQ(shot.maxTargets, 8);
        EXPECT_TRUE(shot.goingUp);
        EXPECT_EQ(shot.speedUp, 5.0f);
        EXPECT_EQ(shot.deathFactor, 1);
    }
}

TEST(MyShot, TakesAPointOfEnergyAndTellsIt) {
    Range range;
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, 9);
    EXPECT_EQ(range.said, "MyShot hits Target 3 widht deathFactor 1 -> target energy = 9\n");
}

TEST(MyShot, TakesAsMuchEnergyAsItsDeathFactorSays) {
    Range range;
    range.shot.deathFactor = 12;
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, -2);
    EXPECT_EQ(range.said, "MyShot hits Target 3 widht deathFactor 12 -> target energy = -2\n");
}

TEST(MyShot, LightsAHitFlashEightPixelsLeftOfAndFiveAboveItself) {
    Range range;
    range.ship->miniExplosionFrame = 4;
    range.ship->miniExplosionTimer = 30;
    range.hits(true);
    EXPECT_TRUE(range.ship->miniExploding);
    EXPECT_EQ(range.ship->miniExplosionRect.x, 111);
    EXPECT_EQ(range.ship->miniExplosionRect.y, 186);
    EXPECT_EQ(range.ship->miniExplosionFrame, 0u);
    EXPECT_EQ(range.ship->miniExplosionTimer, 0u);
}

TEST(MyShot, WithoutAFlashStillTakesEnergyAndMovesTheFlashThatRuns) {
    for (const bool running : {false, true}) {
        Range range;
        range.ship->miniExploding = running;
        range.ship->miniExplosionFrame = 4;
        range.ship->miniExplosionTimer = 30;
        EXPECT_TRUE(range.hits(false));
        EXPECT_EQ(range.ship->energy, 9);
        EXPECT_EQ(range.said, "MyShot hits Target 3 widht deathFactor 1 -> target energy = 9\n");
        EXPECT_EQ(range.ship->miniExploding, running);
        EXPECT_EQ(range.ship->miniExplosionRect.x, 111);
        EXPECT_EQ(range.ship->miniExplosionRect.y, 186);
        EXPECT_EQ(range.ship->miniExplosionFrame, 0u);
        EXPECT_EQ(range.ship->miniExplosionTimer, 0u);
    }
}

// The ship covers x 100 to 139 and y 200 to 231; the point lies 24 pixels below the shot's place.
TEST(MyShot, HitsWithThePointBelowItselfBetweenTheEdges) {
    const struct {
        const char* rule;
        float x, y;
        bool hit;
    } shots[] = {
        {"a point on the left edge misses", 100.0f, 191.0f, false},
        {"short of a whole pixel it is still on the edge", 100.99f, 191.0f, false},
        {"a pixel inside the left edge hits", 101.0f, 191.0f, true},
        {"a pixel inside the right edge hits", 138.99f, 191.0f, true},
        {"a point on the right edge misses", 139.0f, 191.0f, false},
        {"a point on the top edge misses", 119.0f, 176.99f, false},
        {"a pixel below the top edge hits", 119.0f, 177.0f, true},
        {"a pixel above the bottom edge hits", 119.0f, 206.99f, true},
        {"a point on the bottom edge misses", 119.0f, 207.0f, false},
    };
    for (const auto& c : shots) {
        SCOPED_TRACE(c.rule);
        Range range;
        range.shot.xFloat = c.x;
        range.shot.yFloat = c.y;
        EXPECT_EQ(range.hits(), c.hit);
        EXPECT_EQ(range.ship->energy, c.hit ? 9 : 10);
        EXPECT_EQ(range.said.empty(), !c.hit);
        EXPECT_EQ(range.ship->miniExploding, c.hit);
    }
}

TEST(MyShot, AboveTheScreenIsCutTowardTheEdge) {
    Range range;
    FlyingObject& high = range.enter(0, 100, 20);
    range.shot.yFloat = -3.7f;
    // The point is at 21: one pixel below the top edge of this ship, and on the edge of the next.
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(high.energy, 9);
    EXPECT_EQ(high.miniExplosionRect.y, -8);
    range.enter(0, 100, 21);
    EXPECT_FALSE(range.hits());
}

TEST(MyShot, LeftOfTheScreenIsCutTowardTheEdge) {
    Range range;
    FlyingObject& leftmost = range.enter(0, -10, 200);
    range.shot.xFloat = -3.7f;
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(leftmost.miniExplosionRect.x, -11);
}

TEST(MyShot, HitsShipsWhereTheyAreSeen) {
    Range range;
    range.ship->xFloat = 500.0f;
    EXPECT_TRUE(range.hits());
    range.ship->destRect.w = 19;
    EXPECT_FALSE(range.hits());
}

TEST(MyShot, HitsOnlyTheFirstOfTwoShipsInTheSamePlace) {
    Range range;
    FlyingObject& later = range.enter(7, 100, 200);
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, 9);
    EXPECT_EQ(later.energy, 10);
    FlyingObject& earlier = range.enter(1, 100, 200);
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.said, "MyShot hits Target 1 widht deathFactor 1 -> target energy = 9\n");
    EXPECT_EQ(earlier.energy, 9);
    EXPECT_EQ(range.ship->energy, 9);
    EXPECT_FALSE(later.miniExploding);
}

TEST(MyShot, GoesOnToTheNextShipAfterAMiss) {
    Range range;
    range.enter(0, 400, 200);
    range.enter(1, 100, 400);
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, 9);
}

TEST(MyShot, PassesThroughShipsWithoutEnergy) {
    const struct {
        const char* rule;
        int energy;
        bool hit;
    } ships[] = {
        {"a ship with its last point is hit", 1, true},
        {"a ship at 0 is not", 0, false},
        {"nor is one below 0", -3, false},
        {"nor one that has exploded", -666, false},
    };
    for (const auto& c : ships) {
        SCOPED_TRACE(c.rule);
        Range range;
        FlyingObject& behind = range.enter(8, 100, 200);
        range.ship->energy = c.energy;
        EXPECT_TRUE(range.hits());
        EXPECT_EQ(range.ship->energy, c.hit ? c.energy - 1 : c.energy);
        EXPECT_EQ(behind.energy, c.hit ? 10 : 9);
    }
}

TEST(MyShot, EndsAShipWithItsLastPointAtZero) {
    Range range;
    range.ship->energy = 1;
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, 0);
    EXPECT_EQ(range.said, "MyShot hits Target 3 widht deathFactor 1 -> target energy = 0\n");
}

TEST(MyShot, HitsNothingInAnEmptyList) {
    Range range;
    range.targets[3] = nullptr;
    EXPECT_FALSE(range.hits());
    EXPECT_EQ(range.said, "");
}

TEST(MyShot, SeesTargetsComeAndGoWhileItFlies) {
    Range range;
    range.targets[3] = nullptr;
    EXPECT_FALSE(range.hits());
    range.targets[9] = range.ship;
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.said, "MyShot hits Target 9 widht deathFactor 1 -> target energy = 9\n");
}

TEST(MyShot, LooksAtNoMoreEntriesThanTheListHas) {
    Range range;
    range.shot.maxTargets = 3;
    EXPECT_FALSE(range.hits());
    range.shot.maxTargets = 4;
    EXPECT_TRUE(range.hits());
}

TEST(MyShot, DoesNotTouchAListWithoutEntries) {
    for (const int count : {0, -1}) {
        Range range;
        MyShot& shot = range.makeShot(nullptr, count);
        EXPECT_FALSE(shot.hittingTarget(true));
        MyShot& loaded = range.makeShot(range.targets, count);
        EXPECT_EQ(capturedOutput([&] { EXPECT_FALSE(loaded.hittingTarget(true)); }), "");
        EXPECT_EQ(range.ship->energy, 10);
    }
}

TEST(MyShot, IsNotChangedByAHit) {
    Range range;
    range.hits();
    EXPECT_TRUE(range.shot.active);
    EXPECT_EQ(range.shot.xFloat, 119.0f);
    EXPECT_EQ(range.shot.yFloat, 191.0f);
    EXPECT_FALSE(range.shot.miniExploding);
    EXPECT_TRUE(range.hits());
    EXPECT_EQ(range.ship->energy, 8);
}

}  // namespace
