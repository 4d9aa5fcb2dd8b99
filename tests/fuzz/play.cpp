// SPDX-License-Identifier: MIT
// Keys and frame times for the game, by libFuzzer or from files.
#include "fuzz/counts.h"
#include "fuzz/games.h"
#include "fuzz/heldgame.h"
#include "fuzz/statemap.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

fuzz::HeldGame& loadedGame() {
    static fuzz::HeldGame* const game = [] {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        if (chdir(GAME_DATA) != 0 || std::freopen("/dev/null", "w", stdout) == nullptr) {
            std::perror(GAME_DATA);
            std::exit(1);
        }
        auto* made = new fuzz::HeldGame;
        made->load();
        return made;
    }();
    return *game;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
    fuzz::HeldGame& held = loadedGame();
    fuzz::Game game(bytes, count);
    const unsigned long long framesBefore = held.frames;
    held.play(game.start(), game.clock(), [&](fuzz::Moment& moment) {
        fuzz::markState(held.field);
        fuzz::checkState(held.field);
        return game.next(moment);
    });
    fuzz::count(held.frames - framesBefore);
    return 0;
}
