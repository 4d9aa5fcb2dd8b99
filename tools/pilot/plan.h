// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_PLAN_H
#define KRAVOLTIX_PILOT_PLAN_H

#include <SDL.h>

#include <string>

namespace pilot {

// What a pilot has set out to do.
struct Plan {
    const char* name;
    const char* purpose;   // for the help
    bool plays;            // false: presses Return, and then no key any more
    bool dodges;           // false: stays under the enemies, come what may
    int rockets;           // how many it fires at most
    float doubtPx;         // it fires the laser when a shot would hit from so far aside, too
    int leavesEnemy;       // the energy that its laser leaves to each enemy
    Uint32 escapeAfterMs;  // of play; 0 for when there is nothing left to do
    Uint32 introFrameMs;   // 0 for the frames of the machine
    Uint32 playFrameMs;    // likewise
};

// clang-format off
constexpr Plan PLANS[] = {
    {"winner", "wins: destroys all seven, three with rockets, and leaves",
     true, true, 3, 5, 0, 0, 0, 0},
    {"purist", "fires no rocket: destroys five with fifty shots, and leaves",
     true, true, 0, 9, 0, 0, 0, 0},
    {"idler", "presses Return and then nothing", false, false, 0, 0, 0, 0, 0, 0},
    {"leaver", "plays to win, and leaves in the middle of the fight",
     true, true, 3, 5, 0, 6000, 0, 0},
    // It keeps enemies alive, so that they shoot at it, and fires at no enemy at the edge of the
    // screen: the game goes on in the same way when an enemy's picture is missing. Its frames are
    // just long enough for a step of every animation, so that few of them show every picture.
    {"tourist", "shows every picture of the game in few frames, and is lost",
     true, false, 1, 5, 8, 0, 51, 50},
};
// clang-format on

// Null when there is none of this name.
const Plan* planOf(const std::string& name);

}  // namespace pilot

#endif
