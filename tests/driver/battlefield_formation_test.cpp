// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/myship.h"
#include "objects/shot.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

const std::string MOVED = "> --->FormationTimer2";
const std::string SWITCHED = "> --->formationTimer";

class EnemyScript : public testing::Test {
protected:
    // Play has begun, no enemy shoots, and a test acts.
    void hold(const std::function<void()>& test) {
        game.hold([&] {
            game.startPlay();
            for (int i = 0; i < 7; ++i) {
                enemy(i).canShoot = false;
            }
            test();
        });
    }

    void handle(Uint32 ms) {
        field.frameTime = ms;
        field.handleFormationOne();
    }

    void place(int slot, Sint16 x, Sint16 y) {
        enemy(slot).xFloat = x;
        enemy(slot).yFloat = y;
        enemy(slot).destRect.x = x;
        enemy(slot).destRect.y = y;
    }

    void expectFormationAt(int x, int y) {
        EXPECT_EQ(field.formation->x, x);
        EXPECT_EQ(field.formation->y, y);
    }

    EnemyShip& enemy(int slot) { return *field.enemyShips[slot]; }

    Game game;
    BattleField& field = game.field;
};

TEST_F(EnemyScript, GathersTheTimeOfPlay) {
    hold([&] {
        handle(20);
        handle(35);
        EXPECT_EQ(field.formationTime, 55u);
        handle(4294967295u);
        EXPECT_EQ(field.formationTime, 54u) << "it starts anew at 32 bits";
    });
}

TEST_F(EnemyScript, MovesTheFormationFirstAfterTenSeconds) {
    hold([&] {
        for (int i = 0; i < 500; ++i) {
            handle(20);
        }
        expectFormationAt(180, 100);
        EXPECT_EQ(field.formationTimer2, 0);
        game.takeLog();
        handle(20);
        expectFormationAt(340, 20);
        EXPECT_EQ(game.takeLog({"> --->F"}), Log{MOVED});
        EXPECT_EQ(field.formationPhase, 1);
    });
}

TEST_F(EnemyScript, WaitsForAMillisecondLeft) {
    hold([&] {
        field.formationTimer2 = 1;
        handle(0);
        expectFormationAt(180, 100);
        handle(1);
        expectFormationAt(180, 100);
        handle(0);
        expectFormationAt(340, 20);
    });
}

TEST_F(EnemyScript, CyclesThroughThreePositions) {
    const struct {
        int phase, x, y, phaseAfter;
    } rows[] = {{0, 340, 20, 1}, {1, 20, 40, 2}, {2, 180, 200, 0}, {0, 340, 20, 1}};
    hold([&] {
        for (const auto& row : rows) {
            EXPECT_EQ(field.formationPhase, row.phase);
            field.formationTimer2 = 0;
            handle(20);
            expectFormationAt(row.x, row.y);
            EXPECT_EQ(field.formationPhase, row.phaseAfter);
        }
    });
}

TEST_F(EnemyScript, KnowsNoOtherPosition) {
    hold([&] {
        for (int phase : {-1, 3}) {
            field.formationPhase = phase;
            field.formationTimer2 = 0;
            handle(20);
            expectFormationAt(180, 100);
            EXPECT_EQ(field.formationPhase, phase);
            EXPECT_EQ(field.formationTimer2, 7980);
        }
    });
}

TEST_F(EnemyScript, MovesEveryFourHundredFramesOfTwentyMilliseconds) {
    hold([&] {
        game.withoutEnemies();
        field.formationTimer2 = 0;
        handle(20);
        EXPECT_EQ(field.formationTimer2, 7980) << "the frame of the move counts";
        game.takeLog();
        for (int i = 1; i < 400; ++i) {
            handle(20);
        }
        EXPECT_EQ(game.takeLog(), Log{});
        handle(20);
        EXPECT_EQ(game.takeLog(), Log{MOVED});
        expectFormationAt(20, 40);
    });
}

TEST_F(EnemyScript, MovesOnceInAFrameHoweverLongItIs) {
    hold([&] {
        game.withoutEnemies();
        field.formationTimer2 = -30000;
        handle(20000);
        EXPECT_EQ(game.takeLog({"> --->F"}), Log{MOVED});
        EXPECT_EQ(field.formationTimer2, -12000);
    });
}

TEST_F(EnemyScript, CountsAWrappedFrameUp) {
    hold([&] {
        handle(4294967295u);
        EXPECT_EQ(field.formationTimer2, 10001);
        EXPECT_EQ(field.formationTimer, 100007) << "once for each of the seven";
    });
}

TEST_F(EnemyScript, SetsTheSlotsBeforeItHandlesTheShips) {
    hold([&] {
        field.formationTimer2 = 0;
        game.takeLog();
        handle(20);
        const Log log = game.takeLog({"> --->F", "blit ships"});
        ASSERT_GE(log.size(), 2u);
        EXPECT_EQ(log[0], MOVED);
    });
}

TEST_F(EnemyScript, GoesOnMovingWhenAllEnemiesAreGone) {
    hold([&] {
        game.withoutEnemies();
        game.takeLog();
        for (int i = 0; i < 1400; ++i) {
            handle(20);
        }
        // After 10 s, 18 s and 26 s of the 28 s.
        EXPECT_EQ(game.takeLog(), (Log{MOVED, MOVED, MOVED}));
        expectFormationAt(180, 200);
        EXPECT_EQ(field.formationTime, 28000u);
        EXPECT_EQ(field.formationTimer, 100000);
    });
}

TEST_F(EnemyScript, HandlesNobodyWhenNobodyIsCounted) {
    hold([&] {
        field.enemiesAlive = 0;
        game.takeLog();
        handle(20);
        EXPECT_EQ(game.takeLog(), Log{});
        EXPECT_EQ(enemy(0).lifeTime, 0u);
        field.enemiesAlive = 1;
        handle(20);
        EXPECT_EQ(enemy(0).lifeTime, 20u);
        EXPECT_EQ(enemy(6).lifeTime, 20u);
    });
}

TEST_F(EnemyScript, DrawsTheShipsInOrderWhereTheyWereAndMovesThemThen) {
    hold([&] {
        for (int i = 0; i < 7; ++i) {
            place(i, static_cast<Sint16>(50 * i + 10), 60);
            enemy(i).goingDown = true;
            enemy(i).speedDown = 0.8f;
        }
        enemy(1).goingLeft = true;
        enemy(2).goingRight = true;
        game.takeLog();
        handle(500);
        const Log expected = {
            "blit ships/enemy01.png [0 0 39 39] at 10 60",
            "blit ships/enemy01left.png [0 0 39 39] at 60 60",
            "blit ships/enemy01right.png [0 0 39 39] at 110 60",
            "blit ships/enemy01.png [0 0 39 39] at 160 60",
            "blit ships/enemy01.png [0 0 39 39] at 210 60",
            "blit ships/enemy01.png [0 0 39 39] at 260 60",
            "blit ships/enemy01.png [0 0 39 39] at 310 60",
        };
        EXPECT_EQ(game.takeLog(), expected);
        for (int i = 0; i < 7; ++i) {
            EXPECT_FLOAT_EQ(enemy(i).yFloat, 64.0f);  // 0.8 * 500 ms * 0.01
            EXPECT_EQ(enemy(i).frameDelay, 500u);
            EXPECT_EQ(enemy(i).lifeTime, 500u);
        }
    });
}

TEST_F(EnemyScript, ShowsADyingShipUpToTheTwentiethPicture) {
    hold([&] {
        game.onlyEnemy(4);
        place(4, 100, 100);
        enemy(4).energy = 0;
        for (Uint32 picture : {0u, 19u, 20u, 44u}) {
            enemy(4).explosionFrame = picture;
            game.takeLog();
            handle(10);
            EXPECT_EQ(game.takeLog({"blit ships"}).size(), picture < 20 ? 1u : 0u)
                << "picture " << picture;
            EXPECT_EQ(field.enemiesAlive, 1);
        }
    });
}

TEST_F(EnemyScript, SkipsShipsThatAreGone) {
    hold([&] {
        field.myShip->shipTargetList[3] = nullptr;
        game.takeLog();
        handle(20);
        EXPECT_EQ(game.takeLog({"blit ships"}).size(), 6u);
        EXPECT_EQ(enemy(3).lifeTime, 0u);
        EXPECT_EQ(field.formationTimer, 100000 - 6 * 20) << "they do not count the timer down";
    });
}

TEST_F(EnemyScript, LooksAtTheShipsOwnEntry) {
    hold([&] {
        enemy(3).ownIndex = 8;
        handle(20);
        EXPECT_EQ(enemy(3).lifeTime, 0u);
        field.myShip->shipTargetList[8] = &enemy(3);
        handle(20);
        EXPECT_EQ(enemy(3).lifeTime, 20u);
    });
}

TEST_F(EnemyScript, CountsTheSwitchTimerDownOnceForEachShip) {
    hold([&] {
        handle(20);
        EXPECT_EQ(field.formationTimer, 100000 - 7 * 20);
        enemy(0).energy = 0;
        handle(20);
        EXPECT_EQ(field.formationTimer, 100000 - 14 * 20) << "a dying ship counts";
    });
}

TEST_F(EnemyScript, SwitchesTheShipAtWhichTheTimerRunsOut) {
    const struct {
        const char* rule;
        int timer;
        int ship;  // -1: none
        int timerAfter;
    } rows[] = {
        {"it runs out at the first ship", 20, 0, 50000 - 6 * 20},
        {"a millisecond is left for the second", 21, 1, 50000 - 5 * 20},
        {"it runs out at the third", 60, 2, 50000 - 4 * 20},
        {"it runs out at the last", 140, 6, 50000},
        {"a millisecond is left after the last", 141, -1, 1},
    };
    hold([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            for (int i = 0; i < 7; ++i) {
                enemy(i).externallySteered = true;
                enemy(i).speedScale = 0.01f;
            }
            field.formationTimer = row.timer;
            game.takeLog();
            handle(20);
            EXPECT_EQ(field.formationTimer, row.timerAfter);
            EXPECT_EQ(game.takeLog({"> --->f"}), row.ship < 0 ? Log{} : Log{SWITCHED});
            for (int i = 0; i < 7; ++i) {
                EXPECT_EQ(enemy(i).externallySteered, i != row.ship) << "ship " << i;
                EXPECT_EQ(enemy(i).speedScale, i == row.ship ? 0.056f : 0.01f);
            }
        }
    });
}

TEST_F(EnemyScript, BringsAFreeShipBackToTheFormation) {
    hold([&] {
        enemy(0).externallySteered = false;
        enemy(0).speedScale = 0.056f;
        field.formationTimer = 1;
        handle(20);
        EXPECT_TRUE(enemy(0).externallySteered);
        EXPECT_EQ(enemy(0).speedScale, 0.01f);
        EXPECT_TRUE(enemy(1).externallySteered) << "one ship at a time";
    });
}

TEST_F(EnemyScript, MovesAShipAtItsOldPaceInTheFrameOfItsSwitch) {
    hold([&] {
        place(0, 100, 100);
        enemy(0).goingDown = true;
        enemy(0).speedDown = 0.8f;
        field.formationTimer = 1;
        game.takeLog();
        handle(500);
        EXPECT_FLOAT_EQ(enemy(0).yFloat, 104.0f);
        EXPECT_TRUE(enemy(0).goingDown) << "and it keeps its direction";
        EXPECT_FALSE(enemy(0).goingUp);
    });
}

TEST_F(EnemyScript, RunsEnemyShots) {
    hold([&] {
        place(0, 100, 100);
        enemy(0).canShoot = true;
        handle(20);
        EXPECT_TRUE(enemy(0).shotActive[0]);
        EXPECT_FALSE(enemy(1).shotActive[0]);
    });
}

TEST_F(EnemyScript, RemovesAShipWhoseExplosionHasEnded) {
    hold([&] {
        enemy(2).energy = -666;
        game.takeLog();
        handle(20);
        EXPECT_EQ(field.enemiesAlive, 6);
        EXPECT_EQ(field.myShip->shipTargetList[2], nullptr);
        EXPECT_EQ(game.takeLog({"> "}),
                  Log{"> EnemyShip::ownShipTargetList: T T F T T T T F F F "});
        EXPECT_EQ(enemy(2).lifeTime, 0u) << "it is not handled any more";
        EXPECT_EQ(field.formationTimer, 100000 - 6 * 20);

        handle(20);
        EXPECT_EQ(field.enemiesAlive, 6) << "and counted out once";
        EXPECT_EQ(game.takeLog({"> "}), Log{});
        EXPECT_EQ(game.nameOf(enemy(2).image), "ships/enemy01.png") << "it is not deleted";
    });
}

TEST_F(EnemyScript, RemovesNoShipWithAnyOtherEnergy) {
    hold([&] {
        enemy(0).energy = -665;
        enemy(1).energy = -667;
        enemy(2).energy = 0;
        handle(20);
        EXPECT_EQ(field.enemiesAlive, 7);
    });
}

TEST_F(EnemyScript, RemovesTwoShipsInOneFrame) {
    hold([&] {
        enemy(0).energy = -666;
        enemy(6).energy = -666;
        game.takeLog();
        handle(20);
        EXPECT_EQ(field.enemiesAlive, 5);
        EXPECT_EQ(game.takeLog({"> "}),
                  (Log{"> EnemyShip::ownShipTargetList: F T T T T T T F F F ",
                       "> EnemyShip::ownShipTargetList: F T T T T T F F F F "}));
    });
}

TEST_F(EnemyScript, RemovesTheLastShip) {
    hold([&] {
        game.onlyEnemy(5);
        enemy(5).energy = -666;
        game.takeLog();
        handle(20);
        EXPECT_EQ(field.enemiesAlive, 0);
        EXPECT_EQ(game.takeLog(), Log{"> EnemyShip::ownShipTargetList: F F F F F F F F F F "});
        handle(20);
        EXPECT_EQ(field.enemiesAlive, 0);
    });
}

TEST_F(EnemyScript, PrintsTheFirstRunByTheShipsNumber) {
    const struct {
        const char* rule;
        int slot, ownIndex, targetCount;
        const char* list;
    } rows[] = {
        {"a number inside the list prints all entries before its own", 3, 6, 5, "T T T T T T "},
        {"a number at its end prints none of them", 4, 4, 4, ""},
        {"nor does one beyond; its own and those behind it follow", 6, 2, 4, "F T "},
    };
    hold([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            for (int i = 0; i < 7; ++i) {
                field.myShip->shipTargetList[i] = &enemy(i);
            }
            EnemyShip& removed = enemy(row.slot);
            removed.ownIndex = row.ownIndex;
            removed.targetCount = row.targetCount;
            removed.energy = -666;
            game.takeLog();
            handle(0);
            EXPECT_EQ(game.takeLog({"> Enemy"}),
                      Log{std::string("> EnemyShip::ownShipTargetList: ") + row.list});
            removed.energy = 10;
            removed.ownIndex = row.slot;
            removed.targetCount = 10;
        }
    });
}

TEST_F(EnemyScript, KeepsADestroyedShipUntilTheFrameAfterItsLastPicture) {
    hold([&] {
        game.onlyEnemy(1);
        place(1, 100, 100);
        enemy(1).energy = 0;
        for (int i = 0; i < 44; ++i) {
            handle(51);
        }
        EXPECT_EQ(enemy(1).energy, 0);
        handle(51);
        EXPECT_EQ(enemy(1).energy, -666);
        EXPECT_EQ(field.enemiesAlive, 1);
        game.takeLog();
        handle(51);
        EXPECT_EQ(field.enemiesAlive, 0);
        EXPECT_EQ(field.myShip->shipTargetList[1], nullptr);
        EXPECT_EQ(game.takeLog({"blit"}), Log{});
    });
}

TEST_F(EnemyScript, LetsTheShotsOfARemovedShipStandStillUnseen) {
    hold([&] {
        place(0, 100, 100);
        enemy(0).canShoot = true;
        handle(20);
        handle(20);
        const float y = enemy(0).shots[0]->yFloat;
        enemy(0).energy = -666;
        handle(20);
        game.takeLog();
        handle(20);
        EXPECT_EQ(game.takeLog({"blit shots"}), Log{});
        EXPECT_EQ(enemy(0).shots[0]->yFloat, y);
    });
}

}  // namespace
