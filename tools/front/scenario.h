// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_SCENARIO_H
#define KRAVOLTIX_FRONT_SCENARIO_H

#include <SDL.h>

#include <istream>
#include <string>
#include <vector>

// A game written down: how long each frame takes, which keys are pressed when, which pictures are
// kept, and which library calls fail. README.md beside this file tells the text format.
namespace front {

// A frame, counted by SDL_Flip from 1, or a reading of the clock in milliseconds.
struct When {
    enum Unit { FRAME, CLOCK_MS };
    Unit unit;
    Uint32 value;

    bool isDue(Uint32 frame, Uint32 clockMs) const {
        return value <= (unit == FRAME ? frame : clockMs);
    }
};

struct FrameTime {
    When when;
    Uint32 ms;
};

struct ScriptedEvent {
    When when;
    Uint8 type;  // SDL_KEYDOWN, SDL_KEYUP or SDL_QUIT
    SDLKey key;  // SDLK_UNKNOWN with SDL_QUIT
};

struct KeptPicture {
    When when;
    std::string file;
};

// The n-th call of a function fails, and SDL_GetError() tells the text then.
struct Failure {
    std::string function;
    Uint32 call;
    std::string text;
};

struct Scenario {
    // The game's own first frame time: an earlier clock would make its second one wrap.
    static constexpr Uint32 DEFAULT_START_MS = 266;
    static constexpr Uint32 DEFAULT_FRAME_MS = 20;
    // A game that nobody ends is ended here: more than half an hour at the default frame time.
    static constexpr Uint32 DEFAULT_LAST_FRAME = 100000;

    Uint32 startMs = DEFAULT_START_MS;
    Uint32 lastFrame = DEFAULT_LAST_FRAME;
    // Each list in the order of its lines: an entry waits for those before it.
    std::vector<FrameTime> frameTimes;
    std::vector<ScriptedEvent> events;
    std::vector<KeptPicture> pictures;
    std::vector<Failure> failures;
};

// Reads a scenario to its end. When a line is wrong, returns false with `error` set to
// "NAME:LINE: what is wrong"; the scenario is not to be used then.
bool readScenario(std::istream& in, const std::string& name, Scenario& scenario,
                  std::string& error);

// The scenario's word for a key, empty when it has none.
std::string keyWord(SDLKey key);

}  // namespace front

#endif
