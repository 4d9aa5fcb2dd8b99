// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_FORMATION7BIRD_H
#define KRAVOLTIX_OBJECTS_FORMATION7BIRD_H

class FlyingObject;

// The formation of seven: slots in the shape of a W that follow a reference point, and ships that
// are steered towards them. The formation script moves the reference point; the battlefield calls
// control() once a frame.
//
//         2       4
//     1       3       5        columns and rows 40 pixels apart
// 0                       6
//
// Positions are pixels from the top left corner of the screen to the top left corner of a ship, y
// grows downward. The ships are the first seven entries of the player's target list, not owned.
class FormationSevenBird {
public:
    FormationSevenBird(int startX, int startY, int areaWidth, int areaHeight,
                       FlyingObject** members);

    // Moves the reference point, the top left corner of the W, and with it the slots.
    void setPosition(int newX, int newY);

    // One frame for every member that is there, alive and externally steered: moves it by the flags
    // of the last frame, then points its flags towards its slot.
    void control();

    static constexpr int SLOTS = 7;

    FlyingObject** ships;  // SLOTS entries at least; null where a ship is gone
    int slotX[SLOTS];
    int slotY[SLOTS];
    int x;  // reference point
    int y;
    int elementWidth;  // the room that one ship takes
    int elementHeight;
    int fieldWidth;
    int fieldHeight;
};

#endif
