// SPDX-License-Identifier: MIT
#include "objects/formation7bird.h"

#include "objects/flyingobject.h"

namespace {

constexpr int ELEMENT_SIZE_PX = 49;

struct Offset {
    int x, y;
};

// From the reference point, in pixels. The outer slots stand lowest, the middle of each half highest.
constexpr Offset SLOT_OFFSETS[FormationSevenBird::SLOTS] = {
    {0, 80}, {40, 40}, {80, 0}, {120, 40}, {160, 0}, {200, 40}, {240, 80},
};

// Within this distance of its slot, bounds included, a ship stops steering on that axis and coasts:
// the formation sways instead of trembling.
constexpr int DEAD_BAND_PX = 10;

// Sets the flag of the direction that leads to the slot and clears the opposite one.
void steer(float position, int slot, bool& goingBack, bool& goingOn) {
    goingBack = position > static_cast<float>(slot + DEAD_BAND_PX);
    goingOn = !goingBack && position < static_cast<float>(slot - DEAD_BAND_PX);
}

}  // namespace

FormationSevenBird::FormationSevenBird(int startX, int startY, int areaWidth, int areaHeight,
                                       FlyingObject** members)
    : ships(members),
      elementWidth(ELEMENT_SIZE_PX),
      elementHeight(ELEMENT_SIZE_PX),
      fieldWidth(areaWidth),
      fieldHeight(areaHeight) {
    setPosition(startX, startY);
}

void FormationSevenBird::setPosition(int newX, int newY) {
    x = newX;
    y = newY;
    for (int i = 0; i < SLOTS; ++i) {
        slotX[i] = x + SLOT_OFFSETS[i].x;
        slotY[i] = y + SLOT_OFFSETS[i].y;
    }
}

void FormationSevenBird::control() {
    for (int i = 0; i < SLOTS; ++i) {
        FlyingObject* ship = ships[i];
        if (ship == nullptr || !ship->externallySteered || ship->energy < 1) {
            continue;
        }
        ship->control();
        steer(ship->xFloat, slotX[i], ship->goingLeft, ship->goingRight);
        steer(ship->yFloat, slotY[i], ship->goingUp, ship->goingDown);
    }
}
