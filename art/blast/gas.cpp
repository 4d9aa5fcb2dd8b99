// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#include "gas.h"

#include <cmath>

#include "noise.h"

namespace {

// burning
constexpr float BURN_RATE = 0.155f;     // per unit of fuel and picture: fast at first, a long tail
constexpr float BURN_HEAT = 0.10f;      // heat per unit of burnt fuel
constexpr float COOLING = 0.022f;       // share of heat lost per picture everywhere
constexpr float SKIN_COOLING = 0.20f;   // and at the surface, where the gas shines into space
constexpr float PATCH_WIDTH_PX = 16.0f; // strong and weak patches of smoke
constexpr unsigned PATCH_SEED = 970;

// motion
constexpr float LIFT_PX = 1.0f;         // px per picture^2 by which hot gas climbs outwards
constexpr float CONFINEMENT = 0.28f;    // how much of the small rolling is given back
constexpr float OLD_CONFINEMENT = 0.1f; // the same in old smoke
constexpr float STICKINESS = 0.25f;     // share of the neighbours' speed taken over per step
constexpr float OLD_STICKINESS = 0.6f;  // the same in old smoke
constexpr float CALM_RADIUS_PX = 23.0f; // outside, the air slows the gas down
constexpr float CALM_DRAG = 0.10f;      // per picture and px outside
constexpr float RECOIL = 0.8f;         // px per picture^2 and px off the middle
constexpr float DRAG = 0.05f;           // share of speed lost per picture everywhere
constexpr float STIR_PX = 0.5f;        // px per picture^2 of the breeze that keeps smoke moving
constexpr float STIR_WIDTH_PX = 15.0f;
constexpr unsigned STIR_SEED = 900;
constexpr float BOIL_PX = 2.2f;         // px per picture^2 of the small turmoil in hot gas
constexpr float BOIL_WIDTH_PX = 7.0f;
constexpr unsigned BOIL_SEED = 950;

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
template <class Work>
void eachCell(Work work) {
    for (int z = 1; z < N - 1; ++z) {
        for (int y = 1; y < N - 1; ++y) {
            const Span span = spans.of[z][y];
            for (int x = span.first; x < span.last; ++x) {
                work(z * SHEET + y * ROW + x, x, y, z);
            }
        }
    }
}

Vec4 outward(Vec4 place) {
    return place / all(std::sqrt(dot3(place, place)) + 1.0f);
}

}  // namespace

Vec4 cellPlace(int x, int y, int z) {
    const float half = 0.5f * Gas::CUBE_PX;
    return vec4((static_cast<float>(x) + 0.5f) * H - half, (static_cast<float>(y) + 0.5f) * H - half,
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
      breeze(N * SHEET, all(0.0f)),
      swelling(N * SHEET, 0.0f),
      pressure(N * SHEET, 0.0f),
      from(N * SHEET, all(0.0f)),
      to(N * SHEET, all(0.0f)),
      moved(N * SHEET, all(0.0f)),
      spin(N * SHEET, all(0.0f)) {
    eachCell([&](int i, int x, int y, int z) {
        breeze[i] = swirl(cellPlace(x, y, z) * all(1.0f / STIR_WIDTH_PX), STIR_SEED);
        boiling[i] = swirl(cellPlace(x, y, z) * all(1.0f / BOIL_WIDTH_PX), BOIL_SEED);
    });
}

// How much of the smoke between a burst and the viewer the burst blows away: without this window
// the old smoke would hide it.
float ahead(Vec4 place, float radius) {
    const float aside = std::sqrt(place[0] * place[0] + place[1] * place[1]);
    const float share = 3.0f - 2.2f * aside / radius;
    return place[2] < 0.0f || share < 0.0f ? 0.0f : share > 1.0f ? 1.0f : share;
}

void Gas::light(const Burst& burst) {
    const Vec4 lumps = all(3.6f / burst.radius);
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z) - burst.centre;
        const float distance = std::sqrt(dot3(place, place));
        // Dents follow the direction, so the ball stays whole and its lobes point outwards.
        const Vec4 facing = place / all(distance + 0.5f);
        const float dent = noise(facing * all(2.8f), burst.seed) * 0.55f +
                           noise(facing * all(5.6f), burst.seed + 1) * 0.45f;
        const float surface = burst.radius * (1.0f + burst.unevenness * dent);
        float inside = (surface - distance) / (1.5f * H) + 0.5f;
        inside = inside < 0.0f ? 0.0f : inside > 1.0f ? 1.0f : inside;
        if (inside <= 0.0f) {
            cargo[i][SOOT] *= 1.0f - ahead(place, burst.radius);
            return;
        }
        const float mottle = roughNoise(place * lumps, burst.seed + 2);
        const Vec4 lit = vec4(burst.heat * (1.0f + 0.35f * mottle), 1.0f + 0.2f * mottle,
                              burst.fuel * (1.0f + 0.3f * mottle), cargo[i][STRENGTH]);
        cargo[i] += (lit - cargo[i]) * all(inside);
        flow[i] += (facing * all(burst.speed * (0.3f + dent)) +
                    swirl(place * lumps, burst.seed + 5) * all(0.4f * burst.speed)) *
                   all(inside);
    });
}

void Gas::weaken() {
    weakened = true;
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z) * all(1.0f / PATCH_WIDTH_PX);
        cargo[i][STRENGTH] =
            0.5f + 0.8f * (noise(place, PATCH_SEED) + 0.4f * noise(place * all(2.3f), PATCH_SEED + 1));
    });
}

void Gas::burn(float dt) {
    eachCell([&](int i, int, int, int) {
        Vec4& c = cargo[i];
        const float burnt = c[FUEL] * c[FUEL] * BURN_RATE;
        c[FUEL] = c[FUEL] / (1.0f + BURN_RATE * c[FUEL] * dt);
        swelling[i] = burnt;
        // A cell with clear neighbours is skin and radiates freely.
        float cover = 0.0f;
        const int far = 2;
        const int ways[6] = {far, -far, far * ROW, -far * ROW, far * SHEET, -far * SHEET};
        for (int way : ways) {
            const int j = i + way;
            const float soot = j >= 0 && j < N * SHEET ? cargo[j][SOOT] : 0.0f;
            cover += soot > 1.0f ? 1.0f : soot;
        }
        const float skin = 1.0f - cover / 6.0f;
        const float loss = COOLING + SKIN_COOLING * skin * skin + 0.04f * c[HEAT] * c[HEAT];
        c[HEAT] = (c[HEAT] + burnt * BURN_HEAT * dt) / (1.0f + loss * dt);
    });
}

// Lobes differ, and their differences would carry the whole blast off: pull it back to the middle.
Vec4 Gas::recoil() const {
    Vec4 sum = all(0.0f);
    float weight = 1e-6f;
    eachCell([&](int i, int x, int y, int z) {
        const float share = cargo[i][SOOT] * (0.2f + cargo[i][HEAT]);
        sum += cellPlace(x, y, z) * all(share);
        weight += share;
    });
    return sum * all(-RECOIL / weight);
}

void Gas::push(float dt) {
    Vec4 back = recoil();
    back[2] = 0.0f;
    eachCell([&](int i, int x, int y, int z) {
        const Vec4 place = cellPlace(x, y, z);
        const Vec4 c = cargo[i];
        const float filled = c[SOOT] > 1.0f ? 1.0f : c[SOOT];
        flow[i] += (outward(place) * all(LIFT_PX * c[HEAT]) + breeze[i] * all(STIR_PX * filled) +
                    boiling[i] * all(BOIL_PX * c[HEAT] * filled)) *
                   all(dt);
        const float radius = std::sqrt(dot3(place, place));
        const float outside = radius > CALM_RADIUS_PX ? radius - CALM_RADIUS_PX : 0.0f;
        flow[i] += back * all(dt);
        flow[i] = flow[i] / all(1.0f + (DRAG + CALM_DRAG * outside) * dt);
    });
}

void Gas::curl(float dt) {
    const float given = weakened ? OLD_CONFINEMENT : CONFINEMENT;
    const float scale = 0.5f / H;
    eachCell([&](int i, int, int, int) {
        const Vec4 dx = flow[i + 1] - flow[i - 1];
        const Vec4 dy = flow[i + ROW] - flow[i - ROW];
        const Vec4 dz = flow[i + SHEET] - flow[i - SHEET];
        Vec4 turning = vec4(dy[2] - dz[1], dz[0] - dx[2], dx[1] - dy[0]) * all(scale);
        turning[3] = std::sqrt(dot3(turning, turning));
        spin[i] = turning;
    });
    eachCell([&](int i, int, int, int) {
        const Vec4 slope = vec4(spin[i + 1][3] - spin[i - 1][3], spin[i + ROW][3] - spin[i - ROW][3],
                                spin[i + SHEET][3] - spin[i - SHEET][3]);
        const float steepness = std::sqrt(dot3(slope, slope));
        if (steepness > 1e-4f) {
            flow[i] += cross3(slope / all(steepness), spin[i]) * all(given * H * dt);
        }
    });
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
    // Carry the result back: what differs from the start was lost on the way, half of it each way.
    eachCell([&](int i, int, int, int) {
        const Vec4 mended = moved[i] + (field[i] - between(moved, to[i])) * all(0.5f);
        spin[i] = mended;
    });
    // A mended value must lie between those it came from, or edges ring.
    eachCell([&](int i, int, int, int) {
        const Vec4 p = smaller(larger(from[i], all(0.0f)), all(static_cast<float>(N) - 1.01f));
        const int j = static_cast<int>(p[2]) * SHEET + static_cast<int>(p[1]) * ROW +
                      static_cast<int>(p[0]);
        Vec4 low = field[j];
        Vec4 high = field[j];
        const int others[7] = {1, ROW, ROW + 1, SHEET, SHEET + 1, SHEET + ROW, SHEET + ROW + 1};
        for (int other : others) {
            low = smaller(low, field[j + other]);
            high = larger(high, field[j + other]);
        }
        moved[i] = smaller(larger(spin[i], low), high);
    });
    field.swap(moved);
}

void Gas::step(float dt) {
    burn(dt);
    push(dt);
    curl(dt);
    smooth();
    keepVolume();
    trace(dt);
    carry(cargo);
    carry(flow);
}
