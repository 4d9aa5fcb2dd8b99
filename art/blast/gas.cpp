// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include "gas.h"

#include <cmath>

#include "noise.h"

namespace {

// the ball that is lit
constexpr float WIDE_DENTS = 2.8f;  // around the ball, per radian
constexpr float FINE_DENTS = 5.6f;
constexpr float WIDE_DENTS_SHARE = 0.55f;
constexpr float HEAT_MOTTLE = 0.50f;  // shares by which its spots differ
constexpr float SOOT_MOTTLE = 0.20f;
constexpr float FUEL_MOTTLE = 0.30f;
constexpr float START_SWIRL = 0.4f;    // share of the burst's speed
constexpr float SURFACE_CELLS = 1.5f;  // softness of its surface

// burning and cooling
constexpr float BURN_RATE = 0.155f;     // per unit of fuel and picture: fast at first, a long tail
constexpr float BURN_HEAT = 0.10f;      // heat per unit of burnt fuel
constexpr float COOLING = 0.052f;       // share of heat lost per picture everywhere,
constexpr float WHITE_COOLING = 0.04f;  // more the hotter it is,
constexpr float SKIN_COOLING = 0.20f;   // and at the surface, where the gas shines into space
constexpr int SKIN_CELLS = 2;           // depth of the surface
constexpr float FIRST_COOLING = 0.5f;   // share of all this that a ball just lit loses,
constexpr float COOLS_FULLY = 6.5f;     // rising up to this age in pictures,
constexpr float EMBER_COOLING = 0.50f;  // and the share in weakened smoke, where embers glow long

// motion
constexpr float LIFT_PX = 1.1f;  // px per picture^2 by which hot gas climbs outwards
constexpr float BOIL_PX = 1.8f;  // px per picture^2 of the small turmoil in hot gas
constexpr float BOIL_WIDTH_PX = 7.0f;
constexpr unsigned BOIL_SEED = 1606;
const Vec4 BOIL_DRIFT_PX = {0.45f, -0.35f, 0.4f, 0.0f};  // per picture
constexpr float YOUNG_BOIL = 0.7f;   // share of one of its two fields in a young ball,
constexpr float BILLOWS = 0.32f;     // to which this share comes of a wide one;
constexpr float YOUNG_UNTIL = 5.0f;  // age in pictures, reached in the flash, up to which it is so,
constexpr float OLD_FROM = 9.0f;     // and from which the small turmoil is whole and alone
constexpr float BILLOW_WIDTH_PX = 13.0f;
constexpr float BREEZE_PX = 0.5f;  // px per picture^2 of the air that keeps old smoke moving
constexpr float BREEZE_WIDTH_PX = 15.0f;
constexpr unsigned BREEZE_SEED = 900;
constexpr float DRAG = 0.05f;            // share of speed lost per picture everywhere,
constexpr float CALM_RADIUS_PX = 23.0f;  // and outside of this
constexpr float CALM_DRAG = 0.10f;       // so much more per px
constexpr float RECOIL = 0.8f;           // px per picture^2 and px off the middle
// The lamp brightens the upper left of smoke: what is seen is in the middle when old smoke is so
// far off it, and young fire this share of that. Between these ages (pictures) it moves.
const Vec4 OLD_OFF_PX = {2.6f, 2.5f, 0.0f, 0.0f};
constexpr float YOUNG_OFF = 0.22f;
constexpr float OFF_MOVES_FROM = 6.0f;
constexpr float OFF_MOVES_TO = 24.0f;
constexpr float STICKINESS = 0.35f;     // share of the neighbours' speed taken over per step
constexpr float OLD_STICKINESS = 0.6f;  // the same in weakened smoke
constexpr float MENDING = 0.28f;        // 0.5 keeps all detail, and shows the squares of the grid

// weak and strong smoke
constexpr float PATCH_WIDTH_PX = 16.0f;
constexpr float PATCH_SPREAD = 0.8f;  // of the strength around 0.5
constexpr unsigned PATCH_SEED = 970;

// pressure
constexpr int SWEEPS = 36;
constexpr float OVERSHOOT = 1.75f;

constexpr int N = Gas::CELLS;
constexpr float H = Gas::CELL_PX;
constexpr int ROW = N;
constexpr int SHEET = N * N;

// Nothing happens in the corners of the cube.
constexpr float REACH_PX = 41.0f;

struct Span {
    int first;
    int last;  // one past the end
};

// The cells of a row that lie in the ball of REACH_PX, never those on the faces of the cube.
Span rowSpan(int y, int z) {
    Span span = {N, 0};
    for (int x = 1; x < N - 1; ++x) {
        const Vec4 p = cellPlace(x, y, z);
        if (dot3(p, p) < REACH_PX * REACH_PX) {
            span.first = x < span.first ? x : span.first;
            span.last = x + 1;
        }
    }
    return span;
}

struct Spans {
    Span of[N][N];
    Spans() {
        for (int z = 0; z < N; ++z) {
            for (int y = 0; y < N; ++y) {
                const bool face = y == 0 || z == 0 || y == N - 1 || z == N - 1;
                of[z][y] = face ? Span{0, 0} : rowSpan(y, z);
            }
        }
    }
};

const Spans spans;

// Calls work(cell, x, y, z) for every cell of the ball.
template <class Work> void eachCell(Work work) {
    for (int z = 1; z < N - 1; ++z) {
        for (int y = 1; y < N - 1; ++y) {
            const Span span = spans.of[z][y];
            for (int x = span.first; x < span.last; ++x) {
                work(z * SHEET + y * ROW + x, x, y, z);
            }
        }
    }
}

// How far the surface of a ball bulges (positive) or dents in a direction.
float dentTowards(Vec4 facing, unsigned seed) {
    return noise(facing * all(WIDE_DENTS), seed) * WIDE_DENTS_SHARE +
           noise(facing * all(FINE_DENTS), seed + 1) * (1.0f - WIDE_DENTS_SHARE);
}

// Share of the smoke between a burst and the viewer that the burst blows away: a burst in the midst
// of smoke would not be seen.
float blownAway(Vec4 place, float radius) {
    const float aside = std::sqrt(place[0] * place[0] + place[1] * place[1]) / radius;
    return place[2] < 0.0f ? 0.0f : zeroToOne(3.0f - 2.2f * aside);
}

}  // namespace

Vec4 cellPlace(int x, int y, int z) {
    const float half = 0.5f * Gas::CUBE_PX;
    return vec4((static_cast<float>(x) + 0.5f) * H - half,
                (static_cast<float>(y) + 0.5f) * H - half,
                (static_cast<float>(z) + 0.5f) * H - half);
}

Vec4 between(const std::vector<Vec4>& field, Vec4 cell) {
    const Vec4 inside = smaller(larger(cell, all(0.0f)), all(static_cast<float>(N) - 1.01f));
    const int x = static_cast<int>(inside[0]);
    const int y = static_cast<int>(inside[1]);
    const int z = static_cast<int>(inside[2]);
    const Vec4 across = all(inside[0] - static_cast<float>(x));
    const Vec4 down = all(inside[1] - static_cast<float>(y));
    const Vec4 deep = all(inside[2] - static_cast<float>(z));
    const Vec4* c = &field[static_cast<unsigned>(z * SHEET + y * ROW + x)];
    const Vec4 a = c[0] + (c[1] - c[0]) * across;
    const Vec4 b = c[ROW] + (c[ROW + 1] - c[ROW]) * across;
    const Vec4* d = c + SHEET;
    const Vec4 e = d[0] + (d[1] - d[0]) * across;
    const Vec4 f = d[ROW] + (d[ROW + 1] - d[ROW]) * across;
    const Vec4 near = a + (b - a) * down;
    const Vec4 far = e + (f - e) * down;
    return near + (far - near) * deep;
}

Gas::Gas()
    : cargo(N * SHEET, all(0.0f)),
      flow(N * SHEET, all(0.0f)),
      boiling(N * SHEET, all(0.0f)),
      seething(N * SHEET, all(0.0f)),
      billows(N * SHEET, all(0.0f)),
      breeze(N * SHEET, all(0.0f)),
      swelling(N * SHEET, 0.0f),
      pressure(N * SHEET, 0.0f),
      from(N * SHEET, all(0.0f)),
      to(N * SHEET, all(0.0f)),
      moved(N * SHEET, all(0.0f)),
      mended(N * SHEET, all(0.0f)) {
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z);
        boiling[i] = swirl(place * all(1.0f / BOIL_WIDTH_PX), BOIL_SEED);
        seething[i] = swirl(place * all(1.0f / BOIL_WIDTH_PX), BOIL_SEED + 40);
        billows[i] = swirl(place * all(1.0f / BILLOW_WIDTH_PX), BOIL_SEED + 20);
        breeze[i] = swirl(place * all(1.0f / BREEZE_WIDTH_PX), BREEZE_SEED);
    });
}

void Gas::light(const Burst& burst) {
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z) - burst.centre;
        const float distance = std::sqrt(dot3(place, place));
        // Dents follow the direction, so the ball stays whole and its lobes point outwards.
        const Vec4 facing = place / all(distance + 0.5f);
        const float dent = dentTowards(facing, burst.seed);
        const float surface = burst.radius * (1.0f + burst.unevenness * dent);
        const float inside = zeroToOne((surface - distance) / (SURFACE_CELLS * H) + 0.5f);
        if (inside <= 0.0f) {
            cargo[i][SOOT] *= 1.0f - blownAway(place, burst.radius);
            return;
        }
        const Vec4 spots = place * all(1.0f / burst.spots);
        const float mottle = roughNoise(spots, burst.seed + 2);
        const Vec4 lit =
            vec4(burst.heat * (1.0f + HEAT_MOTTLE * mottle), 1.0f + SOOT_MOTTLE * mottle,
                 burst.fuel * (1.0f + FUEL_MOTTLE * mottle), cargo[i][STRENGTH]);
        cargo[i] += (lit - cargo[i]) * all(inside);
        flow[i] += (facing * all(0.3f + dent) + swirl(spots, burst.seed + 5) * all(START_SWIRL)) *
                   all(burst.speed * inside);
    });
}

void Gas::weaken() {
    weakened = true;
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 patch = cellPlace(x, y, z) * all(1.0f / PATCH_WIDTH_PX);
        const float rough =
            noise(patch, PATCH_SEED) + 0.4f * noise(patch * all(2.3f), PATCH_SEED + 1);
        cargo[i][STRENGTH] = 0.5f + PATCH_SPREAD * rough;
    });
}

// Share of a cell's surface that has clear space in front of it.
float Gas::openSides(int cell) const {
    const int ways[] = {SKIN_CELLS,        -SKIN_CELLS,        SKIN_CELLS * ROW,
                        -SKIN_CELLS * ROW, SKIN_CELLS * SHEET, -SKIN_CELLS * SHEET};
    float open = 0.0f;
    for (int way : ways) {
        const int there = cell + way;
        const bool inCube = there >= 0 && there < N * SHEET;
        open += 1.0f - zeroToOne(inCube ? cargo[there][SOOT] : 0.0f);
    }
    return open / 6.0f;
}

// Share of its full cooling that the gas has at its age.
float Gas::cooling() const {
    const float bare = zeroToOne(FIRST_COOLING + (1.0f - FIRST_COOLING) * age / COOLS_FULLY);
    return weakened ? EMBER_COOLING : bare;
}

void Gas::burn(float dt) {
    const float share = cooling();
    eachCell([&](int i, int, int, int) {
        Vec4& c = cargo[i];
        const float burnt = BURN_RATE * c[FUEL] * c[FUEL];
        c[FUEL] /= 1.0f + BURN_RATE * c[FUEL] * dt;
        swelling[i] = burnt;
        const float skin = openSides(i);
        const float loss = COOLING + WHITE_COOLING * c[HEAT] * c[HEAT] + SKIN_COOLING * skin * skin;
        c[HEAT] = (c[HEAT] + BURN_HEAT * burnt * dt) / (1.0f + share * loss * dt);
    });
}

// The lobes are unlike, which would carry the whole blast off: this pulls it back over the ship.
Vec4 Gas::recoil() const {
    Vec4 sum = all(0.0f);
    float weight = 1e-6f;
    eachCell([&](int i, int x, int y, int z) {
        const float share = cargo[i][SOOT] * (0.2f + cargo[i][HEAT]);
        sum += cellPlace(x, y, z) * all(share);
        weight += share;
    });
    const float moved = zeroToOne((age - OFF_MOVES_FROM) / (OFF_MOVES_TO - OFF_MOVES_FROM));
    const Vec4 wanted = OLD_OFF_PX * all(YOUNG_OFF + (1.0f - YOUNG_OFF) * moved);
    const Vec4 off = sum / all(weight) - wanted;
    return vec4(off[0], off[1], 0.0f) * all(-RECOIL);
}

// What stirs hot gas: wide swirls with few small ones in the young ball, then small ones alone.
Vec4 Gas::turmoil(Vec4 cell, int index) const {
    const Vec4 drift = BOIL_DRIFT_PX * all(age / H);
    const float old = zeroToOne((age - YOUNG_UNTIL) / (OLD_FROM - YOUNG_UNTIL));
    return between(boiling, cell + drift) * all(YOUNG_BOIL + (1.0f - YOUNG_BOIL) * old) +
           between(seething, cell - drift) * all(old) +
           billows[index] * all(BILLOWS * (1.0f - old));
}

void Gas::push(float dt) {
    const Vec4 back = recoil();
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z);
        const Vec4 here = vec4(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
        const float heat = cargo[i][HEAT];
        const float soot = zeroToOne(cargo[i][SOOT]);
        const float radius = std::sqrt(dot3(place, place));
        // Hot gas climbs away from the middle, as it would climb from the ground: this rolls lobes.
        const Vec4 lift = place * all(LIFT_PX * heat / (radius + 1.0f));
        const Vec4 stir =
            (turmoil(here, i) * all(BOIL_PX * heat) + breeze[i] * all(BREEZE_PX)) * all(soot);
        const float drag = DRAG + CALM_DRAG * atLeastZero(radius - CALM_RADIUS_PX);
        flow[i] = (flow[i] + (lift + stir + back) * all(dt)) / all(1.0f + drag * dt);
    });
    age += dt;
}

void Gas::smooth() {
    const Vec4 stickiness = all(weakened ? OLD_STICKINESS : STICKINESS);
    eachCell([&](int i, int, int, int) {
        const Vec4 around = flow[i - 1] + flow[i + 1] + flow[i - ROW] + flow[i + ROW] +
                            flow[i - SHEET] + flow[i + SHEET];
        moved[i] = flow[i] + (around / all(6.0f) - flow[i]) * stickiness;
    });
    flow.swap(moved);
}

void Gas::relaxPressure() {
    for (int sweep = 0; sweep < SWEEPS; ++sweep) {
        for (int colour = 0; colour < 2; ++colour) {
            for (int z = 1; z < N - 1; ++z) {
                for (int y = 1; y < N - 1; ++y) {
                    const Span span = spans.of[z][y];
                    const int start = span.first + ((span.first + y + z + colour) & 1);
                    float* p = &pressure[static_cast<unsigned>(z * SHEET + y * ROW)];
                    const float* s = &swelling[static_cast<unsigned>(z * SHEET + y * ROW)];
                    for (int x = start; x < span.last; x += 2) {
                        const float around = p[x - 1] + p[x + 1] + p[x - ROW] + p[x + ROW] +
                                             p[x - SHEET] + p[x + SHEET];
                        p[x] += OVERSHOOT * ((around - s[x]) / 6.0f - p[x]);
                    }
                }
            }
        }
    }
}

void Gas::keepVolume() {
    // From here on `swelling` is what the flow still lacks or has too much, times a cell's area.
    eachCell([&](int i, int, int, int) {
        const float spread = (flow[i + 1][0] - flow[i - 1][0] + flow[i + ROW][1] -
                              flow[i - ROW][1] + flow[i + SHEET][2] - flow[i - SHEET][2]) *
                             (0.5f / H);
        swelling[i] = (spread - swelling[i]) * (H * H);
    });
    relaxPressure();
    eachCell([&](int i, int, int, int) {
        flow[i] -= vec4(pressure[i + 1] - pressure[i - 1], pressure[i + ROW] - pressure[i - ROW],
                        pressure[i + SHEET] - pressure[i - SHEET]) *
                   all(0.5f / H);
    });
}

void Gas::trace(float dt) {
    const Vec4 half = all(0.5f * dt / H);
    const Vec4 whole = all(dt / H);
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 here = vec4(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
        from[i] = here - between(flow, here - flow[i] * half) * whole;
        to[i] = here + between(flow, here + flow[i] * half) * whole;
    });
}

void Gas::carry(std::vector<Vec4>& field) {
    eachCell([&](int i, int, int, int) { moved[i] = between(field, from[i]); });
    // Carried back, what differs from the start was lost on the way: half of it each way.
    eachCell([&](int i, int, int, int) {
        mended[i] = moved[i] + (field[i] - between(moved, to[i])) * all(MENDING);
    });
    // A mended value must lie between those it came from, or edges ring.
    eachCell([&](int i, int, int, int) {
        const Vec4 p = smaller(larger(from[i], all(0.0f)), all(static_cast<float>(N) - 1.01f));
        const int j =
            static_cast<int>(p[2]) * SHEET + static_cast<int>(p[1]) * ROW + static_cast<int>(p[0]);
        Vec4 low = field[j];
        Vec4 high = field[j];
        const int others[7] = {1, ROW, ROW + 1, SHEET, SHEET + 1, SHEET + ROW, SHEET + ROW + 1};
        for (int other : others) {
            low = smaller(low, field[j + other]);
            high = larger(high, field[j + other]);
        }
        moved[i] = smaller(larger(mended[i], low), high);
    });
    field.swap(moved);
}

void Gas::step(float dt) {
    burn(dt);
    push(dt);
    smooth();
    keepVolume();
    trace(dt);
    carry(cargo);
    carry(flow);
}
