// SPDX-License-Identifier: MIT
// Takes the game's place and fails as KRAVOLTIX_NO_GAME says.
#include <SDL.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

constexpr int FRAMES = 25;

void showFrames() {
    SDL_Init(SDL_INIT_VIDEO);
    SDL_Surface* screen = SDL_SetVideoMode(640, 480, 32, SDL_SWSURFACE);
    for (int i = 0; i < FRAMES; ++i) {
        SDL_Flip(screen);
    }
}

}  // namespace

int main(int /*argc*/, char* /*argv*/[]) {
    const char* way = std::getenv("KRAVOLTIX_NO_GAME");
    const std::string failure = way == nullptr ? "" : way;
    SDL_GetTicks();
    if (failure == "crash") {
        std::raise(SIGSEGV);
    }
    if (failure != "idle") {
        showFrames();
    }
    if (failure == "crash late") {
        std::raise(SIGSEGV);
    }
    if (failure == "vanish") {
        _exit(0);  // without the exit handlers that write the end
    }
    return 0;  // "idle": without a frame; "silent": without a word
}
