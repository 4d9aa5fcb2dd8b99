// SPDX-License-Identifier: MIT
#include "graphics/markedpictures.h"

#include "front/front.h"
#include "support/surfaces.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

struct Sheet {
    const char* path;
    Mark mark;
    int width;  // pixels
    int height;
};

constexpr Sheet SHEETS[] = {
    {"fonts/impact/letters.png", LETTERS, 216, 12},
    {"fonts/impact/letter_cursor.png", CURSOR, 96, 12},
    {"fonts/impact/numbers_a.png", NUMBERS, 72, 12},
    {"fonts/impact/numbers_mini.png", NUMBERS_MINI, 48, 8},
    {"fonts/impact/fps_a.png", FPS_LABEL, 30, 14},
    {"fonts/impact/cross.png", CROSS, 5, 5},
    {"display/energy01.png", ENERGY_BAR, 12, 65},
    {"display/energyscale.png", ENERGY_SCALE, 11, 69},
    {"shots/item_shot01a.png", FIRST_SHOT_ICON, 31, 32},
    {"shots/item_shot02a.png", SECOND_SHOT_ICON, 33, 30},
};

Colour markedPixel(Mark mark, int column, int row) {
    return {static_cast<Uint8>(mark), static_cast<Uint8>(column), static_cast<Uint8>(row)};
}

void clearTop(SDL_Surface* picture) {
    SDL_Rect top = {0, 0, static_cast<Uint16>(picture->w), CURSOR_TOP_ROW};
    SDL_FillRect(picture, &top, SDL_MapRGBA(picture->format, 0, 0, 0, SDL_ALPHA_TRANSPARENT));
}

SDL_Surface* makeMarkedPicture(const Sheet& sheet) {
    SDL_Surface* picture = makePicture(sheet.width, sheet.height, BLACK);
    for (int row = 0; row < sheet.height; ++row) {
        for (int column = 0; column < sheet.width; ++column) {
            paint(picture, column, row, 1, 1, markedPixel(sheet.mark, column, row));
        }
    }
    if (sheet.mark == CURSOR) {
        clearTop(picture);
    }
    return picture;
}

SDL_Surface* loadMarkedPicture(const std::string& path) {
    for (const Sheet& sheet : SHEETS) {
        if (path == sheet.path) {
            return makeMarkedPicture(sheet);
        }
    }
    SDL_SetError("there is no such picture");
    return nullptr;
}

bool isInside(const SDL_Rect& rect, int x, int y) {
    return x >= rect.x && x < rect.x + rect.w && y >= rect.y && y < rect.y + rect.h;
}

}  // namespace

MarkedPictures::MarkedPictures(const std::string& missing) {
    front::hooks() = {};
    front::hooks().IMG_Load = [this, missing](const char* path) -> SDL_Surface* {
        loads.emplace_back(path);
        if (path == missing) {
            SDL_SetError("it is gone");
            return nullptr;
        }
        return loadMarkedPicture(path);
    };
}

MarkedPictures::~MarkedPictures() {
    front::hooks() = {};
}

void reportLoadsAndOutputOnStandardError() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    front::hooks().IMG_Load = [load = front::hooks().IMG_Load](const char* path) {
        std::printf("%s\n", path);
        return load(path);
    };
}

SDL_Rect rectOf(int x, int y, int width, int height) {
    return {static_cast<Sint16>(x), static_cast<Sint16>(y), static_cast<Uint16>(width),
            static_cast<Uint16>(height)};
}

bool showsPart(SDL_Surface* screen, int x, int y, Mark mark, const SDL_Rect& part) {
    for (int row = 0; row < part.h; ++row) {
        for (int column = 0; column < part.w; ++column) {
            const Colour expected = markedPixel(mark, part.x + column, part.y + row);
            if (pixelAt(screen, x + column, y + row) != expected) {
                return false;
            }
        }
    }
    return true;
}

bool isBlack(SDL_Surface* screen, const SDL_Rect& rect) {
    for (int y = rect.y; y < rect.y + rect.h; ++y) {
        for (int x = rect.x; x < rect.x + rect.w; ++x) {
            if (pixelAt(screen, x, y) != BLACK) {
                return false;
            }
        }
    }
    return true;
}

bool isBlackBeside(SDL_Surface* screen, const std::vector<SDL_Rect>& rects) {
    for (int y = 0; y < screen->h; ++y) {
        for (int x = 0; x < screen->w; ++x) {
            const bool beside = std::none_of(rects.begin(), rects.end(), [&](const SDL_Rect& rect) {
                return isInside(rect, x, y);
            });
            if (beside && pixelAt(screen, x, y) != BLACK) {
                return false;
            }
        }
    }
    return true;
}

std::vector<Blit> blitsOf(const std::function<void()>& action) {
    std::vector<Blit> blits;
    front::hooks().SDL_UpperBlit = [&blits](SDL_Surface* from, SDL_Rect* fromRect, SDL_Surface* to,
                                            SDL_Rect* toRect) {
        blits.push_back({from, fromRect == nullptr,
                         fromRect == nullptr ? SDL_Rect{0, 0, 0, 0} : *fromRect, *toRect});
        return front::real::SDL_UpperBlit(from, fromRect, to, toRect);
    };
    action();
    front::hooks().SDL_UpperBlit = nullptr;
    return blits;
}
