// SPDX-License-Identifier: MIT
#include "fuzz/statemap.h"

#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/myshotrocket.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace fuzz {
namespace {

constexpr unsigned MARKS = 1U << 14;

// libFuzzer reads and clears this section behind each input.
__attribute__((section("__libfuzzer_extra_counters"))) Uint8 marks[MARKS];

constexpr int LASERS = 50;
constexpr int ROCKETS = 3;
constexpr int ENERGY = 65;
constexpr int ENEMY_ENERGY = 10;
constexpr int LARGEST_HIT = 8;

// Steps of a range, ends included; what lies outside counts for the step at that end.
unsigned step(double value, double from, double to, unsigned steps) {
    const double share = (value - from) / (to - from);
    return static_cast<unsigned>(std::clamp(share, 0.0, 0.999) * steps);
}

// A group of marks; each value of the group has one of its own.
class Marks {
public:
    // Sets the mark of a value of the next group, which has `values` of them.
    void set(unsigned value, unsigned values) {
        marks[at + std::min(value, values - 1)] = 1;
        at += values;
    }

private:
    unsigned at = 0;
};

// How far outside of the field a ship was thrown: by powers of 16.
unsigned farOut(const FlyingObject& object) {
    const double far = std::max(std::fabs(static_cast<double>(object.xFloat)),
                                std::fabs(static_cast<double>(object.yFloat)));
    return far < 1024 ? 0 : static_cast<unsigned>(std::min(std::log2(far) / 4, 15.0));
}

unsigned energyStep(int energy) {
    return energy == ENERGY_EXPLODED ? 0 : 1 + step(energy, -8, 66, 10);
}

void markPlayer(Marks& map, const BattleField& field) {
    const MyShip& ship = *field.myShip;
    const unsigned x = step(ship.xFloat, 0, field.width, 12);
    const unsigned y = step(ship.yFloat, 0, field.height, 9);
    map.set(x * 9 + y, 12 * 9);
    map.set(energyStep(ship.energy) * 8 + static_cast<unsigned>(field.enemiesAlive), 11 * 8);
    const unsigned lasers = step(ship.laserAmmo, 0, 51, 6);
    const unsigned rockets = static_cast<unsigned>(ship.rocketAmmo);
    map.set((lasers * 4 + rockets) * 8 + static_cast<unsigned>(field.enemiesAlive), 6 * 4 * 8);
    map.set(ship.explosionFrame, 46);
    const unsigned speeds = (ship.speedLeft > 0 ? 1U : 0) | (ship.speedRight > 0 ? 2U : 0) |
                            (ship.speedUp > 0 ? 4U : 0) | (ship.speedDown > 0 ? 8U : 0);
    map.set(speeds, 16);
    map.set(ship.miniExploding ? 1 + ship.miniExplosionFrame : 0, 8);
}

unsigned shotsFlying(const EnemyShip& enemy) {
    return static_cast<unsigned>(
        std::count(enemy.shotActive, enemy.shotActive + enemy.maxShot, true));
}

void markEnemy(Marks& map, const BattleField& field, const EnemyShip& enemy) {
    const bool isThere = enemy.ownShipTargetList[enemy.ownIndex] != nullptr;
    const unsigned energy =
        enemy.energy == ENERGY_EXPLODED ? 0 : static_cast<unsigned>(std::max(enemy.energy, -1) + 2);
    map.set((energy * 2 + (enemy.externallySteered ? 1 : 0)) * 2 + (isThere ? 1 : 0), 13 * 4);
    const unsigned x = step(enemy.xFloat - field.myShip->xFloat, -320, 320, 6);
    const unsigned y = step(enemy.yFloat - field.myShip->yFloat, -400, 100, 6);
    map.set((x * 6 + y) * 2 + (enemy.externallySteered ? 1 : 0), 72);
    map.set(shotsFlying(enemy) * 6 + enemy.explosionFrame / 8, 10 * 6);
    map.set(farOut(enemy), 16);
}

void markWeapons(Marks& map, const BattleField& field) {
    const auto flying = [](const bool* active, Uint32 count) {
        return static_cast<unsigned>(std::count(active, active + count, true));
    };
    map.set(flying(field.myFirstShotActive, field.myFirstShotCount), 24);
    map.set(flying(field.mySecondShotActive, field.mySecondShotCount), 4);
    map.set(field.shotState1 * 4U + field.shotState2, 16);
    map.set((field.shotKey1 ? 1U : 0) | (field.shotKey2 ? 2U : 0) |
                (field.laserEmptyShown ? 4U : 0) | (field.rocketsEmptyShown ? 8U : 0) |
                (field.energyLowShown ? 16U : 0),
            32);
    for (Uint32 i = 0; i < ROCKETS; ++i) {
        unsigned state = 0;
        if (i < field.mySecondShotCount && field.mySecondShotActive[i]) {
            const MyShotRocket& rocket = *field.mySecondShotList[i];
            state = 1 + static_cast<unsigned>(rocket.targetIndex + 1) * 3 +
                    (rocket.goingLeft ? 1U : 0) + (rocket.goingRight ? 2U : 0);
        }
        map.set(state, 40);
    }
}

void markText(Marks& map, const QELString& line) {
    map.set((line.typed ? 1U : 0) | (line.typing ? 2U : 0) | (line.fading ? 4U : 0) |
                (line.idle ? 8U : 0) | (line.levelTwo >= 0 ? 16U : 0) |
                (line.levelThree >= 0 ? 32U : 0),
            64);
    map.set(static_cast<unsigned>(line.shown), 40);
    map.set(static_cast<unsigned>(line.first), 40);
    map.set(static_cast<unsigned>(line.fadeFrame), 12);
    map.set(static_cast<unsigned>(std::min(line.pauseTicks, 15)), 16);
}

// The frame time by powers of two.
unsigned frameTimeStep(Uint32 ms) {
    unsigned bits = 0;
    for (; ms != 0; ms >>= 1) {
        ++bits;
    }
    return bits;
}

[[noreturn]] void stop(const char* what, double value) {
    std::fprintf(stderr, "no game comes to this: %s is %g\n", what, value);
    std::abort();
}

void checkRange(const char* what, double value, double least, double most) {
    if (!(value >= least && value <= most)) {
        stop(what, value);
    }
}

void checkPlayer(const BattleField& field) {
    const MyShip& ship = *field.myShip;
    checkRange("the player's x", ship.xFloat, ship.maxSpeedLeft,
               static_cast<double>(field.width - ship.width) - ship.maxSpeedRight);
    checkRange("the player's y", ship.yFloat, ship.maxSpeedUp,
               static_cast<double>(field.height - ship.height) - ship.maxSpeedDown);
    if (ship.energy != ENERGY_EXPLODED) {
        checkRange("the player's energy", ship.energy, 1 - LARGEST_HIT - LARGEST_HIT, ENERGY);
    }
    checkRange("laser stock", ship.laserAmmo, 0, LASERS);
    checkRange("rocket stock", ship.rocketAmmo, 0, ROCKETS);
    checkRange("laser shots fired", field.myFirstShotCount, LASERS - ship.laserAmmo,
               LASERS - ship.laserAmmo);
    checkRange("rockets fired", field.mySecondShotCount, ROCKETS - ship.rocketAmmo,
               ROCKETS - ship.rocketAmmo);
    checkRange("the player's explosion", ship.explosionFrame, 0, BattleField::EXPLOSION_FRAMES - 1);
}

void checkEnemies(const BattleField& field) {
    int present = 0;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const EnemyShip& enemy = *field.enemyShips[i];
        present += enemy.ownShipTargetList[enemy.ownIndex] != nullptr ? 1 : 0;
        if (enemy.energy != ENERGY_EXPLODED) {
            checkRange("an enemy's energy", enemy.energy, -ENEMY_ENERGY, ENEMY_ENERGY);
        }
        checkRange("an enemy's place", std::isnan(enemy.xFloat + enemy.yFloat) ? 1 : 0, 0, 0);
        checkRange("an enemy's explosion", enemy.explosionFrame, 0,
                   BattleField::EXPLOSION_FRAMES - 1);
    }
    checkRange("the number of enemies", field.enemiesAlive, present, present);
}

}  // namespace

void markState(const BattleField& field) {
    Marks map;
    map.set(static_cast<unsigned>(field.gamePhase) * 33 + frameTimeStep(field.frameTime), 5 * 33);
    map.set(static_cast<unsigned>(field.display->countDownValue + 1), 8);
    markText(map, *field.titleText);
    markText(map, *field.hintText);
    if (field.gamePhase != BattleField::PHASE_PLAY) {
        return;
    }
    markText(map, *field.messageLine);
    map.set(static_cast<unsigned>(field.formationPhase) * 10 +
                step(field.formationTimer, 0, 1e5, 10),
            30);
    markPlayer(map, field);
    markWeapons(map, field);
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        markEnemy(map, field, *field.enemyShips[i]);
    }
}

void checkState(const BattleField& field) {
    checkRange("the phase", field.gamePhase, BattleField::PHASE_PLAY, BattleField::PHASE_WAIT);
    checkRange("the frame time", field.frameTime, 1, 0xffffffffU);
    if (field.gamePhase == BattleField::PHASE_PLAY) {
        checkEnemies(field);
        checkPlayer(field);
    }
}

}  // namespace fuzz
