// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_MYSHOTROCKET_H
#define KRAVOLTIX_OBJECTS_MYSHOTROCKET_H

#include "objects/myshot.h"

// The player's homing rocket: it drops from the tail, climbs, and steers sideways towards the target
// that was nearest at launch, which it frames with four corner marks. It chooses anew only when that
// target has left the target list. The fire handler drives it like a laser shot. Position and units
// as for every FlyingObject; the marks are not owned.
class MyShotRocket : public MyShot {
public:
    // Chooses its target and tells it on standard output.
    MyShotRocket(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
                 SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside,
                 FlyingObject** targetList, int targetCount, SDL_Surface* topLeft,
                 SDL_Surface* topRight, SDL_Surface* bottomLeft, SDL_Surface* bottomRight);

    // The index of the live target with the smallest sum of horizontal and vertical distance, the
    // first of equals, or NO_TARGET. Names every empty or dead entry on standard output.
    int nearestTargetListIndex();

    // One frame: moves, then steers for the next frame.
    void control();

    // Draws the rocket, and the marks around its target while that is in the list.
    void show();

    static constexpr int NO_TARGET = -1;

    int targetIndex;  // in the target list, or NO_TARGET
    SDL_Surface* markerTopLeft;
    SDL_Surface* markerTopRight;
    SDL_Surface* markerBottomLeft;
    SDL_Surface* markerBottomRight;
    SDL_Rect markerRects[4] = {};  // on the screen: top left, top right, bottom left, bottom right
};

#endif
