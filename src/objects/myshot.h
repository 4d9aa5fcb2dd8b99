// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_MYSHOT_H
#define KRAVOLTIX_OBJECTS_MYSHOT_H

#include "objects/shot.h"

// The player's laser shot, and the base of the rocket. The fire handler drives it once a frame:
// setFrameDelay(), show(), control(), hittingTarget(). Position and units as for every FlyingObject.
// The target list is the player's ship's own array, not a copy: a shot in flight sees every target
// that comes or goes.
class MyShot : public Shot {
public:
    MyShot(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
           SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside,
           FlyingObject** targetList, int targetCount);

    // Tests the live targets in the order of the list; the first one whose rectangle holds the hit
    // point loses `deathFactor` energy and gets its mini explosion placed, and started if wished. A
    // line on standard output tells the hit. True when a target was hit; retiring the shot is the
    // caller's.
    bool hittingTarget(bool startMiniExplosion);

    int maxTargets;  // entries of the target list
    FlyingObject** shipTargetList;
};

#endif
