// SPDX-License-Identifier: MIT
#include "fuzz/blocks.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace fuzz {
namespace {

// A game starts with some two hundred. A fight of a few minutes adds a hundred shots a minute.
constexpr size_t MOST_BLOCKS = size_t{1} << 16;

Block blocks[MOST_BLOCKS];
size_t taken = 0;
bool watched = false;

void* take(size_t bytes) {
    void* memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    if (watched) {
        if (taken == MOST_BLOCKS) {
            std::fprintf(stderr, "the game takes more than %zu blocks of memory\n", MOST_BLOCKS);
            std::abort();
        }
        blocks[taken++] = {static_cast<unsigned char*>(memory), bytes};
    }
    return memory;
}

}  // namespace

bool watchBlocks(bool on) {
    return std::exchange(watched, on);
}

size_t blockCount() {
    return taken;
}

const Block& block(size_t index) {
    return blocks[index];
}

void freeBlocksFrom(size_t index) {
    while (taken > index) {
        std::free(blocks[--taken].at);
    }
}

}  // namespace fuzz

void* operator new(size_t bytes) {
    return fuzz::take(bytes);
}

void* operator new[](size_t bytes) {
    return fuzz::take(bytes);
}

// libFuzzer's own.
void* operator new(size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(bytes == 0 ? 1 : bytes);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}
