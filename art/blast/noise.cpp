// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include "noise.h"

namespace {

unsigned scramble(unsigned bits) {
    bits = (bits ^ (bits >> 16)) * 0x7feb352du;
    bits = (bits ^ (bits >> 15)) * 0x846ca68bu;
    return bits ^ (bits >> 16);
}

int roundDown(float value) {
    const int whole = static_cast<int>(value);
    return value < static_cast<float>(whole) ? whole - 1 : whole;
}

float corner(int x, int y, int z, unsigned seed) {
    unsigned bits = scramble(static_cast<unsigned>(x) + seed * 0x9e3779b9u);
    bits = scramble(bits + static_cast<unsigned>(y));
    bits = scramble(bits + static_cast<unsigned>(z));
    return static_cast<float>(bits >> 8) / 8388608.0f - 1.0f;
}

float ease(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float mix(float a, float b, float share) {
    return a + (b - a) * share;
}

}  // namespace

float noise(Vec4 place, unsigned seed) {
    const int x = roundDown(place[0]);
    const int y = roundDown(place[1]);
    const int z = roundDown(place[2]);
    const float across = ease(place[0] - static_cast<float>(x));
    const float down = ease(place[1] - static_cast<float>(y));
    float sheets[2];
    for (int i = 0; i < 2; ++i) {
        const float upper = mix(corner(x, y, z + i, seed), corner(x + 1, y, z + i, seed), across);
        const float lower =
            mix(corner(x, y + 1, z + i, seed), corner(x + 1, y + 1, z + i, seed), across);
        sheets[i] = mix(upper, lower, down);
    }
    return mix(sheets[0], sheets[1], ease(place[2] - static_cast<float>(z)));
}

float roughNoise(Vec4 place, unsigned seed) {
    return (noise(place, seed) + 0.5f * noise(place * all(2.03f), seed + 1) +
            0.25f * noise(place * all(4.01f), seed + 2)) /
           1.4f;
}

Vec4 swirl(Vec4 place, unsigned seed) {
    const float reach = 0.1f;
    Vec4 slopes[3];
    for (int axis = 0; axis < 3; ++axis) {
        Vec4 step = all(0.0f);
        step[axis] = reach;
        for (unsigned part = 0; part < 3; ++part) {
            slopes[axis][part] =
                (noise(place + step, seed + part) - noise(place - step, seed + part)) /
                (2.0f * reach);
        }
    }
    return vec4(slopes[1][2] - slopes[2][1], slopes[2][0] - slopes[0][2],
                slopes[0][1] - slopes[1][0]);
}
