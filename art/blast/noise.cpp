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

// One of twelve slopes that lean along the edges of a cube, times the way from the corner.
float corner(int x, int y, int z, Vec4 way, unsigned seed) {
    unsigned bits = scramble(static_cast<unsigned>(x) + seed * 0x9e3779b9u);
    bits = scramble(bits + static_cast<unsigned>(y));
    bits = scramble(bits + static_cast<unsigned>(z));
    const unsigned edge = (bits >> 8) % 12u;
    const unsigned first = edge < 8 ? 0u : 1u;
    const unsigned second = edge < 4 ? 1u : 2u;
    return (edge & 1u ? way[first] : -way[first]) + (edge & 2u ? way[second] : -way[second]);
}

// Turned so that no size of noise shares its grid with the pixels or with another size.
Vec4 turned(Vec4 p) {
    return vec4(0.36f * p[0] + 0.48f * p[1] - 0.80f * p[2], -0.80f * p[0] + 0.60f * p[1],
                0.48f * p[0] + 0.64f * p[1] + 0.60f * p[2]);
}

float ease(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float mix(float a, float b, float share) {
    return a + (b - a) * share;
}

}  // namespace

float noise(Vec4 place, unsigned seed) {
    const Vec4 p = turned(place);
    const int x = roundDown(p[0]);
    const int y = roundDown(p[1]);
    const int z = roundDown(p[2]);
    const Vec4 in = p - vec4(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
    float sheets[2];
    for (int k = 0; k < 2; ++k) {
        float rows[2];
        for (int j = 0; j < 2; ++j) {
            const Vec4 way = in - vec4(0.0f, static_cast<float>(j), static_cast<float>(k));
            rows[j] =
                mix(corner(x, y + j, z + k, way, seed),
                    corner(x + 1, y + j, z + k, way - vec4(1.0f, 0.0f, 0.0f), seed), ease(in[0]));
        }
        sheets[k] = mix(rows[0], rows[1], ease(in[1]));
    }
    return mix(sheets[0], sheets[1], ease(in[2]));
}

float roughNoise(Vec4 place, unsigned seed) {
    return (noise(place, seed) + 0.5f * noise(turned(place) * all(2.03f), seed + 1) +
            0.25f * noise(turned(turned(place)) * all(4.01f), seed + 2)) /
           1.4f;
}

Vec4 swirl(Vec4 place, unsigned seed) {
    const float reach = 0.1f;
    Vec4 slopes[3] = {all(0.0f), all(0.0f), all(0.0f)};
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
