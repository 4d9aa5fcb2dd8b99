// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_BENCHMARK_ALLOCATIONS_H
#define KRAVOLTIX_BENCHMARK_ALLOCATIONS_H

#include <cstdint>

namespace benchmark {

// How often the thread that calls this has asked for memory, by malloc() and all that ends there.
std::uint64_t allocations();

}  // namespace benchmark

#endif
