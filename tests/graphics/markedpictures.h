// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_GRAPHICS_MARKEDPICTURES_H
#define KRAVOLTIX_TESTS_GRAPHICS_MARKEDPICTURES_H

#include <SDL.h>

#include <functional>
#include <string>
#include <vector>

// The red of every pixel of a marked picture: which picture it is.
enum Mark {
    LETTERS = 10,
    CURSOR = 20,
    NUMBERS = 30,
    NUMBERS_MINI = 40,
    FPS_LABEL = 50,
    CROSS = 60,
    ENERGY_BAR = 70,
    ENERGY_SCALE = 80,
    FIRST_SHOT_ICON = 90,
    SECOND_SHOT_ICON = 100,
};

// The cursor's pictures are clear above this row, so that a glyph is seen below them.
constexpr int CURSOR_TOP_ROW = 4;

// Stands in front of the picture files, as long as it lives, with pictures whose every pixel tells
// where it came from: red is the picture, green the column, blue the row. So the screen shows which
// part of which picture was drawn, whatever the game's own pictures look like. All of them are
// larger than their cells need, so that a part that is cut too large is seen as well.
class MarkedPictures {
public:
    // The picture of the path `missing` does not load; SDL then says "it is gone".
    explicit MarkedPictures(const std::string& missing = "");

    // Takes every hook away.
    ~MarkedPictures();

    MarkedPictures(const MarkedPictures&) = delete;
    MarkedPictures& operator=(const MarkedPictures&) = delete;

    // The paths that were asked for, in order.
    std::vector<std::string> loads;
};

// Sends standard output to standard error and lists there each picture that is asked for: for a
// process that is going to exit.
void reportLoadsAndOutputOnStandardError();

SDL_Rect rectOf(int x, int y, int width, int height);

// Is exactly this part of a marked picture seen at (x, y) of the screen?
bool showsPart(SDL_Surface* screen, int x, int y, Mark mark, const SDL_Rect& part);

// Is this rectangle of the screen all black?
bool isBlack(SDL_Surface* screen, const SDL_Rect& rect);

// Is the screen all black but for these rectangles?
bool isBlackBeside(SDL_Surface* screen, const std::vector<SDL_Rect>& rects);

// One blit as it was asked for, before SDL cuts it.
struct Blit {
    SDL_Surface* picture;
    bool whole;
    SDL_Rect part;  // when it is not whole
    SDL_Rect to;
};

// The blits of an action, in order. They are drawn too.
std::vector<Blit> blitsOf(const std::function<void()>& action);

#endif
