// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_SURFACES_H
#define KRAVOLTIX_TESTS_SUPPORT_SURFACES_H

#include <SDL.h>

#include <ostream>

struct Colour {
    Uint8 r, g, b;
};

inline bool operator==(const Colour& one, const Colour& other) {
    return one.r == other.r && one.g == other.g && one.b == other.b;
}

inline bool operator!=(const Colour& one, const Colour& other) {
    return !(one == other);
}

std::ostream& operator<<(std::ostream& out, const Colour& colour);

constexpr Colour BLACK = {0, 0, 0};
constexpr Colour RED = {255, 0, 0};
constexpr Colour GREEN = {0, 255, 0};
constexpr Colour BLUE = {0, 0, 255};
constexpr Colour WHITE = {255, 255, 255};

// A software surface of 32 bits a pixel without alpha, all black: a screen that nobody sees.
SDL_Surface* makeScreen(int width = 640, int height = 480);

// A software surface of 32 bits with alpha, as IMG_Load gives it for a picture, all of one opaque
// colour.
SDL_Surface* makePicture(int width, int height, Colour colour);

// Paints a rectangle of a surface in one opaque colour.
void paint(SDL_Surface* surface, int x, int y, int width, int height, Colour colour);

// The colour of one pixel of a surface of any depth.
Colour pixelAt(SDL_Surface* surface, int x, int y);

// The smallest rectangle that holds every pixel of this colour; w and h are 0 when there is none.
SDL_Rect boxOf(SDL_Surface* surface, Colour colour);

// How many pixels have this colour.
int countOf(SDL_Surface* surface, Colour colour);

#endif
