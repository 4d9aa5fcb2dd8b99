// SPDX-License-Identifier: MIT
#include "pilot/keyboard.h"

#include "front/scenario.h"

#include <algorithm>

namespace pilot {
namespace {

// A quick finger: twelve strokes a second. Each half outlasts the longest frame, since the game
// does not see a key that goes down and up within one.
constexpr Uint32 STROKE_MS = 40;
constexpr Uint32 REST_MS = 40;

void setArrow(Stick& stick, SDLKey key, bool held) {
    switch (key) {
    case SDLK_LEFT:
        stick.left = held;
        break;
    case SDLK_RIGHT:
        stick.right = held;
        break;
    case SDLK_UP:
        stick.up = held;
        break;
    case SDLK_DOWN:
        stick.down = held;
        break;
    default:
        break;
    }
}

}  // namespace

void Keyboard::hold(SDLKey key, bool held, Uint32 atMs) {
    if (decided[key] == held) {
        return;
    }
    decided[key] = held;
    const auto later = std::find_if(decisions.begin(), decisions.end(),
                                    [=](const Movement& decision) { return decision.atMs > atMs; });
    decisions.insert(later, {atMs, key, held});
}

void Keyboard::strike(SDLKey key, Uint32 atMs) {
    hold(key, true, atMs);
    hold(key, false, atMs + STROKE_MS);
    nextStrikeMs[key] = atMs + STROKE_MS + REST_MS;
}

bool Keyboard::canStrike(SDLKey key, Uint32 atMs) const {
    return atMs >= nextStrikeMs[key];
}

Stick Keyboard::stickAt(Uint32 atMs) const {
    Stick stick = {moved[SDLK_LEFT], moved[SDLK_RIGHT], moved[SDLK_UP], moved[SDLK_DOWN]};
    for (const Movement& decision : decisions) {
        if (decision.atMs <= atMs) {
            setArrow(stick, decision.key, decision.held);
        }
    }
    return stick;
}

void Keyboard::frameShown(Uint32 frame, Uint32 clockMs) {
    while (!decisions.empty() && decisions.front().atMs <= clockMs) {
        move(decisions.front(), frame);
        decisions.pop_front();
    }
}

void Keyboard::move(const Movement& movement, Uint32 frame) {
    moved[movement.key] = movement.held;
    SDL_Event event = {};
    event.type = movement.held ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = movement.held ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = movement.key;
    events.push_back(event);
    if (out != nullptr) {
        *out << "frame " << frame << (movement.held ? " down " : " up ")
             << front::keyWord(movement.key) << '\n';
    }
}

bool Keyboard::nextEvent(SDL_Event& event) {
    if (events.empty()) {
        return false;
    }
    event = events.front();
    events.pop_front();
    return true;
}

}  // namespace pilot
