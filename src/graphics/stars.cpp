// SPDX-License-Identifier: MIT
#include "graphics/stars.h"

#include "graphics/qelgraphic.h"

#include <cstdio>

namespace {

constexpr Uint32 SKY_SEED = 42;
constexpr double SPEED_PER_BRIGHTNESS = 0.0008;  // pixels per millisecond for each grey level

// Stars 1 to 25 climb through the greys and star 26 is white, so that every sky shows all depths.
constexpr int LAST_GREY_STAR = 25;
constexpr int GREY_STEP = 10;
constexpr int WHITE_STAR = 26;
constexpr Uint8 WHITE = 255;

// A star that has left the bottom comes back this far to the right, or the sky would be seen to
// repeat itself.
constexpr int SHIFT_ON_RETURN_PX = 142;

float speedOf(Uint8 brightness) {
    return static_cast<float>(brightness * SPEED_PER_BRIGHTNESS);
}

Uint8 brightnessAt(float x, float y) {
    const int column = static_cast<int>(x);
    const int row = static_cast<int>(y);
    return static_cast<Uint8>(column + row % 105 + 150);
}

void fall(Stars& stars) {
    const long double elapsedMs = static_cast<long double>(stars.ticks);
    const float bottom = static_cast<float>(stars.height);
    float* const y = stars.y;
    const float* const speed = stars.speed;
    for (int i = 0; i < stars.number; ++i) {
        // Extended precision until the float is stored; the stored value decides the wrap.
        y[i] = static_cast<float>(y[i] + elapsedMs * speed[i]);
        // After a stall a star starts at the top edge again, however far it would have fallen.
        if (!(y[i] < bottom)) {
            float& x = stars.x[i];
            y[i] = 0;
            x = static_cast<float>((static_cast<int>(x) + SHIFT_ON_RETURN_PX) % stars.width);
        }
    }
}

// The lists are looked up once: for all the compiler knows a pixel might lie on them.
void draw(const Stars& stars) {
    SDL_Surface* const screen = stars.screen;
    const float* const x = stars.x;
    const float* const y = stars.y;
    const Uint8* const brightness = stars.brightness;
    const int number = stars.number;
    for (int i = 0; i < number; ++i) {
        QELGraphic::putPixel(screen, static_cast<int>(x[i]), static_cast<int>(y[i]), brightness[i],
                             brightness[i], brightness[i]);
    }
}

}  // namespace

Stars::Stars(SDL_Surface* surface, int fieldWidth, int fieldHeight, int starCount)
    : screen(surface),
      width(fieldWidth),
      height(fieldHeight),
      number(starCount),
      x(new float[static_cast<size_t>(starCount)]),
      y(new float[static_cast<size_t>(starCount)]),
      speed(new float[static_cast<size_t>(starCount)]),
      brightness(new Uint8[static_cast<size_t>(starCount)]) {
    // The two products wrap at 32 bits; that is what scatters the stars.
    Uint32 state = SKY_SEED;
    for (int i = 0; i < number; ++i) {
        const Uint32 factor = static_cast<Uint32>(i);
        const Uint32 across = factor * (state + 1);
        state = factor * (across + 1);
        x[i] = static_cast<float>(across % static_cast<Uint32>(width));
        y[i] = static_cast<float>(state % static_cast<Uint32>(height));
        brightness[i] = brightnessAt(x[i], y[i]);
        speed[i] = speedOf(brightness[i]);
    }
    for (int k = 1; k <= LAST_GREY_STAR; ++k) {
        brightness[k] = static_cast<Uint8>(GREY_STEP * (k - 1));
        speed[k] = speedOf(brightness[k]);
    }
    brightness[WHITE_STAR] = WHITE;
    speed[WHITE_STAR] = speedOf(WHITE);
}

void Stars::show(unsigned int elapsedMs, int direction) {
    ticks = elapsedMs;
    SDL_FillRect(screen, nullptr, SDL_MapRGB(screen->format, 0, 0, 0));
    const bool lockNeeded = SDL_MUSTLOCK(screen);
    if (lockNeeded && SDL_LockSurface(screen) < 0) {
        std::fprintf(stderr, "Can't lock screen: %s\n", SDL_GetError());
        return;
    }
    if (direction == DIRECTION_DOWN) {
        fall(*this);
    }
    draw(*this);
    if (lockNeeded) {
        SDL_UnlockSurface(screen);
    }
}

void Stars::setNumber(int value) {
    number = value;
}

void Stars::setWidth(int value) {
    width = value;
}

void Stars::setHeight(int value) {
    height = value;
}

int Stars::getNumber() {
    return number;
}

int Stars::getWidth() {
    return width;
}

int Stars::getHeight() {
    return height;
}
