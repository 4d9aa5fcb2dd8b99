// SPDX-License-Identifier: MIT
#include "objects/enemyship.h"

#include "objects/myship.h"
#include "objects/shot.h"
#include "objects/truncated.h"

#include <SDL_image.h>

#include <cstdio>

namespace {

constexpr int ENEMY_ENERGY = 10;
constexpr float SPEED_SCALE = 0.01f;  // about a ninth of the player's pace
constexpr double MAX_SPEED_FACTOR = 0.8;
constexpr double MAX_SPEED_DOWN_FACTOR = 0.1;
constexpr double ACCEL_SIDE_FACTOR = 0.5;

// a shot
constexpr int SHOT_X = 14;  // the muzzle, from the ship's corner
constexpr int SHOT_Y = 30;
constexpr int SHOT_WIDTH_PX = 11;
constexpr int SHOT_HEIGHT_PX = 8;
constexpr int SHOT_DEATH_FACTOR = 8;  // eight hits leave the player 1 point, the ninth destroys
constexpr float SHOT_SPEED = 2.0f;
// Distances of shots go by the field's width: on the wide field they stay in flight a while below
// the bottom edge, and the chain is as dense as the field is wide.
constexpr int SHOT_RANGE_BEYOND_WIDTH_PX = 100;

// hit test, in pixels
constexpr float SHOT_CENTRE = 6.0f;        // centre line, from the shot's left edge
constexpr float DEPTH_BEFORE_HIT = 18.0f;  // a shot slides this far over the player's ship
constexpr float MARGIN_BELOW_HIT = 16.0f;

// The flash on the player's ship follows its slanted edge: high near the axis, low at the wings.
constexpr float INNER_BAND = 15.0f;  // pixels inside both sides
constexpr float OUTER_BAND = 10.0f;
constexpr int FLASH_LEFT_OF_SHOT = 3;
constexpr int FLASH_ABOVE_SHOT_INNER = 20;
constexpr int FLASH_ABOVE_SHOT_OUTER = 14;

// own steering: the band that the ship keeps above the player, in pixels
constexpr float BAND_SIDE = 10.0f;
constexpr float BAND_NEAR = 40.0f;
constexpr float BAND_FAR = 60.0f;

bool hits(const Shot& shot, const MyShip& target) {
    const float centre = shot.xFloat + SHOT_CENTRE;
    const float right = target.xFloat + static_cast<float>(target.width);
    const float bottom = target.yFloat + static_cast<float>(target.height);
    return centre > target.xFloat && right > centre &&
           shot.yFloat - DEPTH_BEFORE_HIT > target.yFloat &&
           bottom - MARGIN_BELOW_HIT > shot.yFloat - MARGIN_BELOW_HIT && target.energy >= 0;
}

bool isInside(const Shot& shot, const MyShip& target, float band) {
    const float centre = shot.xFloat + SHOT_CENTRE;
    return centre > target.xFloat + band &&
           target.xFloat + static_cast<float>(target.width) - band > centre;
}

int flashAboveShot(const Shot& shot, const MyShip& target) {
    if (isInside(shot, target, INNER_BAND)) {
        return FLASH_ABOVE_SHOT_INNER;
    }
    return isInside(shot, target, OUTER_BAND) ? FLASH_ABOVE_SHOT_OUTER : 0;
}

void hit(Shot& shot, MyShip& target) {
    target.miniExploding = true;
    target.energy -= shot.deathFactor;
    target.setMiniExplosionPosition(truncated(shot.xFloat) - FLASH_LEFT_OF_SHOT,
                                    truncated(shot.yFloat) - flashAboveShot(shot, target));
    // The shot flies on, unseen and harmless, and keeps its slot until it is past its limit.
    shot.active = false;
}

}  // namespace

EnemyShip::EnemyShip(SDL_Surface* straightPicture, SDL_Surface* leftPicture,
                     SDL_Surface* rightPicture, int x, int y, int objectWidth, int objectHeight,
                     SDL_Surface* surface, int areaWidth, int areaHeight, int shotSlots,
                     bool steeredFromOutside, FlyingObject** targetList, int targetListSize)
    : Ship(straightPicture, leftPicture, rightPicture, x, y, objectWidth, objectHeight, surface,
           areaWidth, areaHeight, steeredFromOutside),
      targetCount(targetListSize),
      ownShipTargetList(targetList),
      maxShot(shotSlots) {
    energy = ENEMY_ENERGY;
    speedScale = SPEED_SCALE;
    maxSpeedUp = static_cast<float>(maxSpeedUp * MAX_SPEED_FACTOR);
    maxSpeedDown = static_cast<float>(maxSpeedDown * MAX_SPEED_DOWN_FACTOR);
    maxSpeedLeft = static_cast<float>(maxSpeedLeft * MAX_SPEED_FACTOR);
    maxSpeedRight = static_cast<float>(maxSpeedRight * MAX_SPEED_FACTOR);
    accelLeft = static_cast<float>(accelLeft * ACCEL_SIDE_FACTOR);
    accelRight = static_cast<float>(accelRight * ACCEL_SIDE_FACTOR);
    std::puts("_____________________________________________________________");
    std::puts("enemyShip was born:");
    std::puts("===================");
    std::printf("enemyShip->energy = %i\n", energy);
    for (int i = 0; i < targetCount; ++i) {
        if (ownShipTargetList[i] == nullptr) {
            ownShipTargetList[i] = this;
            ownIndex = i;
            break;
        }
    }
    printTargetList();
}

EnemyShip::~EnemyShip() {
    std::puts("EnemyShip died");
    std::puts("##############");
}

// T for a taken slot, F for a free one, and this ship's own slot as its number.
void EnemyShip::printTargetList() {
    std::printf("EnemyShip::ownShipTargetList: ");
    for (int i = 0; i < ownIndex && i < targetCount; ++i) {
        std::printf(ownShipTargetList[i] != nullptr ? "T " : "F ");
    }
    std::printf("%i ", ownIndex);
    for (int i = ownIndex + 1; i < targetCount; ++i) {
        std::printf(ownShipTargetList[i] != nullptr ? "T " : "F ");
    }
    std::putchar('\n');
}

void EnemyShip::setTarget(MyShip* ship) {
    target = ship;
}

void EnemyShip::setMaxShot(int slots) {
    maxShot = slots;
    shotImage = IMG_Load("shots/e_shot01c.png");
    canShoot = true;
    const size_t count = static_cast<size_t>(slots);
    shots = new Shot*[count];
    shotActive = new bool[count];
    shotLimitY = new int[count];
    nextShotY = new int[count];
    shotReady = new bool[count];
    for (int i = 0; i < maxShot; ++i) {
        shotActive[i] = false;
        shotReady[i] = false;
    }
    shotReady[0] = true;
}

void EnemyShip::shot() {
    for (int i = 0; i < maxShot; ++i) {
        if (!shotReady[i]) {
            continue;
        }
        if (!shotActive[i]) {
            fire(i);
        }
        // Before the next slot is looked at: a slot that becomes ready here fires in this call.
        makeNextReady(i);
    }
}

void EnemyShip::fire(int slot) {
    shotActive[slot] = true;
    Shot* newShot = new Shot(shotImage, truncated(xFloat) + SHOT_X, truncated(yFloat) + SHOT_Y,
                             SHOT_WIDTH_PX, SHOT_HEIGHT_PX, screen, fieldWidth, fieldHeight, false);
    shots[slot] = newShot;
    newShot->deathFactor = SHOT_DEATH_FACTOR;
    newShot->speedDown = SHOT_SPEED;
    newShot->maxSpeedDown = SHOT_SPEED;
    newShot->goingUp = false;
    newShot->goingDown = true;
    newShot->speedUp = 0;
    // A shot from two thousand million pixels below the field has limits that no int holds; they wrap
    // around, and the shot is gone in the next frame.
    const Uint32 y = static_cast<Uint32>(truncated(newShot->yFloat));
    const int range = fieldWidth + SHOT_RANGE_BEYOND_WIDTH_PX;
    shotLimitY[slot] = static_cast<int>(y + static_cast<Uint32>(range));
    nextShotY[slot] = static_cast<int>(y + static_cast<Uint32>(range / maxShot));
}

void EnemyShip::makeNextReady(int slot) {
    const float& y = shots[slot]->yFloat;
    if (slot < maxShot - 1) {
        if (!shotActive[slot + 1] && y > static_cast<float>(nextShotY[slot])) {
            shotReady[slot + 1] = true;
        }
        return;
    }
    // The last slot goes by its share of the absolute limit, so the chain starts anew early when the
    // ship flies low. With a single slot this never holds: one shot in a life.
    const int restartY = shotLimitY[slot] / maxShot;
    if (y > static_cast<float>(restartY) && !shotActive[0]) {
        shotReady[0] = true;
    }
}

void EnemyShip::shotControl() {
    for (int i = 0; i < maxShot; ++i) {
        if (!shotActive[i]) {
            continue;
        }
        Shot* flying = shots[i];
        flying->setFrameDelay(frameDelay);
        flying->control();
        if (flying->active) {
            flying->show();
            if (hits(*flying, *target)) {
                hit(*flying, *target);
            }
        }
        if (flying->yFloat > static_cast<float>(shotLimitY[i])) {
            shotActive[i] = false;
            shotReady[i] = false;
            flying->~Shot();
        }
    }
}

void EnemyShip::control() {
    FlyingObject::control();
    shotControl();
    if (canShoot && energy >= 1) {
        shot();
    }
    if (!externallySteered) {
        if (energy <= 0) {
            explode();
            return;
        }
        hoverAboveTarget();
    }
    if (energy <= 0) {
        explode();
    }
}

// Sets the flags for the next frame's movement.
void EnemyShip::hoverAboveTarget() {
    const float tx = target->getXFloat();
    const float ty = target->getYFloat();
    goingLeft = xFloat - BAND_SIDE > tx;
    goingRight = !goingLeft && tx > xFloat + BAND_SIDE;
    goingUp = yFloat + BAND_NEAR > ty;
    goingDown = !goingUp && ty > yFloat + BAND_FAR;
}
