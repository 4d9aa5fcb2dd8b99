// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_FRAMETIMES_H
#define KRAVOLTIX_PILOT_FRAMETIMES_H

#include "pilot/random.h"

#include <SDL.h>

namespace pilot {

// How long the frames of a machine take, in whole milliseconds, as the game measures them.
class FrameTimes {
public:
    // A machine that shows so many frames a second, 1 to 1000: 60 are 16, 17, 17, 16, ... ms.
    explicit FrameTimes(Uint32 framesPerSecond) : perSecond(framesPerSecond) {}

    // From now on so many frames of a hundred are late.
    void setLateFrames(int percent, Random randomNumbers);

    Uint32 next();

private:
    Uint32 perSecond;
    Uint32 remainder = 0;  // of a second's milliseconds, not yet shown
    int latePercent = 0;
    Random random{0};
};

}  // namespace pilot

#endif
