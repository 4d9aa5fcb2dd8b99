// SPDX-License-Identifier: MIT
#include "graphics/qelgraphic.h"

#include <cstdio>
#include <cstdlib>

namespace {

// A channel of a palette record: factor * k + offset for the k-th record of its run, modulo 256.
// The first step of a dark ramp is -1, that is 255: every dark ramp starts with its full colour.
struct Channel {
    int factor;
    int offset;

    Uint8 at(int k) const { return static_cast<Uint8>(factor * k + offset); }
};

struct Run {
    int records;
    Channel r, g, b;
};

constexpr Channel NONE = {0, 0};
constexpr Channel FULL = {0, 255};
constexpr Channel GREY = {8, -1};     // 32 steps from dark to full
constexpr Channel RISING = {32, -1};  // 8 steps from dark to full
constexpr Channel PALING = {32, 17};  // 8 steps towards white
constexpr Channel SLOW = {16, -1};    // half the pace of RISING: turns red and yellow to orange

// clang-format off
constexpr Run PALETTE_RUNS[] = {
    {32, GREY,   GREY,   GREY},
    {8,  RISING, NONE,   NONE},    // red
    {8,  FULL,   PALING, PALING},
    {8,  NONE,   RISING, NONE},    // green
    {8,  PALING, FULL,   PALING},
    {8,  NONE,   NONE,   RISING},  // blue
    {8,  PALING, PALING, FULL},
    {8,  RISING, RISING, NONE},    // yellow
    {8,  FULL,   FULL,   PALING},
    {8,  RISING, NONE,   RISING},  // magenta
    {8,  FULL,   PALING, FULL},
    {8,  NONE,   RISING, RISING},  // cyan
    {8,  PALING, FULL,   FULL},
    {8,  RISING, SLOW,   NONE},    // orange
    {8,  FULL,   SLOW,   PALING},
    {16, FULL,   SLOW,   NONE},
};
// clang-format on

}  // namespace

SDL_Color* QELGraphic::colors = QELGraphic::getPalette();

SDL_Surface* QELGraphic::getBMP(SDL_Surface* screen, const char* file, SDL_Color key) {
    SDL_Surface* loaded = SDL_LoadBMP_RW(SDL_RWFromFile(file, "rb"), 1);
    if (loaded == nullptr) {
        std::printf("Can't load image \"%s\": %s\n", file, SDL_GetError());
        std::exit(1);
    }
    SDL_Surface* converted = SDL_DisplayFormat(loaded);
    SDL_FreeSurface(loaded);
    // The key goes through the screen's format: that is the format which the picture has by now.
    const Uint32 mapped = SDL_MapRGB(screen->format, key.r, key.g, key.b);
    SDL_SetColorKey(converted, SDL_SRCCOLORKEY | SDL_RLEACCEL, mapped);
    return converted;
}

void QELGraphic::putPixel(SDL_Surface* surface, int x, int y, Uint8 r, Uint8 g, Uint8 b) {
    const Uint32 pixel = SDL_MapRGB(surface->format, r, g, b);
    const int rowStart = y * surface->pitch;
    const int bytes = surface->format->BytesPerPixel;
    // The game's own depth is asked for first. Three-byte pixels are addressed and written like
    // four-byte ones: the picture comes out stretched, so the game asks for 32 bits.
    if (bytes == 4 || bytes == 3) {
        static_cast<Uint32*>(surface->pixels)[rowStart / 4 + x] = pixel;
    } else if (bytes == 2) {
        static_cast<Uint16*>(surface->pixels)[rowStart / 2 + x] = static_cast<Uint16>(pixel);
    } else if (bytes == 1) {
        static_cast<Uint8*>(surface->pixels)[rowStart + x] = static_cast<Uint8>(pixel);
    }
}

SDL_Color* QELGraphic::getPalette() {
    SDL_Color* palette = new SDL_Color[PALETTE_SIZE]();
    SDL_Color* record = palette;
    for (const Run& run : PALETTE_RUNS) {
        for (int k = 0; k < run.records; ++k, ++record) {
            record->r = run.r.at(k);
            record->g = run.g.at(k);
            record->b = run.b.at(k);
        }
    }
    return palette;
}
