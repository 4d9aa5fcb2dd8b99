// SPDX-License-Identifier: MIT
#include "objects/shot.h"

namespace {

constexpr int DEATH_FACTOR = 1;

}  // namespace

Shot::Shot(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
           SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside)
    : FlyingObject(picture, x, y, objectWidth, objectHeight, surface, areaWidth, areaHeight,
                   steeredFromOutside),
      deathFactor(DEATH_FACTOR) {
    goingUp = true;
    speedUp = maxSpeedUp;
}
