// SPDX-License-Identifier: MIT
// Every number that only grows, or that a long frame throws about, just before its end.
#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/myshot.h"
#include "objects/myshotrocket.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

constexpr Uint32 LAST = 0xffffffffU;
constexpr Uint32 HALF = 0x80000000U;

TEST(CounterEnd, TheClockStartsAnewAfter49DaysAndNoFrameIsMismeasured) {
    Game game;
    std::vector<Uint32> times;
    game.play([&] {
        times.push_back(game.field.frameTime);
        game.clock = game.passes == 1 ? LAST - 30 : game.clock + 20;
        if (game.passes == 6) {
            game.closeWindow();
        }
    });
    EXPECT_EQ(times, (std::vector<Uint32>{266, LAST - 30 - 266, 20, 20, 20, 20}));
}

TEST(CounterEnd, TheTimeOfPlayStartsAnewAndNothingGoesByIt) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.frame(20);
        const int moveIn = game.field.formationTimer2;
        game.field.formationTime = LAST - 9;
        game.frame(20);
        EXPECT_EQ(game.field.formationTime, 10U);
        EXPECT_EQ(game.field.formationTimer2, moveIn - 20);
    });
}

TEST(CounterEnd, ALifeTimeStartsAnewAndNothingGoesByIt) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.frame(20);
        const float y = game.field.enemyShips[3]->yFloat;
        game.field.enemyShips[3]->lifeTime = LAST - 9;
        game.field.myShip->lifeTime = LAST - 9;
        game.frame(20);
        EXPECT_EQ(game.field.enemyShips[3]->lifeTime, 10U);
        EXPECT_EQ(game.field.myShip->lifeTime, 10U);
        EXPECT_LT(game.field.enemyShips[3]->yFloat - y, 1);
    });
}

TEST(CounterEnd, TheLastSlotOfThePoolFiresAndTheNextShotTakesTheFirst) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.frame(20);
        BattleField& field = game.field;
        field.myFirstShotCount = field.mySecondShotCount = BattleField::SHOT_SLOTS - 1;
        const auto fire = [&] {
            field.shotState1 = field.shotState2 = BattleField::TRIGGER_REQUESTED;
            game.frame(20);
        };
        fire();
        EXPECT_EQ(field.myFirstShotCount, BattleField::SHOT_SLOTS);
        EXPECT_EQ(field.mySecondShotCount, BattleField::SHOT_SLOTS);
        EXPECT_TRUE(field.myFirstShotActive[BattleField::SHOT_SLOTS - 1]);
        EXPECT_TRUE(field.mySecondShotActive[BattleField::SHOT_SLOTS - 1]);
        fire();
        EXPECT_EQ(field.myFirstShotCount, 1U);
        EXPECT_EQ(field.mySecondShotCount, 1U);
        EXPECT_TRUE(field.myFirstShotActive[0]);
        // The one in the last slot is not looked at until the count comes by again.
        EXPECT_EQ(field.myFirstShotAge[BattleField::SHOT_SLOTS - 1], 20U);
    });
}

TEST(CounterEnd, AStallOf49DaysMakesAFlyingShotYounger) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.frame(20);
        game.field.shotState1 = BattleField::TRIGGER_REQUESTED;
        game.frame(900);
        ASSERT_EQ(game.field.myFirstShotAge[0], 900U);
        game.frame(LAST);
        EXPECT_EQ(game.field.myFirstShotAge[0], 899U);
        EXPECT_TRUE(game.field.myFirstShotActive[0]);
    });
}

TEST(CounterEnd, TwentyFramesThatTogetherWrapShowAFigureTooHigh) {
    Game game;
    game.hold([&] {
        Display& display = *game.field.display;
        display.frames = 19;
        display.frameTime = LAST;
        display.showFps(21);
        EXPECT_EQ(display.fps, 1000);
        display.frames = 19;
        display.frameTime = LAST;
        display.showFps(1);
        EXPECT_EQ(display.fps, 999);
        EXPECT_EQ(display.frames, 0);
    });
}

TEST(CounterEnd, AStallOf24DaysHoldsADigitOfTheCountdownAsLongAgain) {
    Game game;
    game.hold([&] {
        Display& display = *game.field.display;
        display.setCountDownPosAndStart(0, 0, 5);
        display.showCountDown(HALF - 1);
        EXPECT_EQ(display.countDownValue, 4);
        display.showCountDown(HALF);
        EXPECT_EQ(display.countDownTime, INT_MIN);
        display.showCountDown(HALF);
        EXPECT_EQ(display.countDownTime, 0);
        EXPECT_EQ(display.countDownValue, 4);
        display.showCountDown(1001);
        EXPECT_EQ(display.countDownValue, 3);
    });
}

TEST(CounterEnd, AStallOf24DaysHoldsATextAsLongAgain) {
    Game game;
    game.hold([&] {
        QELString& line = *game.field.titleText;
        line.setString("Test");
        line.showString(HALF - 1);
        EXPECT_EQ(line.shown, 2);
        line.showString(HALF);
        EXPECT_EQ(line.elapsed, INT_MIN);
        line.showString(HALF);
        EXPECT_EQ(line.shown, 2);
        line.showString(51);
        EXPECT_EQ(line.shown, 3);
    });
}

TEST(CounterEnd, AStallOf24DaysHoldsTheFormationAsLongAgain) {
    Game game;
    game.hold([&] {
        game.startPlay();
        BattleField& field = game.field;
        field.formationTimer2 = 1;
        field.formationTimer = 1;
        game.onlyEnemy(3);
        game.frame(HALF + 2);
        EXPECT_EQ(field.formationTimer2, INT_MAX);
        EXPECT_EQ(field.formationTimer, INT_MAX);
    });
}

TEST(CounterEnd, AStallOf49DaysStartsAnExplosionAnew) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        MyShip& ship = *game.field.myShip;
        ship.energy = 0;
        game.frame(20);
        game.frame(40);
        ASSERT_EQ(ship.explosionTimer, 1U);
        ship.miniExploding = true;
        ship.miniExplosionTimer = 1;
        game.frame(LAST);
        EXPECT_EQ(ship.explosionTimer, 0U);
        EXPECT_EQ(ship.miniExplosionTimer, 0U);
        game.takeLog();
        game.frame(20);
        const std::vector<std::string> twice = {"> FlyingObject->explode()"};
        EXPECT_EQ(game.takeLog({"> Fly"}), twice);
        EXPECT_EQ(ship.explosionFrame, 1U);
    });
}

TEST(CounterEnd, APlaceBeyond16BitsIsDrawnOnTheOtherSide) {
    Game game;
    game.hold([&] {
        FlyingObject& ship = *game.field.enemyShips[3];
        ship.yFloat = 32767;
        ship.moveDown(false);
        EXPECT_EQ(ship.destRect.y, 32767);
        ship.yFloat = 65536 + 40;
        ship.moveDown(false);
        EXPECT_EQ(ship.destRect.y, 40);
    });
}

TEST(CounterEnd, ATitleThatStandsForYearsStillLeavesAtReturn) {
    Game game;
    game.hold([&] {
        game.enterPhase(BattleField::PHASE_HINT);
        QELString& title = *game.field.titleText;
        title.pauseTicks = INT_MAX;
        title.showString(51);
        EXPECT_EQ(title.pauseTicks, INT_MIN);
        EXPECT_EQ(title.showString(51), 1);
        title.setType(QELString::TYPE_LEAVES);
        int frames = 0;
        while (title.showString(51) == 1 && frames < 1000) {
            ++frames;
        }
        EXPECT_LT(frames, 200);
    });
}

TEST(CounterEnd, AShotFromTheEdgeOfTheNumbersIsGoneInTheNextFrame) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.onlyEnemy(3);
        EnemyShip& enemy = *game.field.enemyShips[3];
        enemy.yFloat = 2147483008.0F;
        enemy.control();
        EXPECT_TRUE(enemy.shotActive[0]);
        EXPECT_LT(enemy.shotLimitY[0], 0);
        enemy.control();
        EXPECT_FALSE(enemy.shotActive[0]);
    });
}

}  // namespace
