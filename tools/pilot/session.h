// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_SESSION_H
#define KRAVOLTIX_PILOT_SESSION_H

#include "driver/battlefield.h"
#include "pilot/frametimes.h"
#include "pilot/habits.h"
#include "pilot/keyboard.h"
#include "pilot/pilot.h"

#include <functional>
#include <memory>
#include <ostream>

namespace pilot {

// What a game came to.
struct Result {
    Uint32 playMs;  // of play: until the last enemy was gone, the ship exploded, or the pilot left
    int destroyed;  // enemies
    int energy;     // of the ship, 0 when it was lost
    int lasers;     // shots fired
    int laserHits;
    int rockets;
    int rocketHits;
    bool lost;
};

// One game with a pilot at the keyboard, in this process and in the memory of a real one; the
// clock advances by the time of each frame, whatever the machine needs. Stands in front of SDL's
// clock, events and flip. One session in a process.
class Session {
public:
    // A machine that shows so many frames a second. Lines of a scenario go to `scenario`, null for
    // none.
    Session(Uint32 framesPerSecond, std::ostream* scenario);

    // From now on all frames take so long, in the intro and in play; 0 for those of the machine.
    void fixFrameTimes(Uint32 introMs, Uint32 playMs);

    // Plays the game to its end, without sound. `atHint` is called when the game waits for Return:
    // it has to give the game to a pilot.
    Result play(const std::function<void()>& atHint);

    // The pilot that plays from here on, and the machine that it plays on.
    void takeOver(const Plan& plan, const Habits& habits);

private:
    void putHooks();
    void flipped();
    void tickClock();
    void watch();
    void countHits();

    BattleField* field;  // garbage before the game starts
    std::ostream* out;
    FrameTimes frameTimes;
    Keyboard keyboard;
    Habits pilotHabits = {};
    std::unique_ptr<Pilot> pilot;
    std::function<void()> whenHintStands;

    Uint32 clockMs;
    Uint32 frame = 0;         // frames shown
    Uint32 frameMs = 0;       // of the last frame
    Uint32 introFrameMs = 0;  // 0 for the machine's own times
    Uint32 playFrameMs = 0;
    Uint32 playFromMs = 0;
    bool isOver = false;  // the result stands, though the game may go on
    int energies[BattleField::ENEMIES] = {};
    Result result = {};
};

}  // namespace pilot

#endif
