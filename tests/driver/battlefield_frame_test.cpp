// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "front/front.h"
#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "graphics/stars.h"
#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/myship.h"
#include "support/game.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

const std::string SHIP_AT_START = "blit ships/ship01.png [0 0 39 39] at 300 400";
const std::string INTRO_SOUND = "play sounds/intro.wav on(1, 0, -1)";

// A line of text that stands typed for good, or that has gone, as showString() reports it.
void standTyped(QELString& line) {
    line.typing = false;
    line.fading = false;
    line.result = 1;
}

void haveGone(QELString& line) {
    line.typing = false;
    line.fading = false;
    line.result = 0;
}

TEST(BattleFieldPhase, WaitsUntilTheClockIsPastThreeSeconds) {
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.field.gamePhase, 4);
        game.clock = 3000;
        game.frame(5000);
        EXPECT_EQ(game.field.gamePhase, 4) << "frame times do not count, and 3000 is not past it";
        game.clock = 3001;
        game.frame(1);
        EXPECT_EQ(game.field.gamePhase, 3);
    });
}

TEST(BattleFieldPhase, ShowsOnlyStarsWhileItWaits) {
    Game game;
    game.hold([&] {
        game.takeLog();
        game.frame(100);
        EXPECT_EQ(game.takeLog(), (Log{"clear", "flip"}));
    });
}

TEST(BattleFieldPhase, BeginsTheTitleInTheFirstFrameAfterSlowLoading) {
    Game game;
    game.clock = 3500;
    game.hold([&] {
        EXPECT_EQ(game.field.gamePhase, 3);
        EXPECT_EQ(game.field.titleText->shown, 2) << "266 ms are one step of typing";
        EXPECT_EQ(game.field.hintText->shown, 1);
        EXPECT_EQ(game.field.hintText->elapsed, 0) << "the hint has not been shown";
    });
}

TEST(BattleFieldPhase, PassesWaitTitleAndHintInOneFrameWhenTheTitleStands) {
    Game game;
    game.hold([&] {
        standTyped(*game.field.titleText);
        game.clock = 3001;
        game.frame(51);
        EXPECT_EQ(game.field.gamePhase, 2);
        EXPECT_EQ(game.field.hintText->shown, 2) << "the hint types in this frame already";
    });
}

TEST(BattleFieldPhase, TypesTheTitleThenTheHint) {
    Game game;
    game.hold([&] {
        game.clock = 3001;
        // 23 characters: 22 steps to type, 10 more for the trail.
        for (int i = 1; i <= 31; ++i) {
            game.frame(51);
            EXPECT_EQ(game.field.gamePhase, 3) << "frame " << i;
        }
        EXPECT_EQ(game.field.hintText->shown, 1);
        game.frame(51);
        EXPECT_EQ(game.field.gamePhase, 2);
        EXPECT_EQ(game.field.hintText->shown, 2);
    });
}

TEST(BattleFieldPhase, WaitsForReturnAsLongAsItTakes) {
    Game game;
    game.hold([&] {
        game.clock = 3001;
        for (int i = 0; i < 400; ++i) {
            game.frame(51);
        }
        EXPECT_EQ(game.field.gamePhase, 2);
        EXPECT_EQ(game.takeLog({"play"}), Log{});
    });
}

TEST(BattleFieldPhase, LeavesTheHintWhenBothLinesHaveGone) {
    const struct {
        const char* rule;
        bool titleStands, hintStands;
        int phaseAfter;
    } rows[] = {
        {"both stand", true, true, 2},
        {"the hint alone has gone", true, false, 2},
        {"the title alone has gone", false, true, 2},
        {"both have gone", false, false, 1},
    };
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            field.gamePhase = 2;
            row.titleStands ? standTyped(*field.titleText) : haveGone(*field.titleText);
            row.hintStands ? standTyped(*field.hintText) : haveGone(*field.hintText);
            game.takeLog();
            game.frame(20);
            EXPECT_EQ(field.gamePhase, row.phaseAfter);
            EXPECT_EQ(field.introDone, row.phaseAfter == 1);
            EXPECT_EQ(game.takeLog({"play"}), row.phaseAfter == 1 ? Log{INTRO_SOUND} : Log{});
        }
    });
}

TEST(BattleFieldPhase, DrawsTheHintAndThenTheTitle) {
    Game game;
    game.hold([&] {
        game.enterPhase(2);
        game.takeLog();
        game.frame(20);
        const Log drawn = game.takeLog({"blit"});
        // h of the hint with its cursor, then the 19 letters and the digit of the title
        ASSERT_EQ(drawn.size(), 3u + 20u);
        EXPECT_EQ(drawn.at(0), "blit fonts/impact/letters.png [56 0 8 9] at 280 260");
        EXPECT_EQ(drawn.at(1), "blit fonts/impact/letter_cursor.png [8 0 8 9] at 280 260");
        EXPECT_EQ(drawn.at(2), "blit fonts/impact/letter_cursor.png [0 0 8 9] at 288 260");
        EXPECT_EQ(drawn.at(3), "blit fonts/impact/letters.png [152 0 8 9] at 228 180");
        EXPECT_EQ(drawn.at(22), "blit fonts/impact/letters.png [24 0 8 9] at 404 180");
        EXPECT_EQ(game.field.gamePhase, 2);
    });
}

TEST(BattleFieldPhase, AlwaysShowsTheTitleToo) {
    Game game;
    game.hold([&] {
        game.field.gamePhase = 2;
        standTyped(*game.field.hintText);
        game.frame(20);
        EXPECT_EQ(game.field.titleText->elapsed, 20);
    });
}

TEST(BattleFieldPhase, ReturnLeadsFromTheHintToTheCountdown) {
    Game game;
    game.hold([&] {
        game.clock = 3001;
        // The title takes 32 frames; the hint types in the last of them already: 9 steps to type
        // its 10 characters and 10 for its trail, that is up to frame 50.
        for (int i = 1; i <= 50; ++i) {
            game.frame(51);
        }
        EXPECT_EQ(game.field.titleText->result, 1);
        EXPECT_EQ(game.field.hintText->result, 1);
        game.press(SDLK_RETURN);
        game.frame(51);
        // The title takes longer: five steps of pause for the first of its 23 characters, one for
        // each other, then six pictures of 8 frames each.
        int frames = 0;
        while (game.field.gamePhase == 2 && frames < 1000) {
            game.frame(51);
            ++frames;
        }
        EXPECT_EQ(frames, 5 + 22 + 6 * 8);
        EXPECT_EQ(game.field.gamePhase, 1);
        EXPECT_TRUE(game.field.introDone);
    });
}

TEST(BattleFieldPhase, PlaysTheIntroSoundAfterBothLinesAndCountsInTheSameFrame) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        haveGone(*field.titleText);
        haveGone(*field.hintText);
        field.gamePhase = 2;
        const auto play = front::hooks().Mix_PlayChannelTimed;
        front::hooks().Mix_PlayChannelTimed = [&](int channel, Mix_Chunk* chunk, int loops,
                                                  int ticks) {
            EXPECT_EQ(field.gamePhase, 2);
            EXPECT_FALSE(field.introDone);
            return play(channel, chunk, loops, ticks);
        };
        game.takeLog();
        game.frame(20);
        const Log expected = {
            "clear",       INTRO_SOUND, "blit fonts/impact/numbers_a.png [30 0 6 9] at 318 220",
            SHIP_AT_START, "flip",
        };
        EXPECT_EQ(game.takeLog(), expected);
        EXPECT_EQ(field.display->countDownTime, 20);
        front::hooks().Mix_PlayChannelTimed = play;
    });
}

TEST(BattleFieldPhase, CountsFromFiveToZeroAndPlaysFromTheFrameAfter) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        field.gamePhase = 1;
        field.messageLine->typing = false;
        field.messageLine->fading = false;
        for (int digit = 5; digit >= 0; --digit) {
            EXPECT_EQ(field.gamePhase, 1);
            game.takeLog();
            game.frame(1001);
            const Log drawn = game.takeLog({"blit"});
            EXPECT_EQ(drawn.at(0), "blit fonts/impact/numbers_a.png [" + std::to_string(6 * digit) +
                                       " 0 6 9] at 318 220");
            EXPECT_EQ(drawn.at(1), SHIP_AT_START);
            // The frame of the last digit shows the display, but the enemies still stand.
            EXPECT_EQ(drawn.size() > 2, digit == 0);
        }
        EXPECT_EQ(field.gamePhase, 0);
        EXPECT_EQ(field.formationTime, 0u);
        EXPECT_EQ(field.shotState1, 3);

        game.frame(1001);
        EXPECT_EQ(field.gamePhase, 0);
        EXPECT_EQ(field.formationTime, 1001u);
        EXPECT_EQ(field.shotState1, 2);
        EXPECT_EQ(field.shotState2, 2);
    });
}

TEST(BattleFieldPhase, PlayNeverEndsByItself) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        for (int i = 0; i < 300; ++i) {
            game.frame(1000);
        }
        EXPECT_EQ(game.field.gamePhase, 0);
        EXPECT_FALSE(game.field.quit);
    });
}

TEST(BattleFieldPhase, RunsTheEnemiesInPlayOnly) {
    Game game;
    game.hold([&] {
        for (int phase = 4; phase >= 0; --phase) {
            game.enterPhase(phase);
            game.takeLog();
            game.frame(30);
            EXPECT_EQ(game.field.formationTime, phase == 0 ? 30u : 0u) << "phase " << phase;
            EXPECT_EQ(game.takeLog({"blit ships/enemy"}).size(), phase == 0 ? 7u : 0u);
        }
    });
}

TEST(BattleFieldFrame, GivesThePlayerTheFrameTimeInEveryPhase) {
    Game game;
    game.hold([&] {
        const MyShip& ship = *game.field.myShip;
        EXPECT_EQ(ship.lifeTime, 266u) << "the first frame";
        Uint32 sum = 266;
        for (int phase = 4; phase >= 0; --phase) {
            const Uint32 ms = 10 + static_cast<Uint32>(phase);
            game.enterPhase(phase);
            game.frame(ms);
            sum += ms;
            EXPECT_EQ(ship.frameDelay, ms);
            EXPECT_EQ(ship.lifeTime, sum);
        }
    });
}

TEST(BattleFieldFrame, ShowsThePlayerFromTheCountdownOn) {
    Game game;
    game.hold([&] {
        game.withoutEnemies();
        for (int phase = 4; phase >= 0; --phase) {
            game.enterPhase(phase);
            game.takeLog();
            game.frame(10);
            EXPECT_EQ(game.takeLog({"blit ships/ship"}).size(), phase <= 1 ? 1u : 0u)
                << "phase " << phase;
        }
    });
}

TEST(BattleFieldFrame, ShowsThePlayerUpToTheTwentiethPictureOfItsExplosion) {
    Game game;
    game.hold([&] {
        game.withoutEnemies();
        for (int phase : {1, 0}) {
            game.enterPhase(phase);
            for (Uint32 picture : {0u, 1u, 19u, 20u, 45u}) {
                game.field.myShip->explosionFrame = picture;
                game.takeLog();
                game.frame(10);
                EXPECT_EQ(game.takeLog({"blit ships/ship"}).size(), picture <= 19 ? 1u : 0u)
                    << "picture " << picture;
            }
        }
    });
}

TEST(BattleFieldFrame, BanksThePlayerIntoItsTurn) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.press(SDLK_LEFT);
        game.frame(0);
        game.takeLog();
        game.frame(0);
        EXPECT_EQ(game.takeLog({"blit ships"}),
                  Log{"blit ships/ship01left.png [0 0 39 39] at 300 400"});
    });
}

TEST(BattleFieldFrame, MovesThePlayerInPlayOnlyAndAfterDrawingIt) {
    Game game;
    game.hold([&] {
        game.withoutEnemies();
        MyShip& ship = *game.field.myShip;
        ship.goingRight = true;
        ship.speedRight = 4;
        game.field.gamePhase = 1;
        game.frame(50);
        EXPECT_EQ(ship.xFloat, 300.0f);
        game.field.gamePhase = 0;
        game.takeLog();
        game.frame(100);
        EXPECT_EQ(game.takeLog({"blit ships"}),
                  Log{"blit ships/ship01right.png [0 0 39 39] at 300 400"});
        // 4 * 100 ms * 0.088, by this frame's time
        EXPECT_FLOAT_EQ(ship.xFloat, 335.2f);
    });
}

TEST(BattleFieldFrame, KeepsThePlayerInTheField) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        MyShip& ship = *game.field.myShip;
        ship.xFloat = 700;
        ship.yFloat = -20;
        game.frame(10);
        // 4 pixels from the right edge, 3 from the top
        EXPECT_EQ(ship.xFloat, 640.0f - 39 - 4);
        EXPECT_EQ(ship.yFloat, 3.0f);
    });
}

// One frame of play with everything in it: an enemy, both weapons firing, a message being typed and
// the player exploding.
TEST(BattleFieldFrame, DrawsEverythingInItsOrder) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        game.startPlay();
        game.onlyEnemy(0);
        EnemyShip& enemy = *field.enemyShips[0];
        enemy.canShoot = false;
        enemy.xFloat = 100;
        enemy.yFloat = 100;
        enemy.destRect = {100, 100, 39, 39};
        field.messageLine->setString("GO");
        field.shotState1 = 2;
        field.shotState2 = 2;
        field.shotKey1 = true;
        field.shotKey2 = true;
        field.myShip->energy = 0;
        game.takeLog();
        game.frame(20);
        Log expected = {
            "clear",
            "blit ships/enemy01.png [0 0 39 39] at 100 100",
            "play sounds/shot001b.wav on(1, 0, -1)",
            "blit shots/shot01a.png [0 0 3 11] at 318 394",
        };
        for (int i = 1; i <= 9; ++i) {
            expected.push_back("> shipTargetList[" + std::to_string(i) + "] = NULL");
        }
        const Log rest = {
            "> nearestTarget: 0",
            "play sounds/shot002.wav on(2, 0, -1)",
            "blit shots/shot01b.png [0 0 9 15] at 315 426",
            "blit display/enemyrect_topleft.png all at 97 97",
            "blit display/enemyrect_topright.png all at 129 97",
            "blit display/enemyrect_bottomleft.png all at 97 129",
            "blit display/enemyrect_bottomright.png all at 129 129",
            SHIP_AT_START,
            "blit fonts/impact/letters.png [48 0 8 9] at 10 10",
            "blit fonts/impact/letter_cursor.png [8 0 8 9] at 10 10",
            "blit fonts/impact/letter_cursor.png [0 0 8 9] at 18 10",
            "blit fonts/impact/fps_a.png all at 584 10",
            "blit fonts/impact/numbers_a.png [0 0 6 9] at 609 10",
            "blit fonts/impact/numbers_a.png [0 0 6 9] at 617 10",
            "blit fonts/impact/numbers_a.png [0 0 6 9] at 625 10",
            "blit shots/item_shot01a.png all at 10 441",
            "blit shots/item_shot02a.png all at 10 402",
            "blit display/energyscale.png all at 621 402",
            "blit display/energy01.png [0 65 10 0] at 606 468",
            // 2 rockets, then 49 laser shots
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 19 433",
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 23 433",
            "blit fonts/impact/numbers_mini.png [8 0 4 5] at 27 433",
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 19 472",
            "blit fonts/impact/numbers_mini.png [16 0 4 5] at 23 472",
            "blit fonts/impact/numbers_mini.png [36 0 4 5] at 27 472",
            "> FlyingObject->explode()",
            "play sounds/explode2.wav on(3, 0, -1)",
            "blit explosions/ex0000.png [0 0 128 128] at 278 378",
            "flip",
        };
        expected.insert(expected.end(), rest.begin(), rest.end());
        EXPECT_EQ(game.takeLog(), expected);
    });
}

TEST(BattleFieldFrame, LetsTheStarsFallByTheFrameTime) {
    Game game;
    game.hold([&] {
        // Star 26 is white: it falls 255 * 0.0008 pixels in a millisecond.
        Stars& stars = *game.field.stars;
        stars.y[26] = 100;
        game.frame(100);
        EXPECT_FLOAT_EQ(stars.y[26], 120.4f);
    });
}

TEST(BattleFieldFrame, DrawsThePictureOnTheOneScreen) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.frame(10);
        // The pictures of this test are opaque and of one colour: the ship's corners are seen.
        const Colour colour = {200, 100, 50};
        EXPECT_EQ(pixelAt(game.field.screen, 300, 400), colour);
        EXPECT_EQ(pixelAt(game.field.screen, 338, 438), colour);
        EXPECT_NE(pixelAt(game.field.screen, 299, 400), colour);
        EXPECT_NE(pixelAt(game.field.screen, 339, 438), colour);
    });
}

TEST(BattleFieldFrame, MovesTheFormationAfterTheScriptHasDrawnIt) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.onlyEnemy(3);
        EnemyShip& enemy = *game.field.enemyShips[3];
        enemy.canShoot = false;
        enemy.xFloat = 100;
        enemy.yFloat = 100;
        enemy.destRect = {100, 100, 39, 39};
        enemy.speedRight = 4;
        enemy.goingRight = true;
        game.takeLog();
        game.frame(100);
        EXPECT_EQ(game.takeLog({"blit ships/enemy"}),
                  Log{"blit ships/enemy01right.png [0 0 39 39] at 100 100"});
        // 4 * 100 ms * 0.01, once by the script and once by the formation
        EXPECT_FLOAT_EQ(enemy.xFloat, 108);
        EXPECT_TRUE(enemy.goingRight) << "its slot is at 300, 140";
        EXPECT_TRUE(enemy.goingDown);
    });
}

// Both numbers stand between the same places, whatever is left.
TEST(BattleFieldFrame, ShowsEnergyAndBothStocks) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.myShip->energy = 40;
        game.field.myShip->rocketAmmo = 1;
        game.field.myShip->laserAmmo = 23;
        game.takeLog();
        game.frame(10);
        const Log expected = {
            "blit display/energy01.png [0 25 10 40] at 606 428",
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 19 433",
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 23 433",
            "blit fonts/impact/numbers_mini.png [4 0 4 5] at 27 433",
            "blit fonts/impact/numbers_mini.png [0 0 4 5] at 19 472",
            "blit fonts/impact/numbers_mini.png [8 0 4 5] at 23 472",
            "blit fonts/impact/numbers_mini.png [12 0 4 5] at 27 472",
        };
        EXPECT_EQ(game.takeLog({"blit display/energy01", "blit fonts/impact/numbers_mini"}),
                  expected);
    });
}

TEST(BattleFieldFrame, RenewsTheFrameRateEveryTwentyFramesOfPlay) {
    Game game;
    game.hold([&] {
        for (int phase = 4; phase >= 1; --phase) {
            game.enterPhase(phase);
            game.frame(100);
        }
        game.startPlay();
        game.withoutEnemies();
        for (int i = 0; i < 19; ++i) {
            game.frame(20);
        }
        EXPECT_EQ(game.field.display->fps, 0);
        game.frame(20);
        EXPECT_EQ(game.field.display->fps, 50);
    });
}

struct Message {
    const char* rule;
    int energy, lasers, rockets;
    const char* text;  // null: none
};

const Message MESSAGES[] = {
    {"a fresh ship has nothing to tell", 65, 50, 3, nullptr},
    {"20 points of energy are enough", 20, 50, 3, nullptr},
    {"19 are not", 19, 50, 3, "Attetion xxx your energy is very low"},
    {"nor are fewer", 3, 50, 3, "Attetion xxx your energy is very low"},
    {"nor is none", 0, 50, 3, "Attetion xxx your energy is very low"},
    {"a last laser shot is one", 65, 1, 3, nullptr},
    {"no laser shot is told", 65, 0, 3, "your laser shot is empty now"},
    {"fewer than none is not", 65, -1, 3, nullptr},
    {"a last rocket is one", 65, 50, 1, nullptr},
    {"no rocket is told", 65, 50, 0, "you have got no more rockets"},
    {"fewer than none is not told", 65, 50, -1, nullptr},
};

class BattleFieldMessages : public testing::TestWithParam<int> {};

TEST_P(BattleFieldMessages, AreGivenInEveryPhaseOnceAGame) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        MyShip& ship = *field.myShip;
        QELString& line = *field.messageLine;
        for (const Message& row : MESSAGES) {
            SCOPED_TRACE(row.rule);
            game.enterPhase(GetParam());
            field.energyLowShown = false;
            field.laserEmptyShown = false;
            field.rocketsEmptyShown = false;
            ship.energy = row.energy;
            ship.laserAmmo = row.lasers;
            ship.rocketAmmo = row.rockets;
            line.setString("busy");
            line.setStringTwo("nothing", -1);
            game.frame(1);
            EXPECT_STREQ(line.textTwo, row.text == nullptr ? "nothing" : row.text);
            EXPECT_EQ(line.levelTwo, row.text == nullptr ? -1 : 1);
            EXPECT_EQ(field.energyLowShown, row.energy <= 19);
            EXPECT_EQ(field.laserEmptyShown, row.lasers == 0);
            EXPECT_EQ(field.rocketsEmptyShown, row.rockets == 0);

            // The same again, and worse: it has been said.
            line.setStringTwo("nothing", -1);
            ship.energy -= row.energy <= 19 && row.energy > 1 ? 1 : 0;
            game.frame(1);
            EXPECT_STREQ(line.textTwo, "nothing");
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Every, BattleFieldMessages, testing::Range(0, 5));

TEST(BattleFieldMessage, PassesTheBufferItself) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.myShip->energy = 19;
        game.frame(1);
        EXPECT_EQ(game.field.messageLine->text, game.field.textEnergyLow);
    });
}

TEST(BattleFieldMessage, TellsEnergyThenLaserThenRockets) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        game.startPlay();
        game.withoutEnemies();
        field.myShip->energy = 19;
        field.myShip->laserAmmo = 0;
        field.myShip->rocketAmmo = 0;
        // An idle line: the first message starts, the next waits, the third waits behind it.
        game.frame(1);
        EXPECT_EQ(field.messageLine->text, field.textEnergyLow);
        EXPECT_EQ(field.messageLine->textTwo, field.textLaserEmpty);
        EXPECT_EQ(field.messageLine->textThree, field.textNoMoreRockets);
    });
}

TEST(BattleFieldMessage, ComesAfterTheLineOfItsFrameIsDrawn) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.myShip->energy = 19;
        game.takeLog();
        game.frame(60);
        EXPECT_EQ(game.takeLog({"blit fonts/impact/letter"}), Log{});
        EXPECT_EQ(game.field.messageLine->shown, 1);
        game.frame(60);
        EXPECT_EQ(game.takeLog({"blit fonts/impact/letters"}).size(), 2u);
    });
}

TEST(BattleFieldMessage, TypesOutInPlayOnly) {
    Game game;
    game.hold([&] {
        game.field.gamePhase = 1;
        game.frame(60);
        EXPECT_EQ(game.field.messageLine->elapsed, 0);
        EXPECT_EQ(game.field.messageLine->shown, 1);
        game.field.gamePhase = 0;
        game.frame(60);
        EXPECT_EQ(game.field.messageLine->shown, 2);
    });
}

TEST(BattleFieldExplosion, StartsAtNoEnergyInEveryPhase) {
    const struct {
        const char* rule;
        int energy;
        bool explodes;
    } rows[] = {
        {"a last point keeps the ship", 1, false},
        {"none does not", 0, true},
        {"nor does less", -7, true},
    };
    Game game;
    game.hold([&] {
        game.withoutEnemies();
        for (int phase = 4; phase >= 0; --phase) {
            for (const auto& row : rows) {
                SCOPED_TRACE(row.rule);
                game.enterPhase(phase);
                game.field.myShip->energy = row.energy;
                game.field.myShip->explosionTimer = 0;
                game.takeLog();
                game.frame(10);
                EXPECT_EQ(game.takeLog({"blit explosions"}).size(), row.explodes ? 1u : 0u);
                EXPECT_EQ(game.field.myShip->energy, row.energy);
                EXPECT_FALSE(game.field.quit);
            }
        }
    });
}

TEST(BattleFieldExplosion, LiesOverTheDisplayAndStepsOnceAFrame) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.myShip->energy = 0;
        for (int i = 1; i <= 3; ++i) {
            game.takeLog();
            game.frame(51);
            const Log drawn = game.takeLog({"blit", "flip"});
            const std::string picture = "blit explosions/ex000" + std::to_string(i) + ".png";
            ASSERT_GE(drawn.size(), 2u);
            EXPECT_EQ(drawn.at(drawn.size() - 2).substr(0, picture.size()), picture);
            EXPECT_EQ(drawn.back(), "flip");
        }
    });
}

TEST(BattleFieldExplosion, SaysGoodByeInTheFrameOfItsLastPicture) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.myShip->energy = 0;
        for (int i = 1; i <= 44; ++i) {
            game.frame(51);
        }
        EXPECT_FALSE(game.field.quit);
        EXPECT_EQ(game.field.myShip->energy, 0);
        game.takeLog();
        game.frame(51);
        EXPECT_TRUE(game.field.quit);
        EXPECT_EQ(game.field.myShip->energy, -666);
        const Log expected = {
            "blit explosions/ex0045.png [0 0 128 128] at 278 378",
            "> ",
            "> Good Bye World!",
            "> ---------------",
            "flip",
        };
        EXPECT_EQ(game.takeLog({"blit explosions", "> ", "flip"}), expected);
    });
}

TEST(BattleFieldExplosion, TakesAnyNegativeEnergyButItsOwnEndForGoingOn) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        for (int energy : {-665, -667}) {
            game.field.myShip->energy = energy;
            game.frame(10);
            EXPECT_FALSE(game.field.quit);
        }
        game.field.myShip->energy = -666;
        game.frame(10);
        EXPECT_TRUE(game.field.quit);
    });
}

}  // namespace
