// SPDX-License-Identifier: MIT
#include "objects/myship.h"

#include <cstdio>

namespace {

constexpr float MAX_SPEED_HORIZONTAL = 4.0f;
constexpr float MAX_SPEED_VERTICAL = 3.0f;
constexpr int PLAYER_ENERGY = 65;  // the height of the energy bar in pixels
constexpr int MAX_TARGETS = 10;
constexpr int LASER_AMMO = 50;
constexpr int ROCKET_AMMO = 3;

}  // namespace

MyShip::MyShip(SDL_Surface* straightPicture, SDL_Surface* leftPicture, SDL_Surface* rightPicture,
               int x, int y, int objectWidth, int objectHeight, SDL_Surface* surface, int areaWidth,
               int areaHeight, bool steeredFromOutside)
    : Ship(straightPicture, leftPicture, rightPicture, x, y, objectWidth, objectHeight, surface,
           areaWidth, areaHeight, steeredFromOutside),
      maxTargets(MAX_TARGETS),
      shipTargetList(new FlyingObject*[MAX_TARGETS]()),
      laserAmmo(LASER_AMMO),
      rocketAmmo(ROCKET_AMMO) {
    maxSpeedLeft = MAX_SPEED_HORIZONTAL;
    maxSpeedRight = MAX_SPEED_HORIZONTAL;
    maxSpeedUp = MAX_SPEED_VERTICAL;
    maxSpeedDown = MAX_SPEED_VERTICAL;
    energy = PLAYER_ENERGY;
    std::puts("_____________________________________________________________");
    std::puts("MyShip was born:");
    std::puts("================");
    std::printf("MyShip::energy = %i\n", energy);
    std::printf("MyShip::maxTargets = %i\n", maxTargets);
}

// The top speeds double as the margins in pixels that the ship keeps from the edges of the field. At
// the sides it eases off and goes on pressing; at the top and bottom it stops dead. The rectangle
// that is drawn follows with the next move, one frame later.
void MyShip::control() {
    FlyingObject::control();
    if (xFloat <= maxSpeedLeft) {
        xFloat = maxSpeedLeft;
        speedLeft /= 2;
    }
    const float rightLimit = static_cast<float>(fieldWidth - width) - maxSpeedRight;
    if (xFloat >= rightLimit) {
        xFloat = rightLimit;
        speedRight /= 2;
    }
    if (yFloat <= maxSpeedUp) {
        yFloat = maxSpeedUp;
        speedUp = 0;
    }
    const float bottomLimit = static_cast<float>(fieldHeight - height) - maxSpeedDown;
    if (yFloat >= bottomLimit) {
        yFloat = bottomLimit;
        speedDown = 0;
    }
}
