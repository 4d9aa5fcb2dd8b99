// SPDX-License-Identifier: MIT
#include "fuzz/games.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace fuzz {
namespace {

// Frame times by their number in a step; the last number stands for four bytes of its own. With 0
// the clock stands still, and the game sleeps a millisecond.
constexpr Uint32 FRAME_TIMES_MS[] = {0,  1,  4,   10,  16,   17,   20,  33,
                                     50, 51, 100, 266, 1000, 1001, 4000};
constexpr unsigned OWN_FRAME_TIME = 15;

// Clock readings at the start: the game's own first one, the end of the wait before the title, and
// readings from which the clock soon passes 2^31 and 2^32.
constexpr Uint32 CLOCKS_MS[] = {266,         0,           3000,        3001,
                                0x7fffff00U, 0x7fffe000U, 0xffffff00U, 0xffffe000U};
constexpr unsigned CLOCK_COUNT = 8;

constexpr SDLKey KEYS[] = {SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT, SDLK_a, SDLK_s};
constexpr unsigned KEY_COUNT = 6;

// What happens behind a step's first frame: 1 to 6 press a key, 7 to 12 let it go.
constexpr unsigned PRESS = 1;
constexpr unsigned LET_GO = PRESS + KEY_COUNT;
constexpr unsigned RETURN = 13;
constexpr unsigned STRIKE_ALL = 14;  // all keys pressed and let go within one frame
constexpr unsigned OTHER = 15;       // a byte of its own tells the event

constexpr unsigned ESCAPE = 0;
constexpr unsigned CLOSE = 1;

// Frames of a step: up to 128 one by one, then in eights.
constexpr unsigned SINGLE_FRAMES = 128;
constexpr unsigned FRAMES_IN_ONE = 8;

SDL_Event keyEvent(bool pressed, SDLKey key) {
    SDL_Event event = {};
    event.type = pressed ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = pressed ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = key;
    return event;
}

}  // namespace

Game::Game(const std::uint8_t* bytes, size_t count) : at(bytes), end(bytes + count) {
    const unsigned head = byte();
    from = static_cast<HeldGame::Start>(head % HeldGame::START_COUNT);
    clockMs = CLOCKS_MS[head / HeldGame::START_COUNT % CLOCK_COUNT];
}

std::uint8_t Game::byte() {
    return at == end ? std::uint8_t{0} : *at++;
}

bool Game::next(Moment& moment) {
    if (framesTold == MOST_FRAMES || (framesLeft == 0 && at == end)) {
        return false;
    }
    ++framesTold;
    if (framesLeft == 0) {
        readStep(moment);
    }
    --framesLeft;
    moment.ms = ms;
    return true;
}

void Game::readStep(Moment& moment) {
    const unsigned what = byte();
    const unsigned count = byte();
    framesLeft = count < SINGLE_FRAMES ? count + 1 : (count - SINGLE_FRAMES + 1) * FRAMES_IN_ONE;
    const unsigned time = what >> 4;
    if (time == OWN_FRAME_TIME) {
        ms = 0;
        for (unsigned shift = 0; shift < 32; shift += 8) {
            ms |= static_cast<Uint32>(byte()) << shift;
        }
    } else {
        ms = FRAME_TIMES_MS[time];
    }
    addEvents(what & 15, moment);
}

void Game::addEvents(unsigned action, Moment& moment) {
    if (action >= PRESS && action < LET_GO) {
        moment.events.push_back(keyEvent(true, KEYS[action - PRESS]));
    } else if (action >= LET_GO && action < RETURN) {
        moment.events.push_back(keyEvent(false, KEYS[action - LET_GO]));
    } else if (action == RETURN) {
        moment.events.push_back(keyEvent(true, SDLK_RETURN));
    } else if (action == STRIKE_ALL) {
        for (const bool pressed : {true, false}) {
            for (const SDLKey key : KEYS) {
                moment.events.push_back(keyEvent(pressed, key));
            }
        }
    } else if (action == OTHER) {
        addOther(moment);
    }
}

// Any event with any content: its bytes come from the input.
void Game::addOther(Moment& moment) {
    const unsigned kind = byte();
    if (kind == ESCAPE) {
        moment.events.push_back(keyEvent(true, SDLK_ESCAPE));
        return;
    }
    SDL_Event event = {};
    if (kind == CLOSE) {
        event.type = SDL_QUIT;
    } else {
        std::uint8_t content[sizeof event.key] = {};
        std::generate(std::begin(content), std::end(content), [this] { return byte(); });
        std::memcpy(&event, content, sizeof content);
        event.type = static_cast<Uint8>(kind);
        const bool isKey = kind == SDL_KEYDOWN || kind == SDL_KEYUP;
        if (isKey) {
            // A key is an enumeration: SDL makes only these.
            std::uint32_t key = 0;
            std::memcpy(&key, content + 4, sizeof key);
            event.key.keysym.sym = static_cast<SDLKey>(key % SDLK_LAST);
        }
    }
    moment.events.push_back(event);
}

namespace {

// A step of one frame or more with what happens behind its first one.
class Writer {
public:
    void head(Uint32 clock) {
        const auto* found = std::find(std::begin(CLOCKS_MS), std::end(CLOCKS_MS), clock);
        const auto index = found == std::end(CLOCKS_MS) ? 0 : found - std::begin(CLOCKS_MS);
        bytes.push_back(static_cast<std::uint8_t>(index * HeldGame::START_COUNT));
    }

    void frame(Uint32 ms, unsigned action, unsigned kind) {
        if (frames > 0 && ms == stepMs && action == 0 && frames < SINGLE_FRAMES) {
            ++frames;
            return;
        }
        flush();
        frames = 1;
        stepMs = ms;
        stepAction = action;
        stepKind = kind;
    }

    void flush() {
        if (frames == 0) {
            return;
        }
        const auto* found = std::find(std::begin(FRAME_TIMES_MS), std::end(FRAME_TIMES_MS), stepMs);
        const unsigned time = static_cast<unsigned>(found - std::begin(FRAME_TIMES_MS));
        bytes.push_back(static_cast<std::uint8_t>(time << 4 | stepAction));
        bytes.push_back(static_cast<std::uint8_t>(frames - 1));
        for (unsigned shift = 0; time == OWN_FRAME_TIME && shift < 32; shift += 8) {
            bytes.push_back(static_cast<std::uint8_t>(stepMs >> shift));
        }
        if (stepAction == OTHER) {
            bytes.push_back(static_cast<std::uint8_t>(stepKind));
        }
        frames = 0;
    }

    std::vector<std::uint8_t> bytes;

private:
    unsigned frames = 0;
    Uint32 stepMs = 0;
    unsigned stepAction = 0;
    unsigned stepKind = 0;
};

unsigned actionOf(const front::ScriptedEvent& event, unsigned& kind) {
    kind = CLOSE;
    if (event.type == SDL_QUIT) {
        return OTHER;
    }
    if (event.key == SDLK_ESCAPE && event.type == SDL_KEYDOWN) {
        kind = ESCAPE;
        return OTHER;
    }
    if (event.key == SDLK_RETURN && event.type == SDL_KEYDOWN) {
        return RETURN;
    }
    for (unsigned i = 0; i < KEY_COUNT; ++i) {
        if (event.key == KEYS[i]) {
            return i + (event.type == SDL_KEYDOWN ? PRESS : LET_GO);
        }
    }
    return 0;
}

// Frame times of a scenario, frame by frame.
class Times {
public:
    explicit Times(const front::Scenario& from) : scenario(from) {}

    Uint32 next(Uint32 frame, Uint32 clock) {
        while (run < scenario.frameRuns.size() && done == scenario.frameRuns[run].frames) {
            ++run;
            done = 0;
        }
        if (run < scenario.frameRuns.size()) {
            ++done;
            ms = scenario.frameRuns[run].ms;
            return ms;
        }
        while (time < scenario.frameTimes.size() &&
               scenario.frameTimes[time].when.isDue(frame, clock)) {
            ms = scenario.frameTimes[time++].ms;
        }
        return ms;
    }

private:
    const front::Scenario& scenario;
    size_t run = 0;
    size_t time = 0;
    Uint32 done = 0;
    Uint32 ms = front::Scenario::DEFAULT_FRAME_MS;
};

}  // namespace

// Several events behind one frame are told one frame after the other.
std::vector<std::uint8_t> bytesOf(const front::Scenario& scenario) {
    Writer writer;
    writer.head(scenario.startMs);
    Times times(scenario);
    Uint32 clock = scenario.startMs;
    size_t event = 0;
    for (Uint32 frame = 1; frame <= MOST_FRAMES && event < scenario.events.size(); ++frame) {
        const Uint32 ms = times.next(frame, clock);
        clock += ms;
        unsigned action = 0;
        unsigned kind = 0;
        if (scenario.events[event].when.isDue(frame, clock)) {
            action = actionOf(scenario.events[event++], kind);
        }
        writer.frame(ms, action, kind);
    }
    writer.flush();
    return writer.bytes;
}

}  // namespace fuzz
