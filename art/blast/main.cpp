// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include <cstdio>
#include <vector>

#include "camera.h"
#include "gas.h"

namespace {

constexpr int PICTURES = 44;  // two empty ones follow them
constexpr int WEAKENED = 22;  // picture from which the smoke has weak places
constexpr int STEPS = 2;      // per picture

struct Event {
    float time;  // pictures
    Burst burst;
};

// The first burst sets the size of the blast, the small ones keep its skin alive, and the one lit
// after picture 15 is in front of the whole ship two pictures before the ship disappears.
// clang-format off
const Event EVENTS[] = {
    //       centre                       radius fuel   heat   uneven speed seed
    {-1.0f, {{  0.0f,   0.0f,  0.0f, 0.0f},  8.85f, 4.25f, 1.15f, 0.32f, 1.0f, 310}},
    { 4.5f, {{-13.0f,   9.0f, 12.0f, 0.0f},  4.50f, 1.90f, 0.90f, 0.70f, 2.0f, 20}},
    { 7.0f, {{ 14.0f,  -8.0f, 13.0f, 0.0f},  4.50f, 1.90f, 0.90f, 0.70f, 2.0f, 30}},
    {10.0f, {{  6.0f,  15.0f, 14.0f, 0.0f},  4.50f, 1.90f, 0.90f, 0.70f, 2.0f, 40}},
    {12.5f, {{-10.0f, -12.0f, 14.0f, 0.0f},  4.50f, 1.90f, 0.90f, 0.70f, 2.0f, 50}},
    {15.0f, {{  2.0f,   3.0f, 11.0f, 0.0f}, 13.00f, 1.90f, 1.30f, 0.35f, 1.5f, 60}},
};
// clang-format on

void lightEvents(Gas& gas, float from, float to) {
    for (const Event& event : EVENTS) {
        if (event.time >= from && event.time < to) {
            gas.light(event.burst);
        }
    }
}

// Gas time up to a picture from the one before: the flash of picture 1 hides a leap, and the ball
// then grows slowly enough for the eye to follow.
float pace(int picture) {
    if (picture < 2) {
        return picture == 0 ? 1.0f : 2.6f;
    }
    const float gathering = 0.105f + 0.078f * static_cast<float>(picture);
    return gathering < 1.0f ? gathering : 1.0f;
}

}  // namespace

// Writes the pictures to standard output one after the other: 84 rows of 84 pixels of four floats
// (red, green, blue in linear light, coverage).
int main() {
    Gas gas;
    Camera camera;
    for (int picture = 0; picture < PICTURES; ++picture) {
        for (int step = 0; step < STEPS; ++step) {
            const float time =
                static_cast<float>(picture) - 1.0f + static_cast<float>(step) / STEPS;
            lightEvents(gas, time, time + 1.0f / STEPS);
            gas.step(pace(picture) / STEPS);
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
