// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_BENCHMARK_PLAYER_H
#define KRAVOLTIX_BENCHMARK_PLAYER_H

#include "front/scenario.h"

namespace benchmark {

// Plays a scenario with as few instructions as it takes: clock and keys, nothing is looked at. What a
// bare game does for itself (asking SDL for events, for the time) is still done.
class Player {
public:
    explicit Player(const front::Scenario& wanted)
        : script(wanted), clockMs(wanted.startMs), frameMs(front::Scenario::DEFAULT_FRAME_MS) {}

    // The clock and the events of the game. Those who put hooks of their own later go on to these.
    void putHooks();

    // A picture is on the screen: the clock goes on.
    void endFrame();

    Uint32 frame() const { return frames; }  // ended so far
    Uint32 clock() const { return clockMs; }

private:
    int poll(SDL_Event* event);

    front::Scenario script;
    Uint32 clockMs;
    Uint32 frameMs;
    Uint32 frames = 0;
    Uint32 framesOfRun = 0;
    size_t nextRun = 0;
    size_t nextTime = 0;
    size_t nextEvent = 0;
};

}  // namespace benchmark

#endif
