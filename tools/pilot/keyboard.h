// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_KEYBOARD_H
#define KRAVOLTIX_PILOT_KEYBOARD_H

#include <SDL.h>

#include <deque>
#include <ostream>

namespace pilot {

// The arrow keys that are held.
struct Stick {
    bool left = false;
    bool right = false;
    bool up = false;
    bool down = false;
};

// The keys under a pilot's hand. A key that the pilot decides to move moves later, when the hand
// has followed; then the game finds it in its event queue, and the scenario gets its line.
//
// Driven once a frame: frameShown(), then nextEvent() until the queue is empty. Times are clock
// readings in milliseconds.
class Keyboard {
public:
    // Lines of the scenario go to `scenario`, which outlives the keyboard; null for none.
    explicit Keyboard(std::ostream* scenario) : out(scenario) {}

    // The key is held, or let go, from this time on; decisions come in the order of their times.
    void hold(SDLKey key, bool held, Uint32 atMs);

    // A stroke of a finger: pressed at this time, and let go as soon as a finger can.
    void strike(SDLKey key, Uint32 atMs);

    // Whether a finger can strike the key at this time again.
    bool canStrike(SDLKey key, Uint32 atMs) const;

    // Whether the key is held once all decisions have become movements.
    bool willBeHeld(SDLKey key) const { return decided[key]; }

    // The arrow keys as they will be at this time, by what has been decided so far.
    Stick stickAt(Uint32 atMs) const;

    // The frame with this number has been shown: keys whose time has come move.
    void frameShown(Uint32 frame, Uint32 clockMs);

    // The next movement for the game's event queue; false when there is none.
    bool nextEvent(SDL_Event& event);

private:
    struct Movement {
        Uint32 atMs;
        SDLKey key;
        bool held;
    };

    void move(const Movement& movement, Uint32 frame);

    std::ostream* out;
    std::deque<Movement> decisions;  // not yet movements, the earliest first
    std::deque<SDL_Event> events;    // not yet seen by the game
    bool decided[SDLK_LAST] = {};
    bool moved[SDLK_LAST] = {};
    Uint32 nextStrikeMs[SDLK_LAST] = {};
};

}  // namespace pilot

#endif
