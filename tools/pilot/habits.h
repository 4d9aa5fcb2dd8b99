// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_HABITS_H
#define KRAVOLTIX_PILOT_HABITS_H

#include <SDL.h>

namespace pilot {

// What differs from one human to the next, and from one machine to the next; a seed gives one of
// each. Seed 0 is the steady hand: the quickest reaction, a perfect eye, and a machine that shows
// every frame in time.
struct Habits {
    Uint32 seed;
    Uint32 returnAfterMs;  // from the hint to the press of Return
    Uint32 reactionMs;     // from what is seen to the key that answers it
    int misjudgedPx;       // the most by which the course of a shot is misjudged, to either side
    int lateFramesPercent;
};

Habits habitsOf(Uint32 seed);

}  // namespace pilot

#endif
