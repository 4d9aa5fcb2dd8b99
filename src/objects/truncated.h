// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_TRUNCATED_H
#define KRAVOLTIX_OBJECTS_TRUNCATED_H

#include <climits>
#ifdef __SSE__
#include <xmmintrin.h>
#endif

// The screen coordinate of a float position: truncated toward zero, so that -0.7 and 0.7 share a
// pixel. What no int can hold (an object that a long stall has thrown far off the field) becomes
// INT_MIN, which is what processors with SSE give by themselves: a frame places a hundred coordinates.
inline int truncated(float position) {
#ifdef __SSE__
    return _mm_cvttss_si32(_mm_set_ss(position));
#else
    constexpr float BEYOND_INT = 2147483648.0f;  // 2^31
    if (position >= -BEYOND_INT && position < BEYOND_INT) {
        return static_cast<int>(position);
    }
    return INT_MIN;
#endif
}

#endif
