// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_TRUNCATED_H
#define KRAVOLTIX_OBJECTS_TRUNCATED_H

#include <climits>

// The screen coordinate of a float position: truncated toward zero, so that -0.7 and 0.7 share a
// pixel. What no int can hold (an object that a long stall has thrown far off the field) becomes
// INT_MIN.
inline int truncated(float position) {
    constexpr float BEYOND_INT = 2147483648.0f;  // 2^31
    if (position >= -BEYOND_INT && position < BEYOND_INT) {
        return static_cast<int>(position);
    }
    return INT_MIN;
}

#endif
