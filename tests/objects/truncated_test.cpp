// SPDX-License-Identifier: MIT
#include "objects/truncated.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace {

TEST(Truncated, CutsTowardZeroAndGivesUpBeyondAnInt) {
    const float infinity = std::numeric_limits<float>::infinity();
    const struct {
        const char* rule;
        float position;
        int cut;
    } cases[] = {
        {"nothing is cut from a whole pixel", 12.0f, 12},
        {"a fraction is dropped", 12.99f, 12},
        {"less than a pixel is none", 0.7f, 0},
        {"on both sides of the edge", -0.7f, 0},
        {"beyond the edge too it is cut toward the edge", -3.7f, -3},
        {"a place beyond 16 bits is still told", 40000.5f, 40000},
        {"the greatest float below 2^31", 2147483520.0f, 2147483520},
        {"2^31 does not fit", 2147483648.0f, INT_MIN},
        {"the smallest int fits", -2147483648.0f, INT_MIN},
        {"the smallest float above it", -2147483520.0f, -2147483520},
        {"below the smallest int nothing fits", -2147483904.0f, INT_MIN},
        {"far beyond", 1.0e20f, INT_MIN},
        {"endlessly far", infinity, INT_MIN},
        {"endlessly far on the other side", -infinity, INT_MIN},
        {"no number at all", std::numeric_limits<float>::quiet_NaN(), INT_MIN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        EXPECT_EQ(truncated(c.position), c.cut);
    }
}

}  // namespace
