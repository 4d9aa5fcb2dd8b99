// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#ifndef KRAVOLTIX_BLAST_CAMERA_H
#define KRAVOLTIX_BLAST_CAMERA_H

#include <vector>

#include "gas.h"

// Takes the picture of a gas: what it sends to the viewer, in linear light, and how much of the
// things behind it it hides. A pixel is a pixel of the game; the viewer looks along z from far off.
class Camera {
public:
    static constexpr int WIDTH = 84;         // pixels of a picture, both ways
    static constexpr int MIDDLE_PIXEL = 41;  // the middle of this one is the middle of the blast

    Camera();

    // red, green, blue, coverage of each pixel, row by row. `time` is the number of the picture.
    std::vector<Vec4> photograph(const Gas& gas, float time);

private:
    void thinTheSmoke(const Gas& gas, float age);
    void castShadows(float shadow);
    void spreadGlow();
    void openSky();
    void findGaps();
    Vec4 lookAlong(float x, float y) const;

    // by cell, in the order of the gas
    std::vector<Vec4> body;  // extinction per px, heat, key light that gets here, light of the fire
    std::vector<Vec4> sky;   // share of the sky that is open, how deep in a gap between lobes
    std::vector<float> haze;  // scratch of the blur
};

#endif
