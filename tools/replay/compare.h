// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_COMPARE_H
#define KRAVOLTIX_REPLAY_COMPARE_H

#include "front/recording.h"

#include <optional>
#include <string>
#include <vector>

// Judges a game that was played again by what was recorded of it, or by what a scenario expects.
namespace replay {

enum class Channel { TEXT, CALLS, PICTURES, END };

const char* nameOf(Channel channel);

struct Difference {
    Channel channel;
    Uint32 frame;         // the first that differs
    std::string message;  // what was expected there, and what came
};

struct Channels {
    bool text = true;
    bool calls = true;
    bool pictures = true;
};

// How much was compared; all zero is no proof.
struct Compared {
    Uint32 frames = 0;
    size_t calls = 0;
    size_t bytes = 0;
};

// The first difference, or none. `compared` tells what none rests on. A recording that was cut off
// is compared as far as it goes.
std::optional<Difference> firstDifference(const front::Recording& expected,
                                          const front::Recording& got, Channels channels,
                                          Compared& compared);

struct Unmet {
    int line;  // of the scenario
    std::string message;
};

std::vector<Unmet> unmetExpectations(const front::Scenario& scenario, const front::Seen& seen);

}  // namespace replay

#endif
