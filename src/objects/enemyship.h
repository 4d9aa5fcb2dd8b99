// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_ENEMYSHIP_H
#define KRAVOLTIX_OBJECTS_ENEMYSHIP_H

#include "objects/ship.h"

class MyShip;
class Shot;

// An enemy: a ship that enters itself into the player's target list, drops chains of slow shots and
// tests them against the player itself. Unless a formation steers it, it hovers just above the
// player. The formation script drives it once a frame: setFrameDelay(), Ship::show(), control().
//
// A shot slot goes through: idle -> ready -> shot flying -> [has hit: flies on unseen] -> removed
// past its limit, idle again. The first slot is ready from the start, each next one when the shot
// before it has come far enough.
//
// Position and units as for every FlyingObject. The ship owns the arrays of its shots, the shots and
// their picture, which all live as long as the process; target and target list are the player's.
class EnemyShip : public Ship {
public:
    // Takes the first free slot of the target list, if there is one, and says on standard output
    // that it was born, with the occupancy of the list.
    EnemyShip(SDL_Surface* straightPicture, SDL_Surface* leftPicture, SDL_Surface* rightPicture,
              int x, int y, int objectWidth, int objectHeight, SDL_Surface* surface, int areaWidth,
              int areaHeight, int shotSlots, bool steeredFromOutside, FlyingObject** targetList,
              int targetListSize);

    // Says on standard output that it died.
    ~EnemyShip();

    // Gives the ship that it fights; must come before the first control().
    void setTarget(MyShip* ship);

    // Prepares `slots` shot slots, 1 at least, and loads the picture of the shots; must come before
    // the first control(). From now on the ship shoots.
    void setMaxShot(int slots);

    // Fires from every slot that is ready and free, and makes the next slot ready.
    void shot();

    // Moves, draws and hit-tests the shots in flight, and removes those past their limit.
    void shotControl();

    // One frame: movement, shots, then steering of its own, then its explosion.
    void control();

    int ownIndex = 0;                  // its slot in the target list
    int targetCount;                   // entries of the target list
    FlyingObject** ownShipTargetList;  // the player's target list

    // one entry for each shot slot
    SDL_Surface* shotImage = nullptr;
    bool canShoot = false;
    int maxShot;
    Shot** shots = nullptr;      // valid while the slot's shot is active
    bool* shotActive = nullptr;  // the slot's shot exists and flies
    int* shotLimitY = nullptr;   // beyond this y the shot is removed
    int* nextShotY = nullptr;    // beyond this y the next slot may fire
    bool* shotReady = nullptr;   // the slot may fire

    MyShip* target = nullptr;

private:
    void fire(int slot);
    void makeNextReady(int slot);
    void printTargetList();
    void hoverAboveTarget();
};

#endif
