// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#ifndef KRAVOLTIX_BLAST_NOISE_H
#define KRAVOLTIX_BLAST_NOISE_H

#include "vec4.h"

// Smooth random value from -1 to 1 at a place; lumps are about one unit wide. Every seed is a
// different, endless field.
float noise(Vec4 place, unsigned seed);

// Three sizes of noise added up, each half as wide and half as strong as the one before.
float roughNoise(Vec4 place, unsigned seed);

// Swirls without sources or sinks, about one unit wide: they stir and never inflate.
Vec4 swirl(Vec4 place, unsigned seed);

#endif
