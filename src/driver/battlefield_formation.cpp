// SPDX-License-Identifier: MIT
// The script of the one enemy wave, the formation of seven.
#include "driver/battlefield.h"

#include "objects/enemyship.h"
#include "objects/formation7bird.h"

#include <cstdio>

namespace {

constexpr int MOVE_MS = 8000;     // between two moves of the formation
constexpr int SWITCH_MS = 50000;  // between two ships that leave or join it, shared by all ships

constexpr float FREE_SPEED_SCALE = 0.056f;
constexpr float FORMATION_SPEED_SCALE = 0.01f;

// Where the formation goes, phase by phase.
struct Position {
    int x, y;
};
constexpr Position CYCLE[] = {{340, 20}, {20, 40}, {180, 200}};
constexpr int CYCLE_PHASES = 3;

// A timer that is counted down by a frame; wraps at 32 bits, as the clock does.
int countedDown(int timer, Uint32 frameTime) {
    return static_cast<int>(static_cast<Uint32>(timer) - frameTime);
}

void printOccupied(const FlyingObject* entry) {
    std::printf(entry != nullptr ? "T " : "F ");
}

}  // namespace

void BattleField::handleFormationOne() {
    formationTime += frameTime;
    moveFormation();
    if (enemiesAlive < 1) {
        return;
    }
    for (int i = 0; i < ENEMIES; ++i) {
        EnemyShip* enemy = enemyShips[i];
        if (enemy->ownShipTargetList[enemy->ownIndex] == nullptr) {
            continue;
        }
        if (enemy->energy == ENERGY_EXPLODED) {
            removeEnemy(i);
        } else {
            controlEnemy(enemy);
        }
    }
}

// Goes on when all enemies are gone; only the terminal tells then.
void BattleField::moveFormation() {
    if (formationTimer2 < 1) {
        formationTimer2 = MOVE_MS;
        std::puts("--->FormationTimer2");
        if (formationPhase >= 0 && formationPhase < CYCLE_PHASES) {
            formation->setPosition(CYCLE[formationPhase].x, CYCLE[formationPhase].y);
            formationPhase = (formationPhase + 1) % CYCLE_PHASES;
        }
    }
    // Also in the frame of the reset: the interval counts from that frame's start.
    formationTimer2 = countedDown(formationTimer2, frameTime);
}

void BattleField::controlEnemy(EnemyShip* enemy) {
    enemy->setFrameDelay(frameTime);
    if (enemy->explosionFrame < SHIP_GONE_FROM_FRAME) {
        enemy->show();
    }
    enemy->control();
    // One timer for all: every ship counts it down, so the switch comes sooner the more ships live,
    // and falls on the ship at which it runs out.
    formationTimer = countedDown(formationTimer, frameTime);
    if (formationTimer >= 1) {
        return;
    }
    formationTimer = SWITCH_MS;
    std::puts("--->formationTimer");
    enemy->externallySteered = !enemy->externallySteered;
    enemy->speedScale = enemy->externallySteered ? FORMATION_SPEED_SCALE : FREE_SPEED_SCALE;
}

// From now on shots, rockets and the formation no longer see the ship. Its shots in flight stand
// still and are not drawn any more.
void BattleField::removeEnemy(int slot) {
    const EnemyShip* enemy = enemyShips[slot];
    FlyingObject** list = enemy->ownShipTargetList;
    --enemiesAlive;
    list[enemy->ownIndex] = nullptr;
    std::printf("EnemyShip::ownShipTargetList: ");
    // The entries before its own are printed when the ship's number is in the list's range.
    for (int i = 0; i < enemy->ownIndex && slot < enemy->targetCount; ++i) {
        printOccupied(list[i]);
    }
    for (int i = enemy->ownIndex; i < enemy->targetCount; ++i) {
        printOccupied(list[i]);
    }
    std::putchar('\n');
}
