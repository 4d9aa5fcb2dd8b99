// SPDX-License-Identifier: MIT
#include "fuzz/heldgame.h"

#include "front/front.h"
#include "fuzz/blocks.h"
#include "pilot/undrawn.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace fuzz {
namespace {

constexpr int FIELD_WIDTH_PX = 640;
constexpr int FIELD_HEIGHT_PX = 480;

// Frame times on the way to the kept starts. A step of the texts needs more than 50 ms.
constexpr Uint32 INTRO_FRAME_MS = 60;
constexpr Uint32 PLAY_FRAME_MS = 20;
constexpr Uint32 BATTLE_AFTER_MS = 6000;

// Of a larger block only so much can change in a game: 53 shots leave the rest of a pool alone.
constexpr size_t MOST_KEPT_BYTES = 4096;

// The loop is private. An explicit instantiation may name what is private, and so hands it out.
template <void (BattleField::*loop)()> struct Opened {
    friend void runLoop(BattleField& game) { (game.*loop)(); }
};
void runLoop(BattleField& game);
template struct Opened<&BattleField::runMainLoop>;

size_t keptBytes(const Block& block) {
    return std::min(block.bytes, MOST_KEPT_BYTES);
}

SDL_Event eventOf(Uint8 type, SDLKey key) {
    SDL_Event event = {};
    event.type = type;
    event.key.keysym.sym = key;
    return event;
}

void* takeField() {
    watchBlocks(true);
    void* memory = operator new(sizeof(BattleField));
    watchBlocks(false);
    return memory;
}

}  // namespace

HeldGame::HeldGame() : field(*static_cast<BattleField*>(takeField())) {
    putHooks();
}

void HeldGame::putHooks() {
    pilot::stopDrawing();
    front::Hooks& hooks = front::hooks();
    hooks.SDL_GetTicks = [this] { return readClock(); };
    hooks.SDL_Delay = [this](Uint32 ms) { clockMs += ms; };
    hooks.SDL_PollEvent = [this](SDL_Event* event) { return poll(event); };
    hooks.SDL_Flip = [this](SDL_Surface*) {
        shown();
        return 0;
    };
    hooks.Mix_PlayChannelTimed = [](int channel, Mix_Chunk*, int, int) { return channel; };
}

void HeldGame::construct() {
    watchBlocks(true);
    new (&field) BattleField(FIELD_WIDTH_PX, FIELD_HEIGHT_PX, false, true);
    watchBlocks(false);
}

void HeldGame::load() {
    toKeep = AT_THE_FIRST_FRAME;
    playFresh(AT_THE_FIRST_FRAME, FIRST_CLOCK_MS, [this](Moment& next) {
        if (kept[IN_BATTLE].blocks > 0) {
            return false;
        }
        toKeep = comeOn(next);
        return true;
    });
}

void HeldGame::playFresh(Start start, Uint32 clock, const NextMoment& next) {
    clockMs = clock;
    clockReadings = 0;
    playFromMs = 0;
    nextMoment = [this, start, next, begun = start == AT_THE_FIRST_FRAME](Moment& now) mutable {
        if (begun) {
            return next(now);
        }
        begun = comeOn(now) == start;
        return true;
    };
    construct();
}

// The game's loop sets its own fields and then looks at the clock, in the first frame always; that
// look puts everything back.
void HeldGame::play(Start start, Uint32 clock, const NextMoment& next) {
    nextMoment = next;
    toBegin = start;
    clockReadings = 0;
    moment.events.clear();
    nextEvent = 0;
    kept[AT_THE_FIRST_FRAME].clockMs = clock;
    watchBlocks(true);
    runLoop(field);
    watchBlocks(false);
}

Uint32 HeldGame::readClock() {
    ++clockReadings;
    // The first look of a game, or the second behind a frame: both begin a pass of the loop.
    const bool passBegins = clockReadings == (toKeep == AT_THE_FIRST_FRAME ? 1 : 2);
    if (toBegin != START_COUNT) {
        putBack(toBegin);
        toBegin = START_COUNT;
    } else if (toKeep != START_COUNT && passBegins) {
        keep(toKeep);
        toKeep = START_COUNT;
    }
    return clockMs;
}

void HeldGame::shown() {
    const Unwatched own;
    ++frames;
    clockReadings = 0;
    moment.events.clear();
    moment.ms = 0;
    nextEvent = 0;
    if (!nextMoment(moment)) {
        moment.events.push_back(eventOf(SDL_QUIT, SDLK_UNKNOWN));
    }
    clockMs += moment.ms;
}

int HeldGame::poll(SDL_Event* event) {
    if (nextEvent == moment.events.size()) {
        return 0;
    }
    *event = moment.events[nextEvent++];
    return 1;
}

// One frame of the way through the intro to the starts in play. Tells the start that begins with the
// next frame, START_COUNT for none.
HeldGame::Start HeldGame::comeOn(Moment& next) {
    if (field.gamePhase != BattleField::PHASE_PLAY) {
        next.ms = INTRO_FRAME_MS;
        if (field.gamePhase == BattleField::PHASE_HINT) {
            next.events.push_back(eventOf(SDL_KEYDOWN, SDLK_RETURN));
        }
        return START_COUNT;
    }
    next.ms = PLAY_FRAME_MS;
    if (playFromMs == 0) {
        playFromMs = clockMs;
        return AT_PLAY;
    }
    return clockMs - playFromMs == BATTLE_AFTER_MS ? IN_BATTLE : START_COUNT;
}

void HeldGame::keep(Start start) {
    const Unwatched own;
    Kept& to = kept[start];
    to.blocks = blockCount();
    to.clockMs = clockMs;
    for (size_t i = 0; i < to.blocks; ++i) {
        to.bytes.insert(to.bytes.end(), block(i).at, block(i).at + keptBytes(block(i)));
    }
    to.poolHash = restHash(to);
}

// Starts keep the blocks of the starts before them; what games have taken since goes.
void HeldGame::putBack(Start start) {
    freeBlocksFrom(kept[IN_BATTLE].blocks);
    const unsigned char* from = kept[start].bytes.data();
    for (size_t i = 0; i < kept[start].blocks; ++i) {
        std::memcpy(block(i).at, from, keptBytes(block(i)));
        from += keptBytes(block(i));
    }
    clockMs = kept[start].clockMs;
}

size_t HeldGame::changedBlocks(Start start) const {
    const unsigned char* from = kept[start].bytes.data();
    size_t changed = 0;
    for (size_t i = 0; i < kept[start].blocks; ++i) {
        changed += std::memcmp(block(i).at, from, keptBytes(block(i))) != 0 ? 1 : 0;
        from += keptBytes(block(i));
    }
    return changed + (restHash(kept[start]) != kept[start].poolHash ? 1 : 0);
}

// FNV-1a over the words that are not kept: far more than a game may touch, and only looked at.
unsigned long long HeldGame::restHash(const Kept& from) const {
    unsigned long long hash = 0xcbf29ce484222325ULL;
    for (size_t i = 0; i < from.blocks; ++i) {
        const Block& whole = block(i);
        for (size_t at = keptBytes(whole); at + sizeof hash <= whole.bytes; at += sizeof hash) {
            unsigned long long word = 0;
            std::memcpy(&word, whole.at + at, sizeof word);
            hash = (hash ^ word) * 0x100000001b3ULL;
        }
    }
    return hash;
}

}  // namespace fuzz
