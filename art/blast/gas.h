// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#ifndef KRAVOLTIX_BLAST_GAS_H
#define KRAVOLTIX_BLAST_GAS_H

#include <vector>

#include "vec4.h"

// A ball of fuel that is lit in the gas.
struct Burst {
    Vec4 centre;       // px from the middle of the blast
    float radius;      // px, before it swells
    float fuel;        // it swells to e^(fuel / 3) times its radius
    float heat;        // 1 is white
    float unevenness;  // share of the radius by which its surface is dented and bulged
    float speed;       // px per picture with which its lumps fly apart
    float spots;       // px; width of its hotter and its sootier spots
    unsigned seed;     // of its dents and spots
};

// What a piece of gas carries.
enum Cargo { HEAT, SOOT, FUEL, STRENGTH };

// Burning gas in a cube around the middle of the blast, driven by main: light() what is due, then
// step(), and weaken() once when the smoke gets old.
// Lengths are pixels, times are pictures. x grows to the right, y down, z towards the viewer; the
// middle of the blast is the origin. Heat runs from 0 (cold) to 1 (white), soot from 0 (clear) to
// about 1 (thick smoke), strength from about 0 (smoke that tears first) to 1. Gas is carried, not
// thinned: where burning fuel makes new volume, the ball swells and stays as dense as it was.
class Gas {
public:
    static constexpr int CELLS = 112;        // along an edge of the cube
    static constexpr float CUBE_PX = 84.0f;  // edge of the cube
    static constexpr float CELL_PX = CUBE_PX / CELLS;

    Gas();

    // Puts fuel, heat, soot and an outward push into the ball.
    void light(const Burst& burst);

    // Moves the gas on.
    void step(float dt);

    // Gives the smoke its strong and weak patches, which travel with it from now on.
    void weaken();

    // Heat, soot, fuel, strength; cell (x, y, z) stands at (z * CELLS + y) * CELLS + x.
    std::vector<Vec4> cargo;

private:
    float cooling() const;
    void burn(float dt);
    float openSides(int cell) const;
    void push(float dt);
    Vec4 recoil() const;
    Vec4 turmoil(Vec4 cell, int index) const;
    void smooth();
    void keepVolume();
    void relaxPressure();
    void trace(float dt);
    void carry(std::vector<Vec4>& field);

    // motion
    std::vector<Vec4> flow;       // px per picture
    std::vector<Vec4> boiling;    // small swirls in hot gas; two fields of them slide through each
    std::vector<Vec4> seething;   // other, for swirls that stand still square the lobes
    std::vector<Vec4> billows;    // wide swirls in the young ball: lobes of unlike size
    std::vector<Vec4> breeze;     // wide swirls in all smoke
    std::vector<float> swelling;  // new volume per volume and picture
    std::vector<float> pressure;  // kept from step to step, which saves half the sweeps
    float age = 0.0f;             // pictures
    bool weakened = false;
    // scratch
    std::vector<Vec4> from;  // where the gas of a cell was a step ago, in cells
    std::vector<Vec4> to;    // where it will be a step later, in cells
    std::vector<Vec4> moved;
    std::vector<Vec4> mended;
};

// Middle of a cell, px from the middle of the blast.
Vec4 cellPlace(int x, int y, int z);

// Value between the eight cells around a place given in cells.
Vec4 between(const std::vector<Vec4>& field, Vec4 cell);

#endif
