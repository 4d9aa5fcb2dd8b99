// SPDX-License-Identifier: MIT
#include "pilot/frametimes.h"

namespace pilot {
namespace {

constexpr Uint32 SECOND_MS = 1000;

// A late frame misses its time by up to half a frame of 60 a second: a machine that is busy for a
// moment, too short to be seen as a stall.
constexpr int LEAST_DELAY_MS = 1;
constexpr int MOST_DELAY_MS = 8;

}  // namespace

void FrameTimes::setLateFrames(int percent, Random randomNumbers) {
    latePercent = percent;
    random = randomNumbers;
}

Uint32 FrameTimes::next() {
    remainder += SECOND_MS;
    Uint32 ms = remainder / perSecond;
    remainder %= perSecond;
    if (latePercent > 0 && random.chance(latePercent)) {
        ms += static_cast<Uint32>(random.between(LEAST_DELAY_MS, MOST_DELAY_MS));
    }
    return ms;
}

}  // namespace pilot
