// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_SHIP_H
#define KRAVOLTIX_OBJECTS_SHIP_H

#include "objects/flyingobject.h"

// A flying object with three pictures, chosen by its direction flags, and 10 points of energy.
// Position, units, owner and driver as for every FlyingObject; the pictures are not owned.
class Ship : public FlyingObject {
public:
    Ship(SDL_Surface* straightPicture, SDL_Surface* leftPicture, SDL_Surface* rightPicture, int x,
         int y, int objectWidth, int objectHeight, SDL_Surface* surface, int areaWidth,
         int areaHeight, bool steeredFromOutside);

    // Draws the ship banking into the direction that it accelerates to; left goes before right when
    // both are wished. Returns SDL's result.
    int show();

    SDL_Surface* leftImage;
    SDL_Surface* rightImage;
};

#endif
