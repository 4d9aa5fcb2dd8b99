// SPDX-License-Identifier: MIT
#include "objects/flyingobject.h"

#include "graphics/animationstep.h"
#include "objects/mixerchannels.h"
#include "objects/truncated.h"

#include <cstdio>

namespace {

constexpr float SPEED_SCALE = 0.088f;
constexpr float MAX_SPEED = 5.0f;
constexpr float ACCEL_HORIZONTAL = 0.008f;
constexpr float ACCEL_VERTICAL = 0.006f;

// Coasting takes speed off by this share of the acceleration: objects slide a little further
// sideways than they climb or fall.
constexpr double BRAKING_HORIZONTAL = 0.88;
constexpr double BRAKING_VERTICAL = 1.0;

constexpr Uint32 LAST_EXPLOSION_FRAME = 45;
constexpr Uint32 MINI_EXPLOSION_FRAMES = 6;
constexpr int EXPLOSION_OFFSET_PX = 22;  // left of and above the object

// A timer that has run starts again at 1, since 0 means that nothing has begun.
constexpr Uint32 TIMER_RUNNING = 1;

// Every step is computed in double precision and stored as float.
void changeSpeed(float& speed, bool accelerate, float maxSpeed, float accel, double braking,
                 Uint32 dt) {
    if (accelerate) {
        // The last step may overshoot the maximum; the speed just stops growing there.
        if (speed < maxSpeed) {
            speed = static_cast<float>(speed + static_cast<double>(dt) * accel);
        }
    } else if (speed <= 0) {
        speed = 0;
    } else {
        speed = static_cast<float>(speed - braking * dt * accel);
    }
}

// `towards` is -1.0 for left and up, 1.0 for right and down.
void travel(float& position, double towards, float speed, Uint32 dt, float scale) {
    if (speed > 0) {
        position = static_cast<float>(position + towards * speed * dt * scale);
    }
}

Sint16 screenCoordinate(float position) {
    return static_cast<Sint16>(truncated(position));
}

// One axis of a picture whose edge stands at `p`. Beyond the left or top edge of the screen the
// picture's hidden part is cut off and the destination keeps its last value; the part that is left
// is given as long as picture and overhang together, and SDL clips it.
void placeOnAxis(int p, int size, Sint16& dest, Sint16& source, Uint16& extent) {
    if (p >= 0) {
        dest = static_cast<Sint16>(p);
        source = 0;
        extent = static_cast<Uint16>(size);
    } else {
        source = static_cast<Sint16>(-p);
        extent = static_cast<Uint16>(size - p);
    }
}

}  // namespace

FlyingObject::FlyingObject(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
                           SDL_Surface* surface, int areaWidth, int areaHeight,
                           bool steeredFromOutside)
    : image(picture),
      fieldWidth(areaWidth),
      fieldHeight(areaHeight),
      destRect{static_cast<Sint16>(x), static_cast<Sint16>(y), static_cast<Uint16>(objectWidth),
               static_cast<Uint16>(objectHeight)},
      sourceRect{0, 0, static_cast<Uint16>(objectWidth), static_cast<Uint16>(objectHeight)},
      xFloat(static_cast<float>(x)),
      yFloat(static_cast<float>(y)),
      width(objectWidth),
      height(objectHeight),
      externallySteered(steeredFromOutside),
      speedScale(SPEED_SCALE),
      maxSpeedLeft(MAX_SPEED),
      maxSpeedRight(MAX_SPEED),
      maxSpeedUp(MAX_SPEED),
      maxSpeedDown(MAX_SPEED),
      accelLeft(ACCEL_HORIZONTAL),
      accelRight(ACCEL_HORIZONTAL),
      accelUp(ACCEL_VERTICAL),
      accelDown(ACCEL_VERTICAL),
      screen(surface) {
    // Cuts the picture at once when the object starts above the screen.
    moveUp(false);
}

FlyingObject::~FlyingObject() {}

void FlyingObject::control() {
    moveLeft(goingLeft);
    moveRight(goingRight);
    moveUp(goingUp);
    moveDown(goingDown);
    if (miniExploding) {
        miniExplode();
    }
}

void FlyingObject::setFrameDelay(unsigned int ms) {
    lifeTime += ms;
    frameDelay = ms;
}

int FlyingObject::show() {
    return SDL_BlitSurface(image, &sourceRect, screen, &destRect);
}

void FlyingObject::moveLeft(bool accelerate) {
    changeSpeed(speedLeft, accelerate, maxSpeedLeft, accelLeft, BRAKING_HORIZONTAL, frameDelay);
    travel(xFloat, -1.0, speedLeft, frameDelay, speedScale);
    placeOnAxis(screenCoordinate(xFloat), width, destRect.x, sourceRect.x, sourceRect.w);
}

void FlyingObject::moveRight(bool accelerate) {
    changeSpeed(speedRight, accelerate, maxSpeedRight, accelRight, BRAKING_HORIZONTAL, frameDelay);
    travel(xFloat, 1.0, speedRight, frameDelay, speedScale);
    placeOnAxis(screenCoordinate(xFloat), width, destRect.x, sourceRect.x, sourceRect.w);
}

void FlyingObject::moveUp(bool accelerate) {
    changeSpeed(speedUp, accelerate, maxSpeedUp, accelUp, BRAKING_VERTICAL, frameDelay);
    travel(yFloat, -1.0, speedUp, frameDelay, speedScale);
    placeOnAxis(screenCoordinate(yFloat), height, destRect.y, sourceRect.y, sourceRect.h);
}

void FlyingObject::moveDown(bool accelerate) {
    changeSpeed(speedDown, accelerate, maxSpeedDown, accelDown, BRAKING_VERTICAL, frameDelay);
    travel(yFloat, 1.0, speedDown, frameDelay, speedScale);
    placeOnAxis(screenCoordinate(yFloat), height, destRect.y, sourceRect.y, sourceRect.h);
}

void FlyingObject::setEnergyRelative(int delta) {
    energy += delta;
}

void FlyingObject::setGoingLeft(bool going) {
    goingLeft = going;
}

void FlyingObject::setGoingRight(bool going) {
    goingRight = going;
}

void FlyingObject::setGoingUp(bool going) {
    goingUp = going;
}

void FlyingObject::setGoingDown(bool going) {
    goingDown = going;
}

void FlyingObject::setExplosion(SDL_Surface** frames, int frameWidth, int frameHeight) {
    explosionFrames = frames;
    explosionWidth = frameWidth;
    explosionHeight = frameHeight;
}

void FlyingObject::setMiniExplosion(SDL_Surface** frames, int frameWidth, int frameHeight) {
    miniExplosionFrames = frames;
    miniExplosionRect.w = static_cast<Uint16>(frameWidth);
    miniExplosionRect.h = static_cast<Uint16>(frameHeight);
}

void FlyingObject::setMiniExplosionPosition(int x, int y) {
    miniExplosionFrame = 0;
    miniExplosionTimer = 0;
    miniExplosionRect.x = static_cast<Sint16>(x);
    miniExplosionRect.y = static_cast<Sint16>(y);
}

void FlyingObject::explode() {
    if (explosionTimer == 0) {
        std::puts("FlyingObject->explode()");
        Mix_PlayChannelTimed(CHANNEL_EXPLOSION, explosionSound, PLAY_ONCE, NO_TIME_LIMIT);
    }
    explosionTimer += frameDelay;
    if (explosionTimer > ANIMATION_STEP_MS) {
        explosionTimer = TIMER_RUNNING;
        if (explosionFrame < LAST_EXPLOSION_FRAME) {
            ++explosionFrame;
        }
        if (explosionFrame == LAST_EXPLOSION_FRAME) {
            energy = ENERGY_EXPLODED;
        }
    }
    placeExplosion();
    SDL_BlitSurface(explosionFrames[explosionFrame], &explosionSourceRect, screen,
                    &explosionDestRect);
}

void FlyingObject::placeExplosion() {
    placeOnAxis(screenCoordinate(xFloat) - EXPLOSION_OFFSET_PX, explosionWidth, explosionDestRect.x,
                explosionSourceRect.x, explosionSourceRect.w);
    placeOnAxis(screenCoordinate(yFloat) - EXPLOSION_OFFSET_PX, explosionHeight,
                explosionDestRect.y, explosionSourceRect.y, explosionSourceRect.h);
}

void FlyingObject::miniExplode() {
    if (miniExplosionTimer == 0) {
        Mix_PlayChannelTimed(CHANNEL_MINI_EXPLOSION, miniExplosionSound, PLAY_ONCE, NO_TIME_LIMIT);
    }
    miniExplosionTimer += frameDelay;
    if (miniExplosionTimer > ANIMATION_STEP_MS) {
        miniExplosionTimer = TIMER_RUNNING;
        if (miniExplosionFrame < MINI_EXPLOSION_FRAMES) {
            ++miniExplosionFrame;
        }
        // The end rewinds to the first picture, which is drawn once more: a last spark.
        if (miniExplosionFrame == MINI_EXPLOSION_FRAMES) {
            miniExploding = false;
            miniExplosionTimer = 0;
            miniExplosionFrame = 0;
        }
    }
    SDL_BlitSurface(miniExplosionFrames[miniExplosionFrame], nullptr, screen, &miniExplosionRect);
}

float FlyingObject::getXFloat() {
    return xFloat;
}

float FlyingObject::getYFloat() {
    return yFloat;
}

bool FlyingObject::isInRect(int px, int py) {
    return px > destRect.x && px < destRect.x + destRect.w && py > destRect.y &&
           py < destRect.y + destRect.h;
}
