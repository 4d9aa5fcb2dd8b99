// SPDX-License-Identifier: MIT
#include "benchmark/player.h"

#include "front/front.h"

namespace benchmark {

void Player::putHooks() {
    front::Hooks& all = front::hooks();
    all.SDL_GetTicks = [this] {
        front::real::SDL_GetTicks();
        return clockMs;
    };
    all.SDL_Delay = [this](Uint32 ms) { clockMs += ms; };
    all.SDL_PollEvent = [this](SDL_Event* event) { return poll(event); };
}

void Player::endFrame() {
    ++frames;
    while (nextRun < script.frameRuns.size() && framesOfRun == script.frameRuns[nextRun].frames) {
        ++nextRun;
        framesOfRun = 0;
    }
    if (nextRun < script.frameRuns.size()) {
        ++framesOfRun;
        clockMs += script.frameRuns[nextRun].ms;
        return;
    }
    while (nextTime < script.frameTimes.size() &&
           script.frameTimes[nextTime].when.isDue(frames, clockMs)) {
        frameMs = script.frameTimes[nextTime++].ms;
    }
    clockMs += frameMs;
}

int Player::poll(SDL_Event* event) {
    SDL_Event unused;
    front::real::SDL_PollEvent(&unused);
    if (nextEvent == script.events.size() ||
        !script.events[nextEvent].when.isDue(frames, clockMs)) {
        return 0;
    }
    const front::ScriptedEvent& entry = script.events[nextEvent++];
    *event = SDL_Event();
    event->type = entry.type;
    if (entry.type != SDL_QUIT) {
        event->key.state = entry.type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
        event->key.keysym.sym = entry.key;
    }
    return 1;
}

}  // namespace benchmark
