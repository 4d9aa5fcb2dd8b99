// SPDX-License-Identifier: MIT
// What the keys and the window do. Keys only set flags: movement and fire follow in the next frame.
#include "driver/battlefield.h"

#include "graphics/qelstring.h"
#include "objects/mixerchannels.h"
#include "objects/myship.h"

void BattleField::eventHandler() {
    while (SDL_PollEvent(&event) != 0) {
        switch (event.type) {
        case SDL_KEYDOWN:
            keyPressed(event.key.keysym.sym);
            break;
        case SDL_KEYUP:
            keyReleased(event.key.keysym.sym);
            break;
        case SDL_QUIT:
            quit = true;
            break;
        default:
            break;
        }
    }
}

void BattleField::setShotKey1(bool held) {
    shotKey1 = held;
}

void BattleField::setShotKey2(bool held) {
    shotKey2 = held;
}

// Steering and fire keys count in every phase: one that is held through the intro is still held
// when play starts.
void BattleField::keyPressed(SDLKey key) {
    switch (key) {
    case SDLK_RETURN:
        if (!introDone) {
            playKeyboardSound();
            titleText->setType(QELString::TYPE_LEAVES);
            hintText->setType(QELString::TYPE_LEAVES);
        }
        break;
    case SDLK_ESCAPE:
        playKeyboardSound();
        quit = true;
        break;
    case SDLK_a:
        setShotKey1(true);
        break;
    case SDLK_s:
        setShotKey2(true);
        break;
    case SDLK_UP:
        myShip->setGoingUp(true);
        break;
    case SDLK_DOWN:
        myShip->setGoingDown(true);
        break;
    case SDLK_RIGHT:
        myShip->setGoingRight(true);
        break;
    case SDLK_LEFT:
        myShip->setGoingLeft(true);
        break;
    default:
        break;
    }
}

void BattleField::keyReleased(SDLKey key) {
    switch (key) {
    case SDLK_a:
        setShotKey1(false);
        break;
    case SDLK_s:
        setShotKey2(false);
        break;
    case SDLK_UP:
        myShip->setGoingUp(false);
        break;
    case SDLK_DOWN:
        myShip->setGoingDown(false);
        break;
    case SDLK_RIGHT:
        myShip->setGoingRight(false);
        break;
    case SDLK_LEFT:
        myShip->setGoingLeft(false);
        break;
    default:
        break;
    }
}

void BattleField::playKeyboardSound() {
    Mix_PlayChannelTimed(CHANNEL_FRONT, soundKeyboard, PLAY_ONCE, NO_TIME_LIMIT);
}
