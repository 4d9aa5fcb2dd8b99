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
void changeSpeed(float& speed, bool accelerate, const float& maxSpeed, const float& accel,
                 double braking, const Uint32& dt) {
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

// `towards` is -1.0 for left and up, 1.0 for right and down. False when the position stays.
bool travel(float& position, double towards, float speed, const Uint32& dt, const float& scale) {
    if (!(speed > 0)) {
        return false;
    }
    position = static_cast<float>(position + towards * speed * dt * scale);
    return true;
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

void placeAcross(FlyingObject& object) {
    placeOnAxis(screenCoordinate(object.xFloat), object.width, object.destRect.x,
                object.sourceRect.x, object.sourceRect.w);
}

void placeUpright(FlyingObject& object) {
    placeOnAxis(screenCoordinate(object.yFloat), object.height, object.destRect.y,
                object.sourceRect.y, object.sourceRect.h);
}

// The steps of the four moves, without the picture. False when the position stays.

bool stepLeft(FlyingObject& o, bool accelerate) {
    changeSpeed(o.speedLeft, accelerate, o.maxSpeedLeft, o.accelLeft, BRAKING_HORIZONTAL,
                o.frameDelay);
    return travel(o.xFloat, -1.0, o.speedLeft, o.frameDelay, o.speedScale);
}

bool stepRight(FlyingObject& o, bool accelerate) {
    changeSpeed(o.speedRight, accelerate, o.maxSpeedRight, o.accelRight, BRAKING_HORIZONTAL,
                o.frameDelay);
    return travel(o.xFloat, 1.0, o.speedRight, o.frameDelay, o.speedScale);
}

bool stepUp(FlyingObject& o, bool accelerate) {
    changeSpeed(o.speedUp, accelerate, o.maxSpeedUp, o.accelUp, BRAKING_VERTICAL, o.frameDelay);
    return travel(o.yFloat, -1.0, o.speedUp, o.frameDelay, o.speedScale);
}

bool stepDown(FlyingObject& o, bool accelerate) {
    changeSpeed(o.speedDown, accelerate, o.maxSpeedDown, o.accelDown, BRAKING_VERTICAL,
                o.frameDelay);
    return travel(o.yFloat, 1.0, o.speedDown, o.frameDelay, o.speedScale);
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

// Each move places the picture; the second one of an axis need not when it has moved nothing.
void FlyingObject::control() {
    stepLeft(*this, goingLeft);
    placeAcross(*this);
    if (stepRight(*this, goingRight)) {
        placeAcross(*this);
    }
    stepUp(*this, goingUp);
    placeUpright(*this);
    if (stepDown(*this, goingDown)) {
        placeUpright(*this);
    }
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
    stepLeft(*this, accelerate);
    placeAcross(*this);
}

void FlyingObject::moveRight(bool accelerate) {
    stepRight(*this, accelerate);
    placeAcross(*this);
}

void FlyingObject::moveUp(bool accelerate) {
    stepUp(*this, accelerate);
    placeUpright(*this);
}

void FlyingObject::moveDown(bool accelerate) {
    stepDown(*this, accelerate);
    placeUpright(*this);
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
