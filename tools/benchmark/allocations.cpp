// SPDX-License-Identifier: MIT
// Stands before the C library's malloc() and its kin, in every library of the process.
#include "benchmark/allocations.h"

#include <cstddef>

// The same functions under the names that the C library keeps for those who stand in front of it.
// NOLINTBEGIN(bugprone-reserved-identifier): the C library reserved them for this
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

// In the static part of a thread's own memory, which is there without being asked for.
__attribute__((tls_model("initial-exec"))) thread_local std::uint64_t asked = 0;

}  // namespace

std::uint64_t benchmark::allocations() {
    return asked;
}

extern "C" {

void* malloc(std::size_t bytes) {
    ++asked;
    return __libc_malloc(bytes);
}

void* calloc(std::size_t count, std::size_t bytes) {
    ++asked;
    return __libc_calloc(count, bytes);
}

void* realloc(void* memory, std::size_t bytes) {
    ++asked;
    return __libc_realloc(memory, bytes);
}
}
