// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_GRAPHICS_QELGRAPHIC_H
#define KRAVOLTIX_GRAPHICS_QELGRAPHIC_H

#include <SDL.h>

// The toolbox for surfaces: a BMP loader with a colour key, a writer of single pixels and a fixed
// palette. It has no instances. Coordinates are pixels from the top left corner, y grows downward.
class QELGraphic {
public:
    // Loads a BMP file into a new surface in the display's format whose pixels of colour `key` are
    // clear; the caller owns it. A file that cannot be read ends the process with status 1 after a
    // line on standard output. Needs an open video mode; `screen` is the surface that it gave.
    static SDL_Surface* getBMP(SDL_Surface* screen, const char* file, SDL_Color key);

    // Sets one pixel of a surface of 1, 2, 3 or 4 bytes a pixel; other depths are left alone.
    // Nothing is checked or clipped: (x, y) must lie inside, and a surface that wants locking
    // (SDL_MUSTLOCK) must be locked.
    static void putPixel(SDL_Surface* surface, int x, int y, Uint8 r, Uint8 g, Uint8 b);

    // A new array of PALETTE_SIZE colours; the caller owns it and releases it with delete[].
    // Records 0 to 159 hold a grey ramp, two ramps for each of red, green, blue, yellow, magenta
    // and cyan, and the orange ramps; the records behind them and every fourth byte are 0.
    static SDL_Color* getPalette();

    static constexpr int PALETTE_SIZE = 255;

    // The palette made by getPalette() before main() runs; lives as long as the process.
    static SDL_Color* colors;
};

#endif
