// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_FORMATION_H
#define KRAVOLTIX_OBJECTS_FORMATION_H

// The description of a grid of ships: where it stands, how large its cells are and how many it has,
// on a field of which size, and where it is going. It stores values and owns nothing; nothing moves
// it. Lengths are pixels from the top left corner of the screen, y grows downward.
class Formation {
public:
    Formation(int originX, int originY, int cellWidth, int cellHeight, int columns, int rows,
              int areaWidth, int areaHeight);

    void setX(int value);
    void setY(int value);
    void setElementWidth(int value);
    void setElementHeight(int value);
    void setNumberOfElementsHorizontal(int value);
    void setNumberOfElementsVertical(int value);

    // Move the origin by an offset and return its new value.
    int setXrelative(int dx);
    int setYrelative(int dy);

    void setGoingLeft(bool going);
    void setGoingRight(bool going);
    void setGoingUp(bool going);
    void setGoingDown(bool going);

    int getX();
    int getY();
    int getElementWidth();
    int getElementHeight();
    int getNumberOfElementsHorizontal();
    int getNumberOfElementsVertical();
    int getFieldWidth();
    int getFieldHeight();
    bool getGoingLeft();
    bool getGoingRight();
    bool getGoingUp();
    bool getGoingDown();

    int x;  // origin
    int y;
    int elementWidth;  // of one cell
    int elementHeight;
    int numberOfElementsHorizontal;  // columns
    int numberOfElementsVertical;    // rows
    int fieldWidth;
    int fieldHeight;
    bool goingLeft = false;
    bool goingRight = false;
    bool goingUp = false;
    bool goingDown = false;
};

#endif
