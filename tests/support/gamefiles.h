// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_GAMEFILES_H
#define KRAVOLTIX_TESTS_SUPPORT_GAMEFILES_H

#include <ostream>
#include <string>
#include <vector>

// What becomes of the game without one of its files.
enum Role {
    PICTURE,          // drawn; without it nothing is seen in its place
    SPARE_PICTURE,    // loaded and never drawn
    DISPLAY_PICTURE,  // the display does not start without it
    SPARE_DISPLAY_PICTURE,
    TEXT_PICTURE,  // the texts do not start without it
    SOUND,         // played; without it nothing is heard
};

struct GameFile {
    std::string path;
    Role role;
};

// The name of a case in the list of tests.
void PrintTo(const GameFile& file, std::ostream* out);

constexpr int EXPLOSION_FRAMES = 46;

// The pictures of the large explosion, from one number to the one before another.
std::vector<GameFile> explosionFrames(int first, int end);

// All other pictures, or all sounds.
std::vector<GameFile> namedFiles(bool sounds);

// Every file that the game reads, each once.
std::vector<GameFile> allFiles();

#endif
