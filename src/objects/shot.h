// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_SHOT_H
#define KRAVOLTIX_OBJECTS_SHOT_H

#include "objects/flyingobject.h"

// The base of every projectile: a flying object that starts upward at full speed. Position, units,
// owner and driver as for every FlyingObject.
class Shot : public FlyingObject {
public:
    Shot(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
         SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside);

    int deathFactor;  // energy that a hit takes from its target
};

#endif
