// SPDX-License-Identifier: MIT
// What no start of the game can do without: linking, SDL's start, the same files decoded, the same
// arrays zeroed, one picture on the screen. Takes the loads of the game's own start on standard
// input, a function and a file a line.
#include "driver/battlefield.h"

#include <SDL.h>
#include <SDL_image.h>
#include <SDL_mixer.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

constexpr int WIDTH_PX = 640;
constexpr int HEIGHT_PX = 480;
constexpr int BITS = 32;
constexpr int RATE_HZ = 22050;
constexpr int CHANNELS = 1;
constexpr int CHUNK_BYTES = 1024;

int failures = 0;

void need(bool succeeded, const char* what) {
    if (!succeeded) {
        std::fprintf(stderr, "%s: %s\n", what, SDL_GetError());
        ++failures;
    }
}

void openAudio() {
    need(SDL_Init(SDL_INIT_AUDIO) == 0, "SDL_Init");
    need(Mix_OpenAudio(RATE_HZ, AUDIO_S16LSB, CHANNELS, CHUNK_BYTES) == 0, "Mix_OpenAudio");
}

void load(const std::string& line) {
    const size_t blank = line.find(' ');
    const std::string function = line.substr(0, blank);
    const std::string file = line.substr(blank + 1);
    if (function == "IMG_Load") {
        need(IMG_Load(file.c_str()) != nullptr, file.c_str());
    } else {
        need(Mix_LoadWAV_RW(SDL_RWFromFile(file.c_str(), "rb"), 1) != nullptr, file.c_str());
    }
}

template <typename Element> void zeroArray() {
    auto* elements = new Element[BattleField::SHOT_SLOTS];
    for (Uint32 i = 0; i < BattleField::SHOT_SLOTS; ++i) {
        elements[i] = 0;
    }
    asm volatile("" : : "r"(elements) : "memory");  // or the compiler would do without the array
}

}  // namespace

int main() {
    need(SDL_Init(SDL_INIT_VIDEO) == 0, "SDL_Init");
    SDL_Surface* screen =
        SDL_SetVideoMode(WIDTH_PX, HEIGHT_PX, BITS, SDL_DOUBLEBUF | SDL_HWPALETTE);
    need(screen != nullptr, "SDL_SetVideoMode");
    bool audioIsOpen = false;
    for (std::string line; std::getline(std::cin, line);) {
        if (!audioIsOpen && line.compare(0, 3, "Mix") == 0) {
            openAudio();
            audioIsOpen = true;
        }
        load(line);
    }
    for (int pool = 0; pool < 2; ++pool) {
        zeroArray<bool>();
        zeroArray<Uint32>();
    }
    SDL_FillRect(screen, nullptr, 0);
    SDL_Flip(screen);
    return failures == 0 ? 0 : 1;
}
