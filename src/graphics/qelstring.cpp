// SPDX-License-Identifier: MIT
#include "graphics/qelstring.h"

#include "graphics/animationstep.h"

#include <SDL_image.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int CELL_WIDTH_PX = 8;  // the advance of every character, digits included
constexpr int CELL_HEIGHT_PX = 9;
constexpr int DIGIT_WIDTH_PX = 6;

constexpr int TRAIL_FRAMES = 10;     // cursor frames, and so the longest trail
constexpr int WIPE_EDGE_FRAME = 5;   // the dim cursor at the left edge of a line that is wiped
constexpr int FADE_FIRST_FRAME = 4;  // the fade-out starts dim
constexpr int FADE_CALLS = 8;        // frames for each picture of the fade-out

constexpr int PAUSE_STEPS = 5;          // a typed line stands this long before the wipe
constexpr int STEPS_BETWEEN_WIPES = 1;  // then one character goes with every step

// Before the first setString() a line says so, which shows a forgotten call at a glance.
constexpr char NO_STRING[] = "no string given";

template <size_t count> void setGlyphRects(SDL_Rect (&rects)[count], int width) {
    for (size_t i = 0; i < count; ++i) {
        rects[i] = {static_cast<Sint16>(width * static_cast<int>(i)), 0, static_cast<Uint16>(width),
                    CELL_HEIGHT_PX};
    }
}

SDL_Surface* loadSheet(const char* path, const char* name) {
    SDL_Surface* sheet = IMG_Load(path);
    if (sheet == nullptr) {
        std::printf("Can't load image \"%s\": %s\n", name, SDL_GetError());
        std::exit(1);
    }
    return sheet;
}

// Every text that is set takes a buffer of its size, which stays allocated and unused: the line
// reads the caller's own text. Setting texts therefore costs memory, a few bytes each.
int measure(const char* text) {
    const size_t length = std::strlen(text);
    static_cast<void>(new char[length + 1]);
    return static_cast<int>(length);
}

}  // namespace

QELString::QELString(SDL_Surface* surface) : screen(surface) {
    setGlyphRects(digitRects, DIGIT_WIDTH_PX);
    setGlyphRects(letterRects, CELL_WIDTH_PX);
    setGlyphRects(cursorRects, CELL_WIDTH_PX);
    letters = loadSheet("fonts/impact/letters.png", "letters.png");
    cursor = loadSheet("fonts/impact/letter_cursor.png", "letter_cursor.png");
    numbers = loadSheet("fonts/impact/numbers_a.png", "numbers_a.png");
    keyboardSound = Mix_LoadWAV_RW(SDL_RWFromFile("sounds/keyboard.wav", "rb"), 1);
    type = TYPE_STAYS;
    setString(NO_STRING);
    setStringTwo(NO_STRING, LEVEL_EMPTY);
    setStringThree(NO_STRING, LEVEL_EMPTY);
    setPosition(0, 0, ALIGN_LEFT);
}

void QELString::setType(int newType) {
    type = newType;
}

void QELString::setPosition(int newX, int newY, int newAlign) {
    align = newAlign;
    y = newY;
    if (align == ALIGN_CENTRE) {
        x = newX - CELL_WIDTH_PX / 2 * length;
    } else if (align == ALIGN_RIGHT) {
        x = newX - CELL_WIDTH_PX * length;
    } else {
        x = newX;
    }
}

void QELString::setString(const char* newText) {
    typed = false;
    typing = true;
    fading = true;
    idle = false;
    length = measure(newText);
    text = newText;
    first = 0;
    wipeDelay = 0;
    trailIndex = 0;
    pauseTicks = 0;
    trailFrame = 0;
    fadeCalls = 0;
    fadeFrame = FADE_FIRST_FRAME;
    elapsed = 0;
    // The first character shows at once. An empty text therefore never reaches its end: its cursor
    // stands there for good.
    shown = 1;
    trailLength = length < TRAIL_FRAMES ? length : TRAIL_FRAMES;
    result = 0;
}

void QELString::setStringTwo(const char* newText, int level) {
    textTwo = newText;
    lengthTwo = measure(newText);
    levelTwo = level;
}

void QELString::setStringThree(const char* newText, int level) {
    textThree = newText;
    lengthThree = measure(newText);
    levelThree = level;
}

void QELString::setNewString(const char* newText, int level) {
    if (idle) {
        setString(newText);
        levelTwo = LEVEL_EMPTY;
        levelThree = LEVEL_EMPTY;
        return;
    }
    // The second slot keeps its text after its line has started, so the same message is not taken
    // again before another one has passed through that slot.
    const bool sameAsTwo = std::strcmp(newText, textTwo) == 0;
    if (level > levelTwo) {
        if (!sameAsTwo) {
            setStringTwo(newText, level);
        }
    } else if (level == levelTwo) {
        if (!sameAsTwo) {
            setStringThree(newText, level);
        }
    } else if (level >= levelThree) {
        setStringThree(newText, level);
    }
}

void QELString::updateStringList() {
    if (!idle) {
        return;
    }
    if (levelTwo >= 0) {
        setString(textTwo);
        levelTwo = LEVEL_EMPTY;
    }
    if (levelThree >= 0) {
        setStringTwo(textThree, levelThree);
        levelThree = LEVEL_EMPTY;
    }
}

int QELString::showString(unsigned int ticks) {
    if (typing) {
        dest.x = static_cast<Sint16>(x + CELL_WIDTH_PX * first);
        dest.y = static_cast<Sint16>(y);
        elapsed = static_cast<int>(static_cast<unsigned int>(elapsed) + ticks);
        if (elapsed > static_cast<int>(ANIMATION_STEP_MS)) {
            stepTyping();
            elapsed = 0;  // what exceeds the step is dropped
        }
        drawCharacters();
        drawCursor();
    } else if (fading && type >= TYPE_LEAVES) {
        drawFadeOut();
    }
    return result;
}

void QELString::stepTyping() {
    if (shown < length) {
        ++shown;
        return;
    }
    if (shown != length) {
        return;
    }
    pauseTicks = static_cast<int>(static_cast<Uint32>(pauseTicks) + 1);  // wraps after 3.5 years
    if (!typed || type < TYPE_LEAVES) {
        return;
    }
    ++wipeDelay;
    if (wipeDelay == PAUSE_STEPS) {
        ++first;
        dest.x = static_cast<Sint16>(dest.x + CELL_WIDTH_PX);
        wipeDelay = PAUSE_STEPS - STEPS_BETWEEN_WIPES;
    }
    if (first == shown) {
        typing = false;
    }
}

void QELString::drawCharacters() {
    for (int k = first; k < shown; ++k) {
        const char c = text[k];
        if (c >= 'a' && c <= 'z') {
            glyph = c - 'a';
            SDL_BlitSurface(letters, &letterRects[glyph], screen, &dest);
        } else if (c >= 'A' && c <= 'Z') {
            glyph = c - 'A';
            SDL_BlitSurface(letters, &letterRects[glyph], screen, &dest);
        } else if (c >= '0' && c <= '9') {
            glyph = c - '0';
            SDL_BlitSurface(numbers, &digitRects[glyph], screen, &dest);
        }
        // The trail glows over the newest characters only while the line still grows.
        const int age = shown - k;
        if (age < TRAIL_FRAMES && shown != length) {
            drawCursorFrame(age);
        }
        dest.x = static_cast<Sint16>(dest.x + CELL_WIDTH_PX);
    }
}

// Called with dest behind the last character.
void QELString::drawCursor() {
    if (typed) {
        if (type >= TYPE_LEAVES && first >= 2) {
            dest.x = static_cast<Sint16>(x + CELL_WIDTH_PX * first);
            drawCursorFrame(WIPE_EDGE_FRAME);
        }
    } else if (shown == length) {
        drawClosingTrail();
    } else {
        drawCursorFrame(0);
    }
}

// The trail runs left from the end of the line and starts one frame darker with every step, so that
// it grows dimmer and shorter until nothing of it is left.
void QELString::drawClosingTrail() {
    trailIndex = 0;
    for (trailFrame = pauseTicks; trailFrame < trailLength; ++trailFrame) {
        drawCursorFrame(trailFrame);
        dest.x = static_cast<Sint16>(dest.x - CELL_WIDTH_PX);
        ++trailIndex;
    }
    if (pauseTicks >= trailLength) {
        typed = true;
        result = 1;
    }
}

// Counts frames, not milliseconds: on a fast machine the last glow is gone sooner.
void QELString::drawFadeOut() {
    dest.x = static_cast<Sint16>(x + CELL_WIDTH_PX * length);
    drawCursorFrame(fadeFrame);
    ++fadeCalls;
    if (fadeCalls == FADE_CALLS) {
        ++fadeFrame;
        fadeCalls = 0;
    }
    if (fadeFrame == TRAIL_FRAMES) {
        fading = false;
        idle = true;
        if (type == TYPE_QUEUE) {
            updateStringList();
        }
        result = 0;
    }
}

void QELString::drawCursorFrame(int frame) {
    SDL_BlitSurface(cursor, &cursorRects[frame], screen, &dest);
}
