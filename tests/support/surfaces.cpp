// SPDX-License-Identifier: MIT
#include "support/surfaces.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr Uint32 RED_MASK = 0x00ff0000;
constexpr Uint32 GREEN_MASK = 0x0000ff00;
constexpr Uint32 BLUE_MASK = 0x000000ff;
constexpr Uint32 ALPHA_MASK = 0xff000000;

}  // namespace

std::ostream& operator<<(std::ostream& out, const Colour& colour) {
    return out << '(' << int{colour.r} << ", " << int{colour.g} << ", " << int{colour.b} << ')';
}

SDL_Surface* makeScreen(int width, int height) {
    return SDL_CreateRGBSurface(SDL_SWSURFACE, width, height, 32, RED_MASK, GREEN_MASK, BLUE_MASK,
                                0);
}

SDL_Surface* makePicture(int width, int height, Colour colour) {
    SDL_Surface* picture = SDL_CreateRGBSurface(SDL_SWSURFACE | SDL_SRCALPHA, width, height, 32,
                                                RED_MASK, GREEN_MASK, BLUE_MASK, ALPHA_MASK);
    paint(picture, 0, 0, width, height, colour);
    return picture;
}

void paint(SDL_Surface* surface, int x, int y, int width, int height, Colour colour) {
    SDL_Rect rect = {static_cast<Sint16>(x), static_cast<Sint16>(y), static_cast<Uint16>(width),
                     static_cast<Uint16>(height)};
    SDL_FillRect(surface, &rect,
                 SDL_MapRGBA(surface->format, colour.r, colour.g, colour.b, SDL_ALPHA_OPAQUE));
}

Colour pixelAt(SDL_Surface* surface, int x, int y) {
    const int bytes = surface->format->BytesPerPixel;
    const Uint8* start = static_cast<const Uint8*>(surface->pixels) +
                         ptrdiff_t{y} * surface->pitch + ptrdiff_t{x} * bytes;
    Uint32 pixel = 0;
    std::memcpy(&pixel, start, static_cast<size_t>(bytes));
    Colour colour = {};
    SDL_GetRGB(pixel, surface->format, &colour.r, &colour.g, &colour.b);
    return colour;
}

SDL_Rect boxOf(SDL_Surface* surface, Colour colour) {
    int left = surface->w, top = surface->h, right = 0, bottom = 0;
    for (int y = 0; y < surface->h; ++y) {
        for (int x = 0; x < surface->w; ++x) {
            if (pixelAt(surface, x, y) == colour) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x + 1);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    if (right == 0) {
        return {0, 0, 0, 0};
    }
    return {static_cast<Sint16>(left), static_cast<Sint16>(top), static_cast<Uint16>(right - left),
            static_cast<Uint16>(bottom - top)};
}

int countOf(SDL_Surface* surface, Colour colour) {
    int count = 0;
    for (int y = 0; y < surface->h; ++y) {
        for (int x = 0; x < surface->w; ++x) {
            count += pixelAt(surface, x, y) == colour ? 1 : 0;
        }
    }
    return count;
}
