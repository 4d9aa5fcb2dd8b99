// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_FUZZ_HELDGAME_H
#define KRAVOLTIX_TESTS_FUZZ_HELDGAME_H

#include "driver/battlefield.h"

#include <functional>
#include <vector>

namespace fuzz {

// What comes of a frame that has just been shown: how long it takes, and the events that the game
// finds behind it.
struct Moment {
    Uint32 ms = 0;
    std::vector<SDL_Event> events;
};

// Called when a frame has been shown; false when the game shall end.
using NextMoment = std::function<bool(Moment& moment)>;

// The game in this process, without picture and sound, its clock and events in the caller's hand. It
// is loaded once and can then be played any number of times, each time by the game's own loop: what
// a game has changed is put back, which takes microseconds where loading takes half a second.
// One in a process.
class HeldGame {
public:
    // Where a game begins.
    enum Start {
        AT_THE_FIRST_FRAME,
        AT_PLAY,    // the countdown has just ended
        IN_BATTLE,  // the formation has come and fires
        START_COUNT,
    };

    static constexpr Uint32 FIRST_CLOCK_MS = 266;

    HeldGame();

    // Loads the game and keeps its starts. Working directory is the folder of the game's files.
    void load();

    // Plays one game until it ends by itself or by `next`. With AT_THE_FIRST_FRAME the clock starts
    // at `clock`; else it goes on from the start that was kept.
    void play(Start start, Uint32 clock, const NextMoment& next);

    // The same for a game that is loaded for this one time and comes to its start by itself: what
    // play() is measured by. `next` is first asked where play() asks it first.
    void playFresh(Start start, Uint32 clock, const NextMoment& next);

    // Makes the memory that of a start again, as play() does.
    void putBack(Start start);

    // Blocks of memory that differ from a start, up to the last byte of the shot pools.
    size_t changedBlocks(Start start) const;

    BattleField& field;
    Uint32 clockMs = 0;
    unsigned long long frames = 0;  // shown in all games

private:
    // The content of all blocks at a moment, of large ones only the part that games change.
    struct Kept {
        std::vector<unsigned char> bytes;
        size_t blocks = 0;
        Uint32 clockMs = 0;
        unsigned long long poolHash = 0;
    };

    void putHooks();
    void construct();
    Uint32 readClock();
    void shown();
    int poll(SDL_Event* event);
    Start comeOn(Moment& next);
    void keep(Start start);
    unsigned long long restHash(const Kept& from) const;

    Kept kept[START_COUNT];
    NextMoment nextMoment;
    Moment moment;
    size_t nextEvent = 0;
    int clockReadings = 0;        // since the last frame was shown, or since the game began
    Start toBegin = START_COUNT;  // to be put back at the game's first look at the clock
    Start toKeep = START_COUNT;   // to be kept when the loop comes to its next pass
    Uint32 playFromMs = 0;        // on the way to the kept starts
};

}  // namespace fuzz

#endif
