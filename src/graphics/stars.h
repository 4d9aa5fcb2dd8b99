// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_GRAPHICS_STARS_H
#define KRAVOLTIX_GRAPHICS_STARS_H

#include <SDL.h>

// The falling starfield behind everything. It also clears the screen, so its show() is the first
// drawing of a frame. Bright stars fall faster than dim ones and so seem nearer; the sky is the
// same in every game.
//
// Positions are pixels from the top left corner of the screen, y grows downward; the floats are the
// truth. Speeds are pixels per millisecond. The arrays belong to the starfield and live as long as
// the process; the screen is not owned.
class Stars {
public:
    // Places `starCount` stars on a field of the given size in pixels. There must be 27 stars or
    // more, since the stars 1 to 26 get fixed brightness, and neither size may be 0.
    Stars(SDL_Surface* surface, int fieldWidth, int fieldHeight, int starCount);

    // One frame: clears the screen to black, moves the stars by `elapsedMs` milliseconds when
    // `direction` is DIRECTION_DOWN, and draws them. When the screen cannot be locked, a line goes
    // to standard error and this frame has no stars.
    void show(unsigned int elapsedMs, int direction);

    // These overwrite the field only; the arrays keep their size, so `number` may not grow.
    void setNumber(int value);
    void setWidth(int value);
    void setHeight(int value);

    int getNumber();
    int getWidth();
    int getHeight();

    // The one direction in which the stars move; with any other value they stand still.
    static constexpr int DIRECTION_DOWN = 4;

    SDL_Surface* screen;
    Uint32 ticks = 0;  // milliseconds, as last given to show()
    int width;         // of the field, in pixels
    int height;
    int number;

    // one entry for each star
    float* x;
    float* y;
    float* speed;
    Uint8* brightness;  // grey level, 0 black to 255 white
};

#endif
