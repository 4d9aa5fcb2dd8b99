// SPDX-License-Identifier: MIT
#include "pilot/habits.h"

#include "pilot/random.h"

namespace pilot {
namespace {

constexpr int QUICKEST_REACTION_MS = 80;
constexpr int SLOWEST_REACTION_MS = 250;
constexpr int SOONEST_RETURN_MS = 200;
constexpr int LATEST_RETURN_MS = 3000;
constexpr int WORST_EYE_PX = 12;
constexpr int WORST_LATE_FRAMES_PERCENT = 10;

}  // namespace

Habits habitsOf(Uint32 seed) {
    if (seed == 0) {
        return {0, SOONEST_RETURN_MS, QUICKEST_REACTION_MS, 0, 0};
    }
    Random random(seed);
    Habits habits = {};
    habits.seed = seed;
    habits.returnAfterMs = static_cast<Uint32>(random.between(SOONEST_RETURN_MS, LATEST_RETURN_MS));
    habits.reactionMs =
        static_cast<Uint32>(random.between(QUICKEST_REACTION_MS, SLOWEST_REACTION_MS));
    habits.misjudgedPx = random.between(0, WORST_EYE_PX);
    habits.lateFramesPercent = random.between(0, WORST_LATE_FRAMES_PERCENT);
    return habits;
}

}  // namespace pilot
