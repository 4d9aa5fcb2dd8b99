// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_RANDOM_H
#define KRAVOLTIX_PILOT_RANDOM_H

#include <cstdint>

namespace pilot {

// Numbers that are the same for the same seed on every machine and with every library.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    // A whole number from `least` to `most`, both included; the range fits an int.
    int between(int least, int most) {
        const std::uint64_t range =
            static_cast<std::uint64_t>(static_cast<std::int64_t>(most) - least) + 1;
        return static_cast<int>(least + static_cast<std::int64_t>((next() >> 32) * range >> 32));
    }

    bool chance(int percent) { return between(1, 100) <= percent; }

private:
    // SplitMix64: each step adds an odd constant, so that neighbouring seeds share nothing.
    std::uint64_t next() {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state;
};

}  // namespace pilot

#endif
