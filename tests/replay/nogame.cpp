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

// Ends the process by the signal itself: a sanitizer that catches it would make a status of it.
void crash() {
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

}  // namespace

int main(int /*argc*/, char* /*argv*/[]) {
    const char* way = std::getenv("KRAVOLTIX_NO_GAME");
    const std::string failure = way == nullptr ? "" : way;
    SDL_GetTicks();
    if (failure == "crash") {
        crash();
    }
    if (failure != "idle") {
        showFrames();
    }
    if (failure == "crash late") {
        crash();
    }
    if (failure == "vanish") {
        _exit(0);  // without the exit handlers that write the end
    }
    return 0;  // "idle": without a frame; "silent": without a word
}
