// SPDX-License-Identifier: MIT
// The player's two weapons: one shot for each press of a key, from limited stocks.
#include "driver/battlefield.h"

#include "graphics/qelstring.h"
#include "objects/mixerchannels.h"
#include "objects/myship.h"
#include "objects/myshot.h"
#include "objects/myshotrocket.h"
#include "objects/truncated.h"

namespace {

// Where a shot starts, from the corner of the player's ship, and its size, in pixels.
struct Muzzle {
    int x, y;
    int width, height;
};

constexpr Muzzle LASER = {18, -6, 3, 11};   // before the nose
constexpr Muzzle ROCKET = {15, 26, 9, 15};  // at the tail

constexpr int MESSAGE_LEVEL = 1;

// In this order: a key fires only after it has once been seen released, so one that is held when
// play starts does not.
void stepTrigger(bool keyHeld, Uint8& state) {
    if (keyHeld && state == BattleField::TRIGGER_ARMED) {
        state = BattleField::TRIGGER_REQUESTED;
    }
    if (state == BattleField::TRIGGER_FIRED && !keyHeld) {
        state = BattleField::TRIGGER_ARMED;
    }
}

}  // namespace

void BattleField::handleMyFirstShot() {
    stepTrigger(shotKey1, shotState1);
    if (myFirstShotCount == myFirstShotMax) {
        myFirstShotCount = 0;
    }
    if (myShip->laserAmmo < 1) {
        // A press waits until the frame has announced the empty stock, then it is used up.
        if (laserEmptyShown && shotState1 == TRIGGER_REQUESTED) {
            messageLine->setNewString(textLaserEmptyShort, MESSAGE_LEVEL);
            shotState1 = TRIGGER_FIRED;
        }
    } else if (shotState1 == TRIGGER_REQUESTED && myFirstShotCount < myFirstShotMax) {
        fireLaser();
    }
    moveLaserShots();
}

void BattleField::fireLaser() {
    myFirstShotList[myFirstShotCount] =
        new MyShot(laserShotImage, truncated(myShip->xFloat) + LASER.x,
                   truncated(myShip->yFloat) + LASER.y, LASER.width, LASER.height, screen, width,
                   height, false, myShip->shipTargetList, myShip->maxTargets);
    myFirstShotActive[myFirstShotCount] = true;
    myFirstShotAge[myFirstShotCount] = 0;
    ++myFirstShotCount;
    shotState1 = TRIGGER_FIRED;
    Mix_PlayChannelTimed(CHANNEL_FRONT, soundShot1, PLAY_ONCE, NO_TIME_LIMIT);
    --myShip->laserAmmo;
}

// A shot is drawn where it was, then moved and tested. One that is too old goes without a test.
void BattleField::moveLaserShots() {
    for (Uint32 i = 0; i < myFirstShotCount; ++i) {
        if (!myFirstShotActive[i]) {
            continue;
        }
        MyShot* shot = myFirstShotList[i];
        myFirstShotAge[i] += frameTime;
        shot->setFrameDelay(frameTime);
        shot->show();
        shot->control();
        if (myFirstShotAge[i] > myFirstShotLifetime || shot->hittingTarget(true)) {
            shot->~MyShot();
            myFirstShotActive[i] = false;
            myFirstShotAge[i] = 0;
        }
    }
}

void BattleField::handleMySecondShot() {
    stepTrigger(shotKey2, shotState2);
    if (mySecondShotCount == mySecondShotMax) {
        mySecondShotCount = 0;
    }
    if (myShip->rocketAmmo < 1) {
        if (rocketsEmptyShown && shotState2 == TRIGGER_REQUESTED) {
            messageLine->setNewString(textNoRockets, MESSAGE_LEVEL);
            shotState2 = TRIGGER_FIRED;
        }
    } else if (shotState2 == TRIGGER_REQUESTED && mySecondShotCount < mySecondShotMax) {
        fireRocket();
    }
    moveRockets();
}

void BattleField::fireRocket() {
    mySecondShotList[mySecondShotCount] = new MyShotRocket(
        rocketShotImage, truncated(myShip->xFloat) + ROCKET.x, truncated(myShip->yFloat) + ROCKET.y,
        ROCKET.width, ROCKET.height, screen, width, height, false, myShip->shipTargetList,
        myShip->maxTargets, enemyRectTopLeft, enemyRectTopRight, enemyRectBottomLeft,
        enemyRectBottomRight);
    mySecondShotActive[mySecondShotCount] = true;
    mySecondShotAge[mySecondShotCount] = 0;
    ++mySecondShotCount;
    shotState2 = TRIGGER_FIRED;
    Mix_PlayChannelTimed(CHANNEL_ROCKET, soundShot2, PLAY_ONCE, NO_TIME_LIMIT);
    --myShip->rocketAmmo;
}

// A rocket's hit starts no flash on its target: the explosion that follows is enough.
void BattleField::moveRockets() {
    for (Uint32 i = 0; i < mySecondShotCount; ++i) {
        if (!mySecondShotActive[i]) {
            continue;
        }
        MyShotRocket* rocket = mySecondShotList[i];
        mySecondShotAge[i] += frameTime;
        rocket->setFrameDelay(frameTime);
        rocket->show();
        rocket->control();
        if (mySecondShotAge[i] > mySecondShotLifetime || rocket->hittingTarget(false)) {
            rocket->~MyShotRocket();
            mySecondShotActive[i] = false;
            mySecondShotAge[i] = 0;
        }
    }
}
