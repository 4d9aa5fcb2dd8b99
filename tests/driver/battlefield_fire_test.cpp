// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "front/front.h"
#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/myshot.h"
#include "objects/myshotrocket.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

MyShot* laserAt(BattleField& field, Uint32 slot) {
    return field.myFirstShotList[slot];
}

MyShot* rocketAt(BattleField& field, Uint32 slot) {
    return field.mySecondShotList[slot];
}

// One of the two weapons: where the battlefield keeps it, and in what they differ.
struct Weapon {
    const char* name;
    SDLKey sdlKey;
    bool BattleField::*key;
    Uint8 BattleField::*state;
    Uint32 BattleField::*count;
    Uint32 BattleField::*max;
    Uint32* BattleField::*ages;
    bool* BattleField::*flags;
    bool BattleField::*emptyShown;
    int MyShip::*ammo;
    void (BattleField::*handle)();
    MyShot* (*shotAt)(BattleField&, Uint32);

    int ammoAtStart;
    Uint32 lifetime;
    const char* sound;
    const char* emptyText;
    const char* blitAtStart;  // a shot that leaves a ship at (300, 400)
    float startX, startY;     // from the ship's corner
    int width, height;
    int damage;
};

const Weapon LASER = {"Laser",
                      SDLK_a,
                      &BattleField::shotKey1,
                      &BattleField::shotState1,
                      &BattleField::myFirstShotCount,
                      &BattleField::myFirstShotMax,
                      &BattleField::myFirstShotAge,
                      &BattleField::myFirstShotActive,
                      &BattleField::laserEmptyShown,
                      &MyShip::laserAmmo,
                      &BattleField::handleMyFirstShot,
                      laserAt,
                      50,
                      1000,
                      "play sounds/shot001b.wav on(1, 0, -1)",
                      "laser empty",
                      "blit shots/shot01a.png [0 0 3 11] at 318 394",
                      18,
                      -6,
                      3,
                      11,
                      1};

const Weapon ROCKET = {"Rocket",
                       SDLK_s,
                       &BattleField::shotKey2,
                       &BattleField::shotState2,
                       &BattleField::mySecondShotCount,
                       &BattleField::mySecondShotMax,
                       &BattleField::mySecondShotAge,
                       &BattleField::mySecondShotActive,
                       &BattleField::rocketsEmptyShown,
                       &MyShip::rocketAmmo,
                       &BattleField::handleMySecondShot,
                       rocketAt,
                       3,
                       3000,
                       "play sounds/shot002.wav on(2, 0, -1)",
                       "no rockets",
                       "blit shots/shot01b.png [0 0 9 15] at 315 426",
                       15,
                       26,
                       9,
                       15,
                       10};

std::ostream& operator<<(std::ostream& out, const Weapon& weapon) {
    return out << weapon.name;
}

class PlayerFire : public testing::TestWithParam<Weapon> {
protected:
    // Play has begun, no enemy is there, the weapon's trigger is armed, and a test acts.
    void hold(const std::function<void()>& test) {
        game.hold([&] {
            game.startPlay();
            game.withoutEnemies();
            state() = 2;
            test();
        });
    }

    void handle(Uint32 ms) {
        field.frameTime = ms;
        (field.*weapon.handle)();
    }

    // Presses the trigger for a frame of no length and lets it go.
    void fire() {
        field.*weapon.key = true;
        state() = 2;
        handle(0);
        field.*weapon.key = false;
    }

    // Puts an enemy of 10 points where a point lies inside its rectangle, and far from its edges.
    EnemyShip& enemyAround(float x, float y) {
        EnemyShip& enemy = *field.enemyShips[2];
        field.myShip->shipTargetList[2] = &enemy;
        enemy.destRect = {static_cast<Sint16>(x - 20), static_cast<Sint16>(y - 20), 39, 39};
        return enemy;
    }

    Uint8& state() { return field.*weapon.state; }
    Uint32& count() { return field.*weapon.count; }
    Uint32& age(Uint32 slot) { return (field.*weapon.ages)[slot]; }
    bool& isActive(Uint32 slot) { return (field.*weapon.flags)[slot]; }
    MyShot& shot(Uint32 slot) { return *weapon.shotAt(field, slot); }
    int& ammo() { return field.myShip->*weapon.ammo; }
    QELString& line() { return *field.messageLine; }

    const Weapon& weapon = GetParam();
    Game game;
    BattleField& field = game.field;
};

INSTANTIATE_TEST_SUITE_P(With, PlayerFire, testing::Values(LASER, ROCKET),
                         [](const auto& test) { return test.param.name; });

TEST_P(PlayerFire, ArmsOnReleaseAndRequestsOnPress) {
    const struct {
        const char* rule;
        Uint8 before;
        bool held;
        Uint8 after;
    } rows[] = {
        {"a fired trigger waits for the release", 3, true, 3},
        {"and is armed by it", 3, false, 2},
        {"an armed one waits for the key", 2, false, 2},
        {"which requests a shot", 2, true, 1},
        {"a request stays while the key is held", 1, true, 1},
        {"and when it is let go", 1, false, 1},
    };
    hold([&] {
        // Nothing to fire, and that has not been told: the bare trigger is seen.
        ammo() = 0;
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            state() = row.before;
            field.*weapon.key = row.held;
            handle(0);
            EXPECT_EQ(state(), row.after);
        }
    });
}

TEST_P(PlayerFire, HoldingTheKeyFiresOneShot) {
    hold([&] {
        game.press(weapon.sdlKey);
        for (int i = 0; i < 20; ++i) {
            game.frame(1);
        }
        EXPECT_EQ(count(), 1u);
        EXPECT_EQ(state(), 3);
        EXPECT_EQ(ammo(), weapon.ammoAtStart - 1);
    });
}

TEST_P(PlayerFire, ReleasingAndPressingAgainFiresTheNext) {
    hold([&] {
        for (Uint32 shots = 1; shots <= 3; ++shots) {
            game.press(weapon.sdlKey);
            game.frame(1);  // the key is seen at the end of this frame,
            game.frame(1);  // the shot leaves in the next
            EXPECT_EQ(count(), shots);
            game.release(weapon.sdlKey);
            game.frame(1);
            game.frame(1);
            EXPECT_EQ(count(), shots);
        }
        EXPECT_EQ(ammo(), weapon.ammoAtStart - 3);
    });
}

TEST_P(PlayerFire, DoesNotSeeAPressAndAReleaseWithinAFrame) {
    hold([&] {
        game.press(weapon.sdlKey);
        game.release(weapon.sdlKey);
        game.frame(1);
        game.frame(1);
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(state(), 2);
    });
}

TEST_P(PlayerFire, DoesNotSeeAReleaseAndAPressWithinAFrame) {
    hold([&] {
        game.press(weapon.sdlKey);
        game.frame(1);
        game.frame(1);
        game.release(weapon.sdlKey);
        game.press(weapon.sdlKey);
        game.frame(1);
        game.frame(1);
        EXPECT_EQ(count(), 1u);
    });
}

TEST_P(PlayerFire, AKeyHeldWhenPlayStartsDoesNotFire) {
    game.hold([&] {
        game.press(weapon.sdlKey);
        game.frame(1);
        game.startPlay();
        game.withoutEnemies();
        for (int i = 0; i < 5; ++i) {
            game.frame(1);
        }
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(state(), 3);
    });
}

TEST_P(PlayerFire, MakesTheShotAtItsPlaceOnTheShip) {
    const struct {
        const char* rule;
        float shipX, shipY, cornerX, cornerY;
    } rows[] = {
        {"the start", 300, 400, 300, 400},
        {"fractions are cut", 123.9f, 77.9f, 123, 77},
        {"towards zero, also beyond the edge", -0.9f, -3.9f, 0, -3},
    };
    hold([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            field.myShip->xFloat = row.shipX;
            field.myShip->yFloat = row.shipY;
            fire();
            const MyShot& fired = shot(count() - 1);
            EXPECT_EQ(fired.xFloat, row.cornerX + weapon.startX);
            EXPECT_EQ(fired.yFloat, row.cornerY + weapon.startY);
            EXPECT_EQ(fired.width, weapon.width);
            EXPECT_EQ(fired.height, weapon.height);
        }
    });
}

TEST_P(PlayerFire, GivesTheShotTheFieldAndTheTargets) {
    hold([&] {
        fire();
        const MyShot& fired = shot(0);
        EXPECT_EQ(fired.screen, field.screen);
        EXPECT_EQ(fired.fieldWidth, 640);
        EXPECT_EQ(fired.fieldHeight, 480);
        EXPECT_FALSE(fired.externallySteered);
        EXPECT_EQ(fired.shipTargetList, field.myShip->shipTargetList) << "the list itself";
        EXPECT_EQ(fired.maxTargets, 10);
        EXPECT_EQ(fired.deathFactor, weapon.damage);
    });
}

TEST_P(PlayerFire, TakesASlotBeforeTheSoundAndSpendsAShotAfterIt) {
    hold([&] {
        const auto play = front::hooks().Mix_PlayChannelTimed;
        front::hooks().Mix_PlayChannelTimed = [&](int channel, Mix_Chunk* chunk, int loops,
                                                  int ticks) {
            EXPECT_EQ(count(), 1u);
            EXPECT_TRUE(isActive(0));
            EXPECT_EQ(state(), 3);
            EXPECT_EQ(ammo(), weapon.ammoAtStart);
            return play(channel, chunk, loops, ticks);
        };
        game.takeLog();
        fire();
        EXPECT_EQ(game.takeLog({"play", "blit shots"}), (Log{weapon.sound, weapon.blitAtStart}));
        EXPECT_EQ(ammo(), weapon.ammoAtStart - 1);
        front::hooks().Mix_PlayChannelTimed = play;
    });
}

TEST_P(PlayerFire, LeavesTheOtherWeaponAlone) {
    hold([&] {
        const Weapon& other = weapon.sdlKey == SDLK_a ? ROCKET : LASER;
        field.*other.state = 2;
        fire();
        EXPECT_EQ(field.*other.count, 0u);
        EXPECT_EQ(field.myShip->*other.ammo, other.ammoAtStart);
        EXPECT_EQ(field.*other.state, 2);
    });
}

TEST_P(PlayerFire, ANewShotIsDrawnAtItsStartAndMovedInTheSameFrame) {
    hold([&] {
        field.*weapon.key = true;
        game.takeLog();
        handle(10);
        EXPECT_EQ(game.takeLog({"blit shots"}), Log{weapon.blitAtStart});
        EXPECT_EQ(age(0), 10u);
        EXPECT_EQ(shot(0).lifeTime, 10u);
        EXPECT_NE(shot(0).yFloat, 400 + weapon.startY);
    });
}

TEST_P(PlayerFire, StartsAgeAndFlagAnewInAUsedSlot) {
    hold([&] {
        age(0) = 900;
        isActive(0) = false;
        fire();
        EXPECT_EQ(age(0), 0u);
        EXPECT_TRUE(isActive(0));
    });
}

TEST_P(PlayerFire, DrawsAllShotsInFlightInTheOrderOfTheirSlots) {
    hold([&] {
        for (float x : {100.0f, 200.0f, 300.0f}) {
            field.myShip->xFloat = x;
            fire();
        }
        isActive(1) = false;
        game.takeLog();
        handle(20);
        const Log drawn = game.takeLog({"blit shots"});
        ASSERT_EQ(drawn.size(), 2u) << "a retired shot is not drawn";
        const std::string first = std::to_string(static_cast<int>(100 + weapon.startX));
        const std::string third = std::to_string(static_cast<int>(300 + weapon.startX));
        EXPECT_NE(drawn[0].find("at " + first), std::string::npos);
        EXPECT_NE(drawn[1].find("at " + third), std::string::npos);
        EXPECT_EQ(age(0), 20u);
        EXPECT_EQ(age(1), 0u);
        EXPECT_EQ(age(2), 20u);
        EXPECT_EQ(shot(0).frameDelay, 20u);
        EXPECT_EQ(shot(1).frameDelay, 0u) << "nor moved";
    });
}

TEST_P(PlayerFire, FliesUpToItsLifetimeAndNoMillisecondLonger) {
    hold([&] {
        fire();
        age(0) = 0;
        handle(weapon.lifetime);
        EXPECT_TRUE(isActive(0));
        EXPECT_EQ(age(0), weapon.lifetime);
        game.takeLog();
        handle(1);
        EXPECT_EQ(game.takeLog({"blit shots/shot01"}).size(), 1u) << "it is drawn a last time";
        EXPECT_FALSE(isActive(0));
        EXPECT_EQ(age(0), 0u);
        handle(1);
        EXPECT_EQ(game.takeLog({"blit"}), Log{});
        EXPECT_EQ(age(0), 0u);
    });
}

TEST_P(PlayerFire, AShotBeyondTheEdgeFliesOn) {
    hold([&] {
        fire();
        shot(0).yFloat = -500;
        handle(10);
        EXPECT_TRUE(isActive(0));
        shot(0).yFloat = 2000;
        handle(10);
        EXPECT_TRUE(isActive(0));
    });
}

TEST_P(PlayerFire, HitsAtExactlyItsLifetimeButNotLater) {
    const struct {
        const char* rule;
        Uint32 over;
        int energyLost;
    } rows[] = {
        {"its last millisecond may hit", 0, 1},
        {"one later it is gone", 1, 0},
    };
    hold([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            fire();
            const Uint32 slot = count() - 1;
            MyShot& flying = shot(slot);
            // The hit point is 24 pixels below the shot's top.
            EnemyShip& enemy = enemyAround(flying.xFloat, flying.yFloat + 24);
            enemy.energy = 10;
            age(slot) = weapon.lifetime - 1;
            flying.speedUp = 0;
            flying.goingUp = false;
            handle(1 + row.over);
            EXPECT_EQ(enemy.energy, 10 - row.energyLost * weapon.damage);
            EXPECT_FALSE(isActive(slot));
            EXPECT_EQ(age(slot), 0u);
            field.myShip->shipTargetList[2] = nullptr;
        }
    });
}

TEST_P(PlayerFire, AHitInTheFrameOfFiringRetiresTheShotAtOnce) {
    hold([&] {
        EnemyShip& enemy = enemyAround(300 + weapon.startX, 400 + weapon.startY + 24);
        enemy.energy = 10;
        field.*weapon.key = true;
        game.takeLog();
        handle(10);
        EXPECT_EQ(game.takeLog({"blit shots/shot01"}), Log{weapon.blitAtStart}) << "drawn once";
        EXPECT_EQ(enemy.energy, 10 - weapon.damage);
        EXPECT_EQ(count(), 1u);
        EXPECT_EQ(shot(0).lifeTime, 10u) << "moved once";
        EXPECT_FALSE(isActive(0));
        EXPECT_EQ(age(0), 0u);
        handle(10);
        EXPECT_EQ(shot(0).lifeTime, 10u);
        EXPECT_EQ(enemy.energy, 10 - weapon.damage) << "hit once";
    });
}

TEST_P(PlayerFire, OnlyTheLaserStartsTheFlashOfAHit) {
    hold([&] {
        fire();
        EnemyShip& enemy = enemyAround(shot(0).xFloat, shot(0).yFloat + 24);
        handle(0);
        EXPECT_FALSE(isActive(0));
        EXPECT_EQ(enemy.miniExploding, weapon.sdlKey == SDLK_a);
    });
}

TEST_P(PlayerFire, APressWithoutAmmunitionWaitsForTheAnnouncement) {
    hold([&] {
        ammo() = 0;
        field.*weapon.key = true;
        for (int i = 0; i < 3; ++i) {
            handle(1);
            EXPECT_EQ(state(), 1);
            EXPECT_TRUE(line().idle) << "nothing is said";
        }
        field.*weapon.emptyShown = true;
        handle(1);
        EXPECT_STREQ(line().text, weapon.emptyText);
        EXPECT_EQ(state(), 3) << "the press is used up";
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(ammo(), 0);
        EXPECT_EQ(game.takeLog({"play"}), Log{});
    });
}

TEST_P(PlayerFire, SaysNothingWithoutAPress) {
    hold([&] {
        ammo() = 0;
        field.*weapon.emptyShown = true;
        handle(1);
        EXPECT_TRUE(line().idle);
        EXPECT_EQ(state(), 2);
        state() = 3;
        field.*weapon.key = true;
        handle(1);
        EXPECT_TRUE(line().idle);
        EXPECT_EQ(state(), 3);
    });
}

TEST_P(PlayerFire, SaysThatItIsEmptyAtTheLevelOfMessages) {
    hold([&] {
        ammo() = -1;
        field.*weapon.emptyShown = true;
        line().setString("busy");
        field.*weapon.key = true;
        handle(1);
        EXPECT_STREQ(line().textTwo, weapon.emptyText);
        EXPECT_EQ(line().levelTwo, 1);
        EXPECT_EQ(count(), 0u) << "less than nothing fires nothing";
    });
}

TEST_P(PlayerFire, DoesNotHoldAnotherWeaponsAnnouncementForItsOwn) {
    hold([&] {
        const Weapon& other = weapon.sdlKey == SDLK_a ? ROCKET : LASER;
        ammo() = 0;
        field.*other.emptyShown = true;
        field.*weapon.key = true;
        handle(1);
        EXPECT_TRUE(line().idle);
        EXPECT_EQ(state(), 1);
    });
}

TEST_P(PlayerFire, AnAnnouncementDoesNotStopAWeaponThatHasAmmunition) {
    hold([&] {
        field.*weapon.emptyShown = true;
        ammo() = 1;
        fire();
        EXPECT_EQ(count(), 1u);
        EXPECT_EQ(ammo(), 0);
        EXPECT_TRUE(line().idle);
    });
}

TEST_P(PlayerFire, FiresItsWholeStockAndThenSaysSo) {
    hold([&] {
        const auto pressAndRelease = [&] {
            game.press(weapon.sdlKey);
            game.frame(1);
            game.frame(1);
            game.release(weapon.sdlKey);
            game.frame(1);
            game.frame(1);
        };
        for (int i = 0; i < weapon.ammoAtStart; ++i) {
            EXPECT_FALSE(field.*weapon.emptyShown);
            pressAndRelease();
        }
        EXPECT_EQ(ammo(), 0);
        EXPECT_EQ(count(), static_cast<Uint32>(weapon.ammoAtStart));
        EXPECT_TRUE(field.*weapon.emptyShown) << "told in the frame of the last shot";
        pressAndRelease();
        EXPECT_STREQ(line().textTwo, weapon.emptyText);
        EXPECT_EQ(count(), static_cast<Uint32>(weapon.ammoAtStart));
        EXPECT_EQ(state(), 2);
    });
}

TEST_P(PlayerFire, TakesTheLastSlotAndThenTheFirst) {
    hold([&] {
        count() = 15999999;
        fire();
        EXPECT_EQ(count(), 16000000u);
        EXPECT_TRUE(isActive(15999999));
        EXPECT_EQ(shot(15999999).width, weapon.width);
        fire();
        EXPECT_EQ(count(), 1u);
        EXPECT_TRUE(isActive(0));
    });
}

TEST_P(PlayerFire, StartsItsSlotsAnewAlsoWhenNothingIsFired) {
    hold([&] {
        field.*weapon.max = 3;
        count() = 3;
        handle(0);
        EXPECT_EQ(count(), 0u);
    });
}

TEST_P(PlayerFire, KeepsItsCountUntilEverySlotIsUsed) {
    hold([&] {
        field.*weapon.max = 3;
        count() = 2;
        handle(0);
        EXPECT_EQ(count(), 2u);
        fire();
        EXPECT_EQ(count(), 3u) << "the wrap comes with the next call";
    });
}

TEST_P(PlayerFire, DoesNotFireBeyondItsSlots) {
    hold([&] {
        field.*weapon.max = 3;
        count() = 4;
        field.*weapon.key = true;
        handle(0);
        EXPECT_EQ(count(), 4u);
        EXPECT_EQ(state(), 1);
        EXPECT_EQ(ammo(), weapon.ammoAtStart);
    });
}

TEST_P(PlayerFire, ShotsInHigherSlotsStandStillUntilTheCountPassesThem) {
    hold([&] {
        field.*weapon.max = 3;
        ammo() = 50;
        for (int i = 0; i < 3; ++i) {
            fire();
        }
        MyShot* const oldFirst = &shot(0);
        MyShot* const oldSecond = &shot(1);
        game.takeLog();
        handle(20);
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(game.takeLog({"blit shots"}), Log{}) << "neither drawn";
        EXPECT_EQ(oldFirst->lifeTime, 0u) << "nor moved";
        EXPECT_EQ(age(0), 0u);
        EXPECT_TRUE(isActive(1));

        field.*weapon.key = true;
        handle(20);
        EXPECT_NE(&shot(0), oldFirst) << "a new shot takes the slot without a look at the old one";
        EXPECT_EQ(oldFirst->lifeTime, 0u);
        EXPECT_EQ(&shot(1), oldSecond);
        EXPECT_EQ(oldSecond->lifeTime, 0u);
        count() = 2;
        handle(20);
        EXPECT_EQ(oldSecond->lifeTime, 20u);
    });
}

TEST(PlayerLaser, FliesStraightUp) {
    Game game;
    game.hold([&] {
        game.startPlay();
        game.withoutEnemies();
        game.field.shotState1 = 2;
        game.field.shotKey1 = true;
        game.frame(10);
        const MyShot& shot = *game.field.myFirstShotList[0];
        // 5 * 10 ms * 0.088 a frame
        EXPECT_FLOAT_EQ(shot.yFloat, 389.6f);
        game.frame(10);
        EXPECT_FLOAT_EQ(shot.yFloat, 385.2f);
        EXPECT_EQ(shot.xFloat, 318.0f);
        EXPECT_EQ(game.nameOf(shot.image), "shots/shot01a.png");
    });
}

TEST(PlayerRocket, CarriesTheFourMarksAndSteers) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        game.startPlay();
        game.onlyEnemy(3);
        EnemyShip& enemy = *field.enemyShips[3];
        enemy.canShoot = false;
        enemy.externallySteered = false;
        enemy.xFloat = 100;
        enemy.yFloat = 50;
        enemy.destRect = {100, 50, 39, 39};
        field.frameTime = 10;
        field.shotState2 = 2;
        field.shotKey2 = true;
        game.takeLog();
        field.handleMySecondShot();
        const MyShotRocket& rocket = *field.mySecondShotList[0];
        EXPECT_EQ(game.nameOf(rocket.image), "shots/shot01b.png");
        EXPECT_EQ(game.nameOf(rocket.markerTopLeft), "display/enemyrect_topleft.png");
        EXPECT_EQ(game.nameOf(rocket.markerTopRight), "display/enemyrect_topright.png");
        EXPECT_EQ(game.nameOf(rocket.markerBottomLeft), "display/enemyrect_bottomleft.png");
        EXPECT_EQ(game.nameOf(rocket.markerBottomRight), "display/enemyrect_bottomright.png");
        EXPECT_EQ(game.takeLog({"blit display/enemyrect"}).size(), 4u);
        EXPECT_TRUE(rocket.goingLeft);
        EXPECT_FALSE(rocket.goingRight);
    });
}

TEST(PlayerRocket, DestroysAnEnemyWithOneHit) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        game.startPlay();
        game.onlyEnemy(3);
        EnemyShip& enemy = *field.enemyShips[3];
        enemy.canShoot = false;
        // It waits around the rocket's hit point, 24 pixels below its top.
        enemy.xFloat = 300;
        enemy.yFloat = 430;
        enemy.destRect = {300, 430, 39, 39};
        field.shotState2 = 2;
        field.shotKey2 = true;
        game.takeLog();
        game.frame(10);
        EXPECT_EQ(game.takeLog({"> MyShot hits"}),
                  Log{"> MyShot hits Target 3 widht deathFactor 10 -> target energy = 0"});
        for (int i = 0; i < 60; ++i) {
            game.frame(51);
        }
        EXPECT_EQ(field.enemiesAlive, 0);
    });
}

}  // namespace
