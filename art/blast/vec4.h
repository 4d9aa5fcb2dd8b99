// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#ifndef KRAVOLTIX_BLAST_VEC4_H
#define KRAVOLTIX_BLAST_VEC4_H

// Four floats that are added and multiplied side by side: a flow (x, y, z, unused) or what the gas
// carries. Plain + - * / only, so every machine gets the same bits.
typedef float Vec4 __attribute__((vector_size(16)));

inline Vec4 vec4(float x, float y, float z, float w = 0.0f) {
    return Vec4{x, y, z, w};
}

inline Vec4 all(float value) {
    return Vec4{value, value, value, value};
}

inline float dot3(Vec4 a, Vec4 b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline float atLeastZero(float value) {
    return value < 0.0f ? 0.0f : value;
}

inline float zeroToOne(float value) {
    return value < 0.0f ? 0.0f : value > 1.0f ? 1.0f : value;
}

inline Vec4 smaller(Vec4 a, Vec4 b) {
    return a < b ? a : b;
}

inline Vec4 larger(Vec4 a, Vec4 b) {
    return a > b ? a : b;
}

#endif
