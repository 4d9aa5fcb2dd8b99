// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include "camera.h"

#include <cmath>

namespace {

// how thick the smoke is
constexpr float EXTINCTION = 0.80f;    // per px at soot 1
constexpr float RIM_PX = 32.0f;        // further out it gets thinner, the thinnest first,
constexpr float RIM_RATE = 0.14f;      // so much soot per px, so that nothing ends in an edge
constexpr float RIM_COOLING = 0.06f;   // and cooler by this share per px: dimmed yellow is olive
constexpr float TEAR_FROM = 21.5f;     // picture from which weak smoke tears,
constexpr float TEAR_TO = 43.5f;       // and at which nearly all is torn
constexpr float TEAR_EDGE = 0.35f;     // strength over which smoke goes from clear to full
constexpr float TORN_AT_LAST = 1.2f;   // strength, counted from the clear side of that edge
constexpr float OLD_THINNING = 0.86f;  // share of the extinction that is gone in the end

// light; directions point to the lamp, x right, y down, z to the viewer
constexpr float KEY_X = -0.44f;
constexpr float KEY_Y = -0.60f;
constexpr float KEY_Z = 0.66f;
constexpr float KEY_SHADOW = 0.8f;      // share of the extinction that the key light feels
constexpr float OLD_KEY_SHADOW = 2.4f;  // in the end: thin smoke would look flat otherwise
constexpr float SKY_SHADOW = 6.0f;      // how much thick smoke around darkens a place
constexpr int SKY_WIDTH_CELLS = 5;
constexpr int GLOW_WIDTH_CELLS = 4;  // how far the fire lights the smoke
const Vec4 KEY_COLOUR = {2.40f, 2.16f, 1.824f, 0.0f};
const Vec4 SKY_COLOUR = {0.20f, 0.19f, 0.22f, 0.0f};
const Vec4 GLOW_COLOUR = {9.0f, 2.34f, 0.36f, 0.0f};
const Vec4 SMOKE_COLOUR = {0.066f, 0.045f, 0.036f, 0.0f};

// Fire is not lit by the lamp, but lobes need form: heat looks this much lower in the shade.
constexpr float SHADED_HEAT = 0.48f;
constexpr float KEY_HEAT = 0.567f;
constexpr float SKY_HEAT = 0.305f;
constexpr float SMOKELESS_HEAT = 0.4f;  // fire seen hotter than this hides its smoke's colour

// Gaps between lobes are dark, or all lobes would melt into one yellow ball.
constexpr int GAP_WIDTH_CELLS = 3;
constexpr float GAP_FROM = 0.48f;     // mean soot around a place that lies in a shallow gap,
constexpr float GAP_DEEP = 0.80f;     // and in a deep one;
constexpr float GAP_COOLING = 0.83f;  // by this share heat looks lower in a deep one
constexpr float GAP_HEAT = 0.80f;  // where fire is no hotter than this; hotter fire shines through,
constexpr float GAPLESS_HEAT = 1.1f;  // and from here on its gaps are not seen

// Fire by heat: display colours over black, turned to linear light once.
struct Shade {
    float heat;
    float red, green, blue;
};
const Shade FIRE[] = {
    {0.00f, 0.000f, 0.000f, 0.000f}, {0.14f, 0.060f, 0.008f, 0.004f},
    {0.26f, 0.400f, 0.070f, 0.010f}, {0.38f, 0.720f, 0.200f, 0.015f},
    {0.50f, 0.960f, 0.400f, 0.030f}, {0.62f, 1.000f, 0.590f, 0.050f},
    {0.76f, 1.000f, 0.780f, 0.180f}, {0.90f, 1.000f, 0.930f, 0.500f},
    {1.05f, 1.000f, 1.000f, 0.920f},
};
constexpr int FIRE_STEPS = 1024;
constexpr float FIRE_TOP = 1.05f;

// rays
constexpr int RAYS = 3;  // per pixel, both ways
constexpr float STRIDE_PX = 0.6f;
constexpr float DARK = 0.004f;  // what is hidden this well is not looked at any more

constexpr int N = Gas::CELLS;
constexpr float H = Gas::CELL_PX;
constexpr int ROW = N;
constexpr int SHEET = N * N;

// What `body` holds.
enum Body { THICKNESS, WARMTH, KEY_LIGHT, GLOW };

// What `sky` holds.
enum Sky { OPEN, GAP };

float toLinear(float display) {
    return display <= 0.04045f ? display / 12.92f
                               : static_cast<float>(std::pow((display + 0.055) / 1.055, 2.4));
}

struct FireTable {
    Vec4 of[FIRE_STEPS];
    FireTable() {
        int entry = 0;
        for (int i = 0; i < FIRE_STEPS; ++i) {
            const float heat = FIRE_TOP * static_cast<float>(i) / (FIRE_STEPS - 1);
            while (heat > FIRE[entry + 1].heat + 1e-6f) {
                ++entry;
            }
            const Shade& a = FIRE[entry];
            const Shade& b = FIRE[entry + 1];
            const float t = (heat - a.heat) / (b.heat - a.heat);
            of[i] = vec4(toLinear(a.red + (b.red - a.red) * t),
                         toLinear(a.green + (b.green - a.green) * t),
                         toLinear(a.blue + (b.blue - a.blue) * t));
        }
    }
};

const FireTable fire;

Vec4 fireColour(float heat) {
    const float at = heat / FIRE_TOP * (FIRE_STEPS - 1);
    const int i = at < 0.0f ? 0 : at > FIRE_STEPS - 1 ? FIRE_STEPS - 1 : static_cast<int>(at);
    return fire.of[i];
}

// Share of light left after an optical depth: exp(-depth) to four digits, by plain arithmetic.
float left(float depth) {
    const float d = depth * 0.125f;
    float share = 1.0f / (1.0f + d * (1.0f + d * (0.5f + d * (1.0f / 6.0f + d / 24.0f))));
    share *= share;
    share *= share;
    return share * share;
}

// Running mean of `width` cells each way along one axis.
void blurAxis(std::vector<float>& field, int stride, int width) {
    float line[N];
    for (int i = 0; i < N * SHEET; ++i) {
        if (i / stride % N != 0) {
            continue;
        }
        float sum = 0.0f;
        for (int j = 0; j < N; ++j) {
            line[j] = field[i + j * stride];
        }
        for (int j = -width; j < N; ++j) {
            sum += j + width < N ? line[j + width] : 0.0f;
            sum -= j - width - 1 >= 0 ? line[j - width - 1] : 0.0f;
            if (j >= 0) {
                field[i + j * stride] = sum / static_cast<float>(2 * width + 1);
            }
        }
    }
}

void blur(std::vector<float>& field, int width) {
    for (int pass = 0; pass < 2; ++pass) {
        blurAxis(field, 1, width);
        blurAxis(field, ROW, width);
        blurAxis(field, SHEET, width);
    }
}

// Heat as the viewer sees it: lower in the shade and in gaps.
float seenHeat(Vec4 at, Vec4 above) {
    const float lit = SHADED_HEAT + KEY_HEAT * at[KEY_LIGHT] + SKY_HEAT * above[OPEN];
    const float mild = zeroToOne((GAPLESS_HEAT - at[WARMTH]) / (GAPLESS_HEAT - GAP_HEAT));
    return at[WARMTH] * lit * (1.0f - GAP_COOLING * mild * above[GAP]);
}

}  // namespace

Camera::Camera() : body(N * SHEET, all(0.0f)), sky(N * SHEET, all(0.0f)), haze(N * SHEET, 0.0f) {}

void Camera::castShadows(float shadow) {
    // The light comes from the front, so each sheet of cells gets what the sheet before it lets by.
    const float length = H / KEY_Z;
    for (int i = N * SHEET - 1; i >= 0; --i) {
        const int x = i % N;
        const int y = i / ROW % N;
        const int z = i / SHEET;
        const Vec4 before = vec4(static_cast<float>(x) + KEY_X / KEY_Z,
                                 static_cast<float>(y) + KEY_Y / KEY_Z, static_cast<float>(z + 1));
        if (z == N - 1 || before[0] < 0.0f || before[1] < 0.0f) {
            body[i][KEY_LIGHT] = 1.0f;
            continue;
        }
        const Vec4 there = between(body, before);
        body[i][KEY_LIGHT] = there[KEY_LIGHT] * left(there[THICKNESS] * shadow * length);
    }
}

void Camera::spreadGlow() {
    for (int i = 0; i < N * SHEET; ++i) {
        haze[i] = fireColour(body[i][WARMTH])[0] * body[i][THICKNESS];
    }
    blur(haze, GLOW_WIDTH_CELLS);
    for (int i = 0; i < N * SHEET; ++i) {
        body[i][GLOW] = haze[i];
    }
}

void Camera::openSky() {
    for (int i = 0; i < N * SHEET; ++i) {
        haze[i] = body[i][THICKNESS] / EXTINCTION;
    }
    blur(haze, SKY_WIDTH_CELLS);
    for (int i = 0; i < N * SHEET; ++i) {
        sky[i][OPEN] = 1.0f / (1.0f + SKY_SHADOW * haze[i] * haze[i]);
    }
}

void Camera::findGaps() {
    for (int i = 0; i < N * SHEET; ++i) {
        haze[i] = body[i][THICKNESS] / EXTINCTION;
    }
    blur(haze, GAP_WIDTH_CELLS);
    for (int i = 0; i < N * SHEET; ++i) {
        sky[i][GAP] = zeroToOne((haze[i] - GAP_FROM) / (GAP_DEEP - GAP_FROM));
    }
}

void Camera::thinTheSmoke(const Gas& gas, float age) {
    // Only smoke that is torn all the way through shows space, so tearing is fast at first.
    const float torn = TORN_AT_LAST * age * (1.4f - 0.4f * age) - TEAR_EDGE;
    const float thickness = EXTINCTION * (1.0f - OLD_THINNING * age * (1.6f - 0.6f * age));
    for (int i = 0; i < N * SHEET; ++i) {
        haze[i] = gas.cargo[i][STRENGTH];
    }
    blur(haze, 1);
    for (int i = 0; i < N * SHEET; ++i) {
        const Vec4 place = cellPlace(i % N, i / ROW % N, i / SHEET);
        const float outside = atLeastZero(std::sqrt(dot3(place, place)) - RIM_PX);
        const float soot = atLeastZero(gas.cargo[i][SOOT] - outside * RIM_RATE);
        const float whole = age > 0.0f ? zeroToOne((haze[i] - torn) / TEAR_EDGE) : 1.0f;
        const float aside = std::sqrt(place[0] * place[0] + place[1] * place[1]);
        const float cooling = RIM_COOLING * atLeastZero(aside - RIM_PX);
        const float heat = gas.cargo[i][HEAT] * atLeastZero(1.0f - cooling);
        body[i] = vec4(soot * whole * thickness, heat, 1.0f);
    }
}

Vec4 Camera::lookAlong(float x, float y) const {
    Vec4 seen = all(0.0f);
    float clear = 1.0f;
    float warmth = 0.0f;
    const float half = 0.5f * Gas::CUBE_PX;
    const float reach = std::sqrt(half * half - x * x - y * y);
    for (float z = reach; z > -reach && clear > DARK; z -= STRIDE_PX) {
        const Vec4 cell = (vec4(x, y, z) + all(half)) / all(H) - all(0.5f);
        const Vec4 b = between(body, cell);
        if (b[THICKNESS] < 1e-4f) {
            continue;
        }
        const Vec4 above = between(sky, cell);
        const Vec4 light = KEY_COLOUR * all(b[KEY_LIGHT]) + SKY_COLOUR * all(above[OPEN]) +
                           GLOW_COLOUR * all(b[GLOW]);
        const float stays = left(b[THICKNESS] * STRIDE_PX);
        const float share = clear * (1.0f - stays);
        const float heat = seenHeat(b, above);
        const float cold = atLeastZero(1.0f - heat / SMOKELESS_HEAT);
        seen += SMOKE_COLOUR * light * all(share * cold);
        warmth += share * heat * heat * heat * heat;
        clear *= stays;
    }
    if (clear < 1.0f) {
        // One colour for the mean heat: white and red light added would be pink, and fire never is.
        const float mean = std::sqrt(std::sqrt(warmth / (1.0f - clear)));
        seen += fireColour(mean) * all(1.0f - clear);
    }
    seen[3] = 1.0f - clear;
    return seen;
}

std::vector<Vec4> Camera::photograph(const Gas& gas, float time) {
    const float age = atLeastZero((time - TEAR_FROM) / (TEAR_TO - TEAR_FROM));
    thinTheSmoke(gas, age);
    castShadows(KEY_SHADOW + (OLD_KEY_SHADOW - KEY_SHADOW) * age);
    spreadGlow();
    openSky();
    findGaps();
    std::vector<Vec4> picture(WIDTH * WIDTH, all(0.0f));
    const float reach = 0.5f * Gas::CUBE_PX - 1.0f;
    for (int i = 0; i < WIDTH * WIDTH; ++i) {
        for (int ray = 0; ray < RAYS * RAYS; ++ray) {
            const float dx = (static_cast<float>(ray % RAYS) + 0.5f) / RAYS - 0.5f;
            const float dy = (static_cast<float>(ray / RAYS) + 0.5f) / RAYS - 0.5f;
            const float x = static_cast<float>(i % WIDTH - MIDDLE_PIXEL) + dx;
            const float y = static_cast<float>(i / WIDTH - MIDDLE_PIXEL) + dy;
            if (x * x + y * y < reach * reach) {
                picture[i] += lookAlong(x, y) / all(RAYS * RAYS);
            }
        }
    }
    return picture;
}
