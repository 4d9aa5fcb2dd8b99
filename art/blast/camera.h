// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#ifndef KRAVOLTIX_BLAST_CAMERA_H
#define KRAVOLTIX_BLAST_CAMERA_H

#include <vector>

#include "gas.h"

// Takes the picture of a gas: what it sends to the viewer, in linear light, and how much of the
// things behind it it hides. One pixel is one pixel of the game.
class Camera {
public:
    static constexpr int WIDTH = 84;        // pixels of the gas that are looked at, both ways
    static constexpr int MIDDLE_PIXEL = 41; // its middle is the middle of the blast

    Camera();

    // red, green, blue, coverage of each pixel, row by row.
    std::vector<Vec4> photograph(const Gas& gas, float time);

private:
    void lightTheGas(const Gas& gas, float time);
    void castShadows(float shadow);
    void spreadGlow();
    Vec4 lookAlong(float x, float y) const;

    std::vector<Vec4> body;   // extinction per px, heat, key light, glow from inside
    std::vector<Vec4> around; // open sky, rim light
    std::vector<float> haze;  // scratch of the blur
};

#endif
