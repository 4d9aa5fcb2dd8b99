// SPDX-License-Identifier: MIT
#include "graphics/display.h"

#include <SDL_image.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int DIGIT_WIDTH_PX = 6;
constexpr int DIGIT_HEIGHT_PX = 9;
constexpr int MINI_DIGIT_WIDTH_PX = 4;
constexpr int MINI_DIGIT_HEIGHT_PX = 5;
constexpr int LARGEST_NUMBER = 999;  // three digits

constexpr int FPS_X = 584;
constexpr int FPS_Y = 10;
constexpr int FPS_LABEL_WIDTH_PX = 19;
constexpr int FPS_LABEL_HEIGHT_PX = 9;
constexpr int FPS_DIGITS_OFFSET_PX = 25;  // from the label to the hundreds
constexpr int FPS_DIGIT_STEP_PX = 8;
constexpr int FPS_FRAMES = 20;  // frames for each renewal of the figure
constexpr unsigned int MS_PER_SECOND = 1000;

constexpr int CROSS_SIZE_PX = 5;

constexpr int ICON_SIZE_PX = 29;
constexpr int FIRST_SHOT_X = 10;
constexpr int FIRST_SHOT_Y = 441;
constexpr int SECOND_SHOT_X = 10;
constexpr int SECOND_SHOT_Y = 402;

constexpr int ENERGY_X = 621;
constexpr int ENERGY_Y = 402;
constexpr int ENERGY_SCALE_WIDTH_PX = 9;
constexpr int ENERGY_SCALE_HEIGHT_PX = 67;
constexpr int ENERGY_BAR_WIDTH_PX = 10;
constexpr int ENERGY_BAR_HEIGHT_PX = 65;  // one pixel for each point of the player's energy
constexpr int ENERGY_BAR_LEFT_OF_SCALE_PX = 15;
constexpr int ENERGY_BAR_BELOW_SCALE_PX = 1;

constexpr int COUNT_DOWN_HIGHEST = 9;
constexpr int COUNT_DOWN_DIGIT_MS = 1001;  // a digit goes when it has been shown this long

void place(SDL_Rect& rect, int x, int y) {
    rect.x = static_cast<Sint16>(x);
    rect.y = static_cast<Sint16>(y);
}

void size(SDL_Rect& rect, int width, int height) {
    rect.w = static_cast<Uint16>(width);
    rect.h = static_cast<Uint16>(height);
}

void setDigitRects(SDL_Rect (&rects)[10], int width, int height) {
    for (int i = 0; i < 10; ++i) {
        place(rects[i], width * i, 0);
        size(rects[i], width, height);
    }
}

void stopWithout(const SDL_Surface* picture, const char* name) {
    if (picture == nullptr) {
        std::printf("Can't load image \"%s\": %s\n", name, SDL_GetError());
        std::exit(1);
    }
}

}  // namespace

Display::Display(SDL_Surface* surface) : screen(surface) {
    fpsLabel = IMG_Load("fonts/impact/fps_a.png");
    stopWithout(fpsLabel, "fps_a.png");
    // One test of the laser icon speaks for the icons and the bar. The game can be played without
    // the rocket icon, the bar and its scale, so it starts without them.
    firstShotIcon = IMG_Load("shots/item_shot01a.png");
    stopWithout(firstShotIcon, "item_shot01a.png");
    secondShotIcon = IMG_Load("shots/item_shot02a.png");
    stopWithout(firstShotIcon, "item_shot02a.png");
    energyBar = IMG_Load("display/energy01.png");
    stopWithout(firstShotIcon, "energy01.png");
    energyScale = IMG_Load("display/energyscale.png");

    setPositionFps(FPS_X, FPS_Y);
    size(fpsPos, FPS_LABEL_WIDTH_PX, FPS_LABEL_HEIGHT_PX);
    crossPos = {0, 0, CROSS_SIZE_PX, CROSS_SIZE_PX};
    setDigitRects(digitRects, DIGIT_WIDTH_PX, DIGIT_HEIGHT_PX);
    setDigitRects(miniDigitRects, MINI_DIGIT_WIDTH_PX, MINI_DIGIT_HEIGHT_PX);

    numbers = IMG_Load("fonts/impact/numbers_a.png");
    stopWithout(numbers, "numbers_a.png");
    numbersMini = IMG_Load("fonts/impact/numbers_mini.png");
    stopWithout(numbersMini, "numbers_mini.png");
    cross = IMG_Load("fonts/impact/cross.png");
    stopWithout(cross, "cross.png");

    setPositionFirstShotA(FIRST_SHOT_X, FIRST_SHOT_Y);
    size(firstShotPos, ICON_SIZE_PX, ICON_SIZE_PX);
    setPositionSecondShotA(SECOND_SHOT_X, SECOND_SHOT_Y);
    size(secondShotPos, ICON_SIZE_PX, ICON_SIZE_PX);
    setPositionEnergy(ENERGY_X, ENERGY_Y);
    energySrc = {0, 0, ENERGY_BAR_WIDTH_PX, ENERGY_BAR_HEIGHT_PX};
    size(energyPos, ENERGY_BAR_WIDTH_PX, ENERGY_BAR_HEIGHT_PX);
    size(energyScalePos, ENERGY_SCALE_WIDTH_PX, ENERGY_SCALE_HEIGHT_PX);

    std::puts("display was born:");
    std::puts("=================");
}

void Display::showFps(unsigned int ticks) {
    frameTime += ticks;
    ++frames;
    if (frames == FPS_FRAMES) {
        frames = 0;
        // Twenty frames in no time at all are faster than three digits can tell.
        fps = frameTime == 0 ? LARGEST_NUMBER
                             : static_cast<int>(FPS_FRAMES * MS_PER_SECOND / frameTime);
        frameTime = 0;
    }
    SDL_BlitSurface(fpsLabel, nullptr, screen, &fpsPos);
    const int figure = std::min(fps, LARGEST_NUMBER);
    place(fpsDigitPos, fpsPos.x + FPS_DIGITS_OFFSET_PX, fpsPos.y);
    drawFpsDigit(figure / 100);
    drawFpsDigit(figure % 100 / 10);
    drawFpsDigit(figure % 10);
}

void Display::drawFpsDigit(int value) {
    digit = value;
    SDL_BlitSurface(numbers, &digitRects[digit], screen, &fpsDigitPos);
    fpsDigitPos.x = static_cast<Sint16>(fpsDigitPos.x + FPS_DIGIT_STEP_PX);
}

void Display::showShotNumberMini(int x, int y, int number) {
    const int figure = std::clamp(number, 0, LARGEST_NUMBER);
    place(miniPos, x, y);
    drawMiniDigit(figure / 100);
    drawMiniDigit(figure % 100 / 10);
    drawMiniDigit(figure % 10);
}

void Display::drawMiniDigit(int value) {
    miniDigit = value;
    SDL_BlitSurface(numbersMini, &miniDigitRects[miniDigit], screen, &miniPos);
    miniPos.x = static_cast<Sint16>(miniPos.x + MINI_DIGIT_WIDTH_PX);
}

void Display::setCountDownPosAndStart(int x, int y, int start) {
    place(countDownPos, x, y);
    countDownStart = std::min(start, COUNT_DOWN_HIGHEST);
    countDownValue = countDownStart;
    countDownTime = 0;
}

bool Display::showCountDown(unsigned int ticks) {
    if (countDownValue < 0) {
        return countDownValue == COUNT_DOWN_OVER;
    }
    countDownTime = static_cast<int>(static_cast<unsigned int>(countDownTime) + ticks);
    SDL_BlitSurface(numbers, &digitRects[countDownValue], screen, &countDownPos);
    if (countDownTime >= COUNT_DOWN_DIGIT_MS) {
        countDownTime = 0;  // what exceeds the digit's time is dropped
        --countDownValue;
    }
    return countDownValue == COUNT_DOWN_OVER;
}

void Display::showEnergy(int energy) {
    // The bar empties from the top: its lowest row is the last point of energy.
    const int unlit = ENERGY_BAR_HEIGHT_PX - energy;
    energySrc.y = static_cast<Sint16>(unlit);
    energySrc.h = static_cast<Uint16>(energy);
    energyPos.y = static_cast<Sint16>(energyTop + unlit);
    SDL_BlitSurface(energyScale, nullptr, screen, &energyScalePos);
    SDL_BlitSurface(energyBar, &energySrc, screen, &energyPos);
}

void Display::showFirstShotA() {
    SDL_BlitSurface(firstShotIcon, nullptr, screen, &firstShotPos);
}

void Display::showSecondShotA() {
    SDL_BlitSurface(secondShotIcon, nullptr, screen, &secondShotPos);
}

void Display::setPositionFps(int x, int y) {
    place(fpsPos, x, y);
}

void Display::setPositionEnergy(int x, int y) {
    place(energyScalePos, x, y);
    energyTop = y + ENERGY_BAR_BELOW_SCALE_PX;
    place(energyPos, x - ENERGY_BAR_LEFT_OF_SCALE_PX, energyTop);
}

void Display::setPositionFirstShotA(int x, int y) {
    place(firstShotPos, x, y);
}

void Display::setPositionSecondShotA(int x, int y) {
    place(secondShotPos, x, y);
}
