// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_MYSHIP_H
#define KRAVOLTIX_OBJECTS_MYSHIP_H

#include "objects/ship.h"

// The player's ship: 65 points of energy, two stocks of ammunition, and the target list that enemies
// enter themselves into and that all the player's shots share by pointer. The battlefield drives it
// once a frame. Position and units as for every FlyingObject; it owns the target list, which lives
// as long as the process.
class MyShip : public Ship {
public:
    // Says on standard output that it was born.
    MyShip(SDL_Surface* straightPicture, SDL_Surface* leftPicture, SDL_Surface* rightPicture, int x,
           int y, int objectWidth, int objectHeight, SDL_Surface* surface, int areaWidth,
           int areaHeight, bool steeredFromOutside);

    // One frame: moves by the direction flags and stays inside the field.
    void control();

    int maxTargets;                 // entries of the target list
    FlyingObject** shipTargetList;  // null marks a free slot
    int laserAmmo;
    int rocketAmmo;
};

#endif
