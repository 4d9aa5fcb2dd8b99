// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_FUZZ_BLOCKS_H
#define KRAVOLTIX_TESTS_FUZZ_BLOCKS_H

#include <cstddef>

// Keeps count of what a game takes with new. The game frees nothing, so whoever plays many games in
// one process has to know what belongs to which. Operators new and delete are replaced for the whole
// program; the memory is malloc's, so that a sanitizer guards the edges of each block.
namespace fuzz {

struct Block {
    unsigned char* at;
    size_t bytes;
};

// Whether what is taken from now on is written down. Tells whether it has been until now.
bool watchBlocks(bool on);

// What is taken in this scope is not the game's.
class Unwatched {
public:
    Unwatched() : before(watchBlocks(false)) {}
    ~Unwatched() { watchBlocks(before); }
    Unwatched(const Unwatched&) = delete;
    Unwatched& operator=(const Unwatched&) = delete;

private:
    bool before;
};

// What has been written down, in the order in which it was taken.
size_t blockCount();
const Block& block(size_t index);

// Frees all blocks from this one on; nobody may use them any more.
void freeBlocksFrom(size_t index);

}  // namespace fuzz

#endif
