// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include <cstdio>
#include <vector>

#include "camera.h"
#include "gas.h"

namespace {

constexpr int PICTURES = 44;   // two empty ones follow them
constexpr int WEAKENED = 22;   // picture from which the smoke has weak places
constexpr int STEPS = 2;       // per picture,
constexpr int LEAP_STEPS = 6;  // and in the leap to picture 1

struct Event {
    float time;  // pictures
    Burst burst;
};

// The first burst sets the size of the blast, the small ones keep its skin alive, and the one lit
// after picture 15 is in front of the whole ship two pictures before the ship disappears.
// clang-format off
const Event EVENTS[] = {
    //       centre                       radius fuel   heat   uneven speed spots seed
    {-1.0f, {{  0.0f,   0.0f,  0.0f, 0.0f},  8.45f, 4.25f, 1.15f, 0.27f, 1.0f, 3.3f, 311}},
    { 5.5f, {{-13.0f,   9.0f, 20.0f, 0.0f},  4.80f, 2.00f, 0.98f, 0.30f, 0.8f, 6.0f, 20}},
    { 8.0f, {{ 14.0f,  -8.0f, 21.0f, 0.0f},  4.80f, 2.00f, 0.86f, 0.30f, 0.8f, 6.0f, 30}},
    {10.0f, {{  6.0f,  15.0f, 21.0f, 0.0f},  4.80f, 2.00f, 0.80f, 0.30f, 0.8f, 6.0f, 40}},
    {12.5f, {{-10.0f, -12.0f, 22.0f, 0.0f},  4.80f, 2.00f, 0.78f, 0.30f, 0.8f, 6.0f, 50}},
    {15.0f, {{  1.0f,   1.5f, 13.0f, 0.0f}, 13.00f, 1.90f, 1.40f, 0.35f, 1.5f, 7.0f, 60}},
};
// clang-format on

void lightEvents(Gas& gas, float from, float to) {
    for (const Event& event : EVENTS) {
        if (event.time >= from && event.time < to) {
            gas.light(event.burst);
        }
    }
}

// Gas time up to a picture from the one before: in the flash of picture 1 the ball leaps to most of
// its size and over the whole ship, and then grows slowly enough for the eye to follow.
float pace(int picture) {
    if (picture < 2) {
        return picture == 0 ? 1.0f : 4.0f;
    }
    const float gathering = 0.08f + 0.06f * static_cast<float>(picture);
    return gathering < 1.0f ? gathering : 1.0f;
}

}  // namespace

// Writes the pictures to standard output one after the other: 84 rows of 84 pixels of four floats
// (red, green, blue in linear light, coverage).
int main() {
    Gas gas;
    Camera camera;
    for (int picture = 0; picture < PICTURES; ++picture) {
        const int steps = picture == 1 ? LEAP_STEPS : STEPS;
        const float part = 1.0f / static_cast<float>(steps);
        for (int step = 0; step < steps; ++step) {
            const float time = static_cast<float>(picture) - 1.0f + static_cast<float>(step) * part;
            lightEvents(gas, time, time + part);
            gas.step(pace(picture) * part);
        }
        if (picture == WEAKENED) {
            gas.weaken();
        }
        const std::vector<Vec4> shot = camera.photograph(gas, static_cast<float>(picture));
        if (std::fwrite(shot.data(), sizeof(Vec4), shot.size(), stdout) != shot.size()) {
            return 1;
        }
        std::fflush(stdout);
    }
    return 0;
}
