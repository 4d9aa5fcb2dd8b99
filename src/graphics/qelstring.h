// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_GRAPHICS_QELSTRING_H
#define KRAVOLTIX_GRAPHICS_QELSTRING_H

#include <SDL.h>
#include <SDL_mixer.h>

// One line of text that types itself out behind a glowing cursor, drawn once a frame by
// showString(). By its type it then stays, or is wiped away from the left until only its cursor
// fades out, after which the next waiting line may start.
//
//   typing -> closing trail -> typed -> [types 2 and 3: pause -> wipe -> fade-out -> idle]
//
// Positions are pixels from the top left corner of the screen, y grows downward. A character cell
// is 8 pixels wide and 9 high; only letters and digits have a picture, upper and lower case share
// theirs, everything else is a blank. Times are milliseconds. Nothing given is owned: the screen and
// the texts belong to the caller, and a text must stay alive and unchanged while it is shown or
// waits. The sheets and the sound are loaded by each line and live as long as the process.
class QELString {
public:
    // What becomes of a line that has been typed.
    enum Type {
        TYPE_STAYS = 1,
        TYPE_LEAVES = 2,  // wiped and faded out, then nothing is shown
        TYPE_QUEUE = 3,   // like TYPE_LEAVES, then the next waiting line starts
    };

    // What x of setPosition() means.
    enum Align {
        ALIGN_LEFT = 0,    // where the line starts
        ALIGN_CENTRE = 1,  // its middle
        ALIGN_RIGHT = 2,   // where it ends
    };

    // The priority of a waiting slot that holds no line.
    static constexpr int LEVEL_EMPTY = -1;

    // Loads the three sheets below fonts/impact, relative to the working directory. The first one
    // that is missing ends the process with status 1 after a line that names it.
    explicit QELString(SDL_Surface* surface);

    void setType(int newType);

    // Places the line. It measures the text that is set by now: call it after setString().
    void setPosition(int newX, int newY, int newAlign);

    // Starts a new line at once; the position stays.
    void setString(const char* newText);

    // Fill the waiting slots, whatever stands in them.
    void setStringTwo(const char* newText, int level);
    void setStringThree(const char* newText, int level);

    // Offers a line: it starts at once when the line is idle, or else waits by its priority (higher
    // goes first). A text that is already waiting in the second slot is not taken twice.
    void setNewString(const char* newText, int level);

    // When idle, starts the line of the second slot and moves the third one up.
    void updateStringList();

    // Draws one frame, `ticks` milliseconds after the one before. Returns 1 once the line stands
    // typed and its trail has faded, 0 before that and again after its fade-out.
    int showString(unsigned int ticks);

    SDL_Surface* screen;

    // the sheets and where their glyphs lie
    SDL_Surface* letters;
    SDL_Surface* cursor;
    SDL_Surface* numbers;
    SDL_Rect digitRects[10];
    SDL_Rect letterRects[26];
    SDL_Rect cursorRects[10];      // 0 brightest to 9 faintest
    SDL_Rect dest = {0, 0, 0, 0};  // of the next blit; walks along the line, clipped by SDL

    int result = 0;  // what showString() returns
    int glyph = 0;   // index of the glyph that is drawn

    // place
    int x = 0;  // start of the line after alignment
    int y = 0;
    int type = TYPE_STAYS;
    int align = ALIGN_LEFT;

    // closing trail and fade-out
    int trailIndex = 0;   // cells gone left from the end of the line
    int pauseTicks = 0;   // steps since the last character appeared
    int trailFrame = 0;   // cursor frame drawn in the closing trail
    int trailLength = 0;  // cells, 10 at most
    int fadeCalls = 0;    // frames that the present cursor frame has been shown
    int fadeFrame = 0;    // cursor frame of the fade-out

    bool typed = false;   // the whole line has appeared and its trail has faded
    bool typing = false;  // the line is being typed, stands, or is being wiped
    bool fading = false;  // the fade-out is still to come

    // the line and the two that wait, in the callers' buffers
    const char* text = nullptr;
    const char* textTwo = nullptr;
    const char* textThree = nullptr;
    int levelTwo = LEVEL_EMPTY;
    int levelThree = LEVEL_EMPTY;
    bool idle = false;  // faded out: a new line may start at once
    int length = 0;
    int lengthTwo = 0;
    int lengthThree = 0;

    int shown = 0;      // characters that have appeared
    int elapsed = 0;    // milliseconds gathered towards the next step
    int wipeDelay = 0;  // steps counted before the next character is wiped
    int first = 0;      // first character still shown

    Mix_Chunk*
        keyboardSound;  // loaded and never played; the key's sound comes from the battlefield

private:
    void stepTyping();
    void drawCharacters();
    void drawCursor();
    void drawClosingTrail();
    void drawFadeOut();
    void drawCursorFrame(int frame);
};

#endif
