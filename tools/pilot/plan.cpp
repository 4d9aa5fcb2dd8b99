// SPDX-License-Identifier: MIT
#include "pilot/plan.h"

namespace pilot {

const Plan* planOf(const std::string& name) {
    for (const Plan& plan : PLANS) {
        if (name == plan.name) {
            return &plan;
        }
    }
    return nullptr;
}

}  // namespace pilot
