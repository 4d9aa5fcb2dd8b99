// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_FUZZ_GAMES_H
#define KRAVOLTIX_TESTS_FUZZ_GAMES_H

#include "front/scenario.h"
#include "fuzz/heldgame.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Games as rows of bytes: any row is a game, and a change of few bytes changes little of it, which
// is what a fuzzer needs. README.md tells the format.
namespace fuzz {

// A longer game ends here, so that inputs stay quick.
constexpr unsigned MOST_FRAMES = 4000;

// Reads a game's bytes moment by moment.
class Game {
public:
    Game(const std::uint8_t* bytes, size_t count);

    HeldGame::Start start() const { return from; }
    Uint32 clock() const { return clockMs; }

    // False when the game is over.
    bool next(Moment& moment);

private:
    std::uint8_t byte();
    void readStep(Moment& moment);
    void addEvents(unsigned action, Moment& moment);
    void addOther(Moment& moment);

    const std::uint8_t* at;
    const std::uint8_t* end;
    HeldGame::Start from;
    Uint32 clockMs;
    Uint32 ms = 0;            // of the present step's frames
    unsigned framesLeft = 0;  // of the present step
    unsigned framesTold = 0;
};

// A scenario's keys and frame times as such bytes; what it expects is not told.
std::vector<std::uint8_t> bytesOf(const front::Scenario& scenario);

}  // namespace fuzz

#endif
