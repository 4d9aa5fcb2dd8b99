// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_GRAPHICS_DISPLAY_H
#define KRAVOLTIX_GRAPHICS_DISPLAY_H

#include <SDL.h>

// The heads-up display: frames per second at the top right, the two weapons with their counters at
// the bottom left, the energy bar with its scale at the bottom right, and the countdown in the
// middle. The battlefield says every frame what to draw.
//
// Positions are pixels from the top left corner of the screen, y grows downward; times are
// milliseconds. The screen is not owned; the pictures are loaded by the display and live as long as
// the process.
class Display {
public:
    // Loads the pictures, paths relative to the working directory, and says that it was born. A
    // missing picture ends the process with status 1 after a line that names it, except the rocket
    // icon, the energy bar and its scale: without those the game runs and shows nothing there.
    explicit Display(SDL_Surface* surface);

    // Counts a frame of `ticks` milliseconds and draws the figure, which is renewed every 20 frames
    // and is 0 before the first 20.
    void showFps(unsigned int ticks);

    // Draws a number in small digits, three of them, leading zeros included; it is limited to 0 to
    // 999.
    void showShotNumberMini(int x, int y, int number);

    // Draws the countdown for a frame of `ticks` milliseconds; true once the countdown is over, and
    // already in the frame that shows its 0 for the last time.
    bool showCountDown(unsigned int ticks);

    // Starts the countdown at a digit; above 9 it starts at 9.
    void setCountDownPosAndStart(int x, int y, int start);

    // Draws the scale and the lowest `energy` pixels of the bar. 0 to 65; the value is not limited,
    // SDL cuts or refuses what the picture does not hold.
    void showEnergy(int energy);

    void showFirstShotA();
    void showSecondShotA();

    void setPositionFps(int x, int y);

    // Places the scale; the bar stands 15 pixels left of it and 1 pixel lower.
    void setPositionEnergy(int x, int y);

    void setPositionFirstShotA(int x, int y);
    void setPositionSecondShotA(int x, int y);

    // Value of a countdown that is over.
    static constexpr int COUNT_DOWN_OVER = -1;

    SDL_Surface* screen;

    // pictures
    SDL_Surface* fpsLabel;
    SDL_Surface* cross;  // loaded with the others; nothing draws it
    SDL_Surface* energyBar;
    SDL_Surface* energyScale;
    SDL_Surface* firstShotIcon;
    SDL_Surface* secondShotIcon;
    SDL_Surface* numbers;
    SDL_Surface* numbersMini;
    SDL_Rect digitRects[10];      // in `numbers`
    SDL_Rect miniDigitRects[10];  // in `numbersMini`

    // places; those of digits walk along their number
    SDL_Rect fpsPos;
    SDL_Rect crossPos;
    SDL_Rect fpsDigitPos = {0, 0, 0, 0};
    SDL_Rect countDownPos = {0, 0, 0, 0};
    SDL_Rect miniPos = {0, 0, 0, 0};
    int digit = 0;  // the digit being drawn

    // energy bar
    SDL_Rect energySrc;  // the part of the bar that is lit
    SDL_Rect energyPos;
    SDL_Rect energyScalePos;
    int energyTop = 0;  // of the full bar, in screen pixels

    SDL_Rect firstShotPos;
    SDL_Rect secondShotPos;

    // frames per second
    Uint8 frames = 0;            // counted towards the next figure
    unsigned int frameTime = 0;  // milliseconds that those frames took
    int fps = 0;                 // the last figure

    int miniDigit = 0;  // the small digit being drawn

    // countdown
    int countDownStart = 0;
    int countDownTime = 0;   // milliseconds that the present digit has been shown
    int countDownValue = 0;  // the present digit, COUNT_DOWN_OVER when it is over

private:
    void drawFpsDigit(int value);
    void drawMiniDigit(int value);
};

#endif
