// SPDX-License-Identifier: MIT
// What a pilot foresees comes true in the game that it looks at.
#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/myshot.h"
#include "objects/shot.h"
#include "pilot/foresight.h"
#include "support/game.h"

#include <gtest/gtest.h>

namespace {

using pilot::Foresight;
using pilot::Keyboard;
using pilot::Outlook;
using pilot::Point;
using pilot::Stick;

constexpr Uint32 HAND_MS = 100;
constexpr Uint32 FRAME_MS = 10;
constexpr float NEAR_PX = 3;

class AForesight : public testing::Test {
protected:
    // Play has begun, no enemy shoots, and a test acts.
    void hold(const std::function<void()>& test) {
        game.hold([&] {
            game.startPlay();
            for (int i = 0; i < BattleField::ENEMIES; ++i) {
                enemy(i).canShoot = false;
            }
            test();
        });
    }

    Foresight lookAhead() const { return {field, keyboard, 0, HAND_MS}; }

    void playOn(Uint32 ms) {
        for (Uint32 passed = 0; passed < ms; passed += FRAME_MS) {
            game.frame(FRAME_MS);
        }
    }

    void placeEnemy(int slot, float x, float y) {
        game.onlyEnemy(slot);
        enemy(slot).xFloat = x;
        enemy(slot).yFloat = y;
        field.formation->slotX[slot] = static_cast<int>(x);
        field.formation->slotY[slot] = static_cast<int>(y);
    }

    // An enemy shot right above the ship's middle.
    void dropShot(float abovePx) {
        placeEnemy(0, field.myShip->xFloat, field.myShip->yFloat - 200);
        enemy(0).canShoot = true;
        playOn(FRAME_MS);
        enemy(0).canShoot = false;
        enemy(0).shots[0]->xFloat = field.myShip->xFloat + 14;
        enemy(0).shots[0]->yFloat = field.myShip->yFloat - abovePx;
    }

    EnemyShip& enemy(int slot) { return *field.enemyShips[slot]; }

    Game game;
    BattleField& field = game.field;
    Keyboard keyboard{nullptr};
};

TEST_F(AForesight, SeesWhereTheHeldKeysCarryTheShip) {
    hold([&] {
        game.withoutEnemies();
        field.myShip->setGoingLeft(true);
        playOn(200);
        keyboard.hold(SDLK_LEFT, true, 0);
        keyboard.frameShown(1, 0);
        const Foresight ahead = lookAhead();
        playOn(HAND_MS);
        EXPECT_NEAR(ahead.ship().xFloat, field.myShip->xFloat, NEAR_PX);
    });
}

TEST_F(AForesight, SeesWhereTheShipComesToRest) {
    hold([&] {
        game.withoutEnemies();
        Stick stick;
        stick.up = true;
        const Outlook outlook = lookAhead().outlook(stick, 160);
        playOn(HAND_MS);
        field.myShip->setGoingUp(true);
        playOn(160);
        field.myShip->setGoingUp(false);
        playOn(Foresight::LOOK_AHEAD_MS - 160);
        EXPECT_NEAR(outlook.rest.x, field.myShip->xFloat, NEAR_PX);
        EXPECT_NEAR(outlook.rest.y, field.myShip->yFloat, NEAR_PX);
        EXPECT_LT(outlook.rest.y, 400 - NEAR_PX);
    });
}

TEST_F(AForesight, SeesWhereTheEnemiesOfTheFormationWillBe) {
    hold([&] {
        playOn(3000);
        const Foresight ahead = lookAhead();
        playOn(1000);
        for (int i = 0; i < BattleField::ENEMIES; ++i) {
            SCOPED_TRACE(i);
            EXPECT_NEAR(ahead.enemyAt(i, 1000).x, enemy(i).xFloat, NEAR_PX);
            EXPECT_NEAR(ahead.enemyAt(i, 1000).y, enemy(i).yFloat, NEAR_PX);
        }
    });
}

TEST_F(AForesight, SeesWhichEnemyALaserShotWillHit) {
    hold([&] {
        placeEnemy(4, 300, 100);
        const Point below = {300, 300};
        EXPECT_EQ(lookAhead().laserHits(below, HAND_MS), 4);
        EXPECT_EQ(lookAhead().laserHits({250, 300}, HAND_MS), Foresight::NOBODY);
        enemy(4).energy = 0;
        EXPECT_EQ(lookAhead().laserHits(below, HAND_MS), Foresight::NOBODY);
    });
}

TEST_F(AForesight, SeesWhichEnemyARocketWillHit) {
    hold([&] {
        placeEnemy(2, 260, 100);
        EXPECT_EQ(lookAhead().rocketHits({250, 300}, HAND_MS), 2);
        EXPECT_EQ(lookAhead().rocketHits({400, 20}, HAND_MS), Foresight::NOBODY)
            << "a rocket does not come back down";
        field.myShip->xFloat = 250;
        field.myShip->yFloat = 300;
        field.setShotKey2(false);
        playOn(FRAME_MS);
        field.setShotKey2(true);
        playOn(2000);
        EXPECT_EQ(enemy(2).energy, 0);
    });
}

TEST_F(AForesight, SeesAShotThatHitsAndTheWayOutOfIt) {
    hold([&] {
        dropShot(60);
        Stick left;
        left.left = true;
        const Foresight ahead = lookAhead();
        EXPECT_LT(ahead.outlook({}, 0).safeMs, Foresight::LOOK_AHEAD_MS);
        EXPECT_EQ(ahead.outlook(left, 400).safeMs, Foresight::LOOK_AHEAD_MS);
        const int before = field.myShip->energy;
        playOn(HAND_MS + Foresight::LOOK_AHEAD_MS);
        EXPECT_EQ(field.myShip->energy, before - 8);
    });
}

TEST_F(AForesight, LeavesTheGameAsItIs) {
    hold([&] {
        playOn(2000);
        const float x = enemy(3).xFloat;
        const float shipX = field.myShip->xFloat;
        game.takeLog();
        lookAhead().outlook({}, 0);
        EXPECT_EQ(enemy(3).xFloat, x);
        EXPECT_EQ(field.myShip->xFloat, shipX);
        EXPECT_TRUE(game.takeLog().empty());
    });
}

}  // namespace
