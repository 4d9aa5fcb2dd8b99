// SPDX-License-Identifier: MIT
#include "objects/ship.h"

namespace {

constexpr int SHIP_ENERGY = 10;

}  // namespace

Ship::Ship(SDL_Surface* straightPicture, SDL_Surface* leftPicture, SDL_Surface* rightPicture, int x,
           int y, int objectWidth, int objectHeight, SDL_Surface* surface, int areaWidth,
           int areaHeight, bool steeredFromOutside)
    : FlyingObject(straightPicture, x, y, objectWidth, objectHeight, surface, areaWidth, areaHeight,
                   steeredFromOutside),
      leftImage(leftPicture),
      rightImage(rightPicture) {
    energy = SHIP_ENERGY;
}

int Ship::show() {
    SDL_Surface* picture = image;
    if (goingLeft) {
        picture = leftImage;
    } else if (goingRight) {
        picture = rightImage;
    }
    return SDL_BlitSurface(picture, &sourceRect, screen, &destRect);
}
