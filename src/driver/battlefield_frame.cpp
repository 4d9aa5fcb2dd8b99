// SPDX-License-Identifier: MIT
// One frame of the game: the order in which things are drawn and advanced.
#include "driver/battlefield.h"

#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "graphics/stars.h"
#include "objects/formation7bird.h"
#include "objects/mixerchannels.h"
#include "objects/myship.h"

#include <cstdio>

namespace {

constexpr Uint32 TITLE_AFTER_MS = 3000;  // on SDL's clock, so slow loading shortens the wait

constexpr int LOW_ENERGY = 19;
constexpr int MESSAGE_LEVEL = 1;

constexpr int WEAPON_COUNTER_X = 19;
constexpr int ROCKET_COUNTER_Y = 433;
constexpr int LASER_COUNTER_Y = 472;

}  // namespace

void BattleField::animate() {
    stars->show(frameTime, Stars::DIRECTION_DOWN);  // clears the screen
    advancePhase();
    myShip->setFrameDelay(frameTime);
    drawPlayer();
    drawStatus();
    giveMessages();
    // After the display: the player's explosion lies over everything.
    checkPlayerExplosion();
    SDL_Flip(screen);
}

// Each phase is tested on what the one before it left, so that several may pass in one frame. Only
// the countdown's last frame does not play already.
void BattleField::advancePhase() {
    if (gamePhase == PHASE_WAIT && SDL_GetTicks() > TITLE_AFTER_MS) {
        gamePhase = PHASE_TITLE;
    }
    if (gamePhase == PHASE_TITLE && titleText->showString(frameTime) == 1) {
        gamePhase = PHASE_HINT;
    }
    if (gamePhase == PHASE_HINT) {
        const int hintStands = hintText->showString(frameTime);
        const int titleStands = titleText->showString(frameTime);
        if (hintStands == 0 && titleStands == 0) {
            Mix_PlayChannelTimed(CHANNEL_FRONT, soundIntro, PLAY_ONCE, NO_TIME_LIMIT);
            gamePhase = PHASE_COUNT_DOWN;
            introDone = true;
        }
    }
    if (gamePhase == PHASE_COUNT_DOWN) {
        if (display->showCountDown(frameTime)) {
            gamePhase = PHASE_PLAY;
        }
    } else if (gamePhase == PHASE_PLAY) {
        handleFormationOne();
        formation->control();
        handleMyFirstShot();
        handleMySecondShot();
    }
}

void BattleField::drawPlayer() {
    const bool onField = gamePhase == PHASE_COUNT_DOWN || gamePhase == PHASE_PLAY;
    if (onField && myShip->explosionFrame < SHIP_GONE_FROM_FRAME) {
        myShip->show();
    }
}

void BattleField::drawStatus() {
    if (gamePhase != PHASE_PLAY) {
        return;
    }
    myShip->control();
    messageLine->showString(frameTime);
    display->showFps(frameTime);
    display->showFirstShotA();
    display->showSecondShotA();
    display->showEnergy(myShip->energy);
    display->showShotNumberMini(WEAPON_COUNTER_X, ROCKET_COUNTER_Y, myShip->rocketAmmo);
    display->showShotNumberMini(WEAPON_COUNTER_X, LASER_COUNTER_Y, myShip->laserAmmo);
}

// Each message is given once in a game.
void BattleField::giveMessages() {
    if (myShip->energy <= LOW_ENERGY && !energyLowShown) {
        messageLine->setNewString(textEnergyLow, MESSAGE_LEVEL);
        energyLowShown = true;
    }
    if (myShip->laserAmmo == 0 && !laserEmptyShown) {
        messageLine->setNewString(textLaserEmpty, MESSAGE_LEVEL);
        laserEmptyShown = true;
    }
    if (myShip->rocketAmmo == 0 && !rocketsEmptyShown) {
        messageLine->setNewString(textNoMoreRockets, MESSAGE_LEVEL);
        rocketsEmptyShown = true;
    }
}

void BattleField::checkPlayerExplosion() {
    if (myShip->energy <= 0) {
        myShip->explode();
    }
    if (myShip->energy == ENERGY_EXPLODED) {
        quit = true;
        std::puts("\nGood Bye World!");
        std::puts("---------------");
    }
}
