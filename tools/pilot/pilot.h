// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_PILOT_H
#define KRAVOLTIX_PILOT_PILOT_H

#include "driver/battlefield.h"
#include "pilot/foresight.h"
#include "pilot/habits.h"
#include "pilot/keyboard.h"
#include "pilot/plan.h"
#include "pilot/random.h"

#include <vector>

namespace pilot {

// Plays one game by the keyboard. It looks at the running game between two frames, foresees the
// next second, and decides which keys move when its hand has followed.
//
// Driven once a frame from the hint on; owns nothing. Times are clock readings in milliseconds,
// positions pixels as in the game.
class Pilot {
public:
    Pilot(const Plan& whatToDo, const Habits& ownHabits, const BattleField& running,
          Keyboard& keys);

    // A frame has been shown.
    void frameShown(Uint32 clockMs);

private:
    void passIntro();
    void play();
    bool hasFinished() const;
    void leave();

    // what is left to do
    bool isPrey(int enemy) const;
    int shotsNeededFor(int enemy) const;
    int aimedAt(int enemy) const;
    bool mayStillHit(size_t laser) const;
    int rocketsAimedAt(int enemy) const;
    int lasersLeft() const;
    int rocketsLeft() const;
    bool isWorthARocket(int enemy) const;

    // steering
    void chooseTarget(const Foresight& ahead);
    float effortFor(int enemy, const Foresight& ahead) const;
    Point firingPlace(int enemy, const Foresight& ahead) const;
    void steer(const Foresight& ahead);
    Stick bestStick(const Foresight& ahead, Point goal) const;
    float costOf(const Stick& stick, const Foresight& ahead, Point goal) const;

    // fire
    void fireLaser(const Foresight& ahead);
    void fireRocket(const Foresight& ahead);

    const Plan& plan;
    const Habits& habits;
    const BattleField& field;
    Keyboard& keyboard;
    Random random;

    Uint32 nowMs = 0;
    Uint32 hintMs = 0;  // when the hint was seen, 0 before
    Uint32 playMs = 0;  // when play began, 0 before
    Uint32 nextLookMs = 0;
    bool hasLeft = false;

    int target = Foresight::NOBODY;
    int misjudgedPx = 0;            // of the shot that is about to be fired
    std::vector<int> laserTargets;  // the enemy that each laser shot was fired at, by its slot
    std::vector<int> rocketTargets;
};

}  // namespace pilot

#endif
