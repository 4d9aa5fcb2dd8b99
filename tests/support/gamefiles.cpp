// SPDX-License-Identifier: MIT
#include "support/gamefiles.h"

#include <cstdio>

namespace {

const GameFile NAMED_FILES[] = {
    {"explosions/mini/ex000.png", PICTURE},
    {"explosions/mini/ex001.png", PICTURE},
    {"explosions/mini/ex002.png", PICTURE},
    {"explosions/mini/ex003.png", PICTURE},
    {"explosions/mini/ex004.png", PICTURE},
    {"explosions/mini/ex005.png", PICTURE},
    {"explosions/mini/ex006.png", SPARE_PICTURE},  // the flash ends before it
    {"ships/ship01.png", PICTURE},
    {"ships/ship01left.png", PICTURE},
    {"ships/ship01right.png", PICTURE},
    {"ships/enemy01.png", PICTURE},
    {"ships/enemy01left.png", PICTURE},
    {"ships/enemy01right.png", PICTURE},
    {"shots/e_shot01c.png", PICTURE},
    {"shots/shot01a.png", PICTURE},
    {"shots/shot01b.png", PICTURE},
    {"shots/item_shot01a.png", DISPLAY_PICTURE},
    {"shots/item_shot02a.png", PICTURE},  // its test asks for the laser's icon
    {"display/energy01.png", PICTURE},    // likewise
    {"display/energyscale.png", PICTURE},
    {"display/enemyrect_topleft.png", PICTURE},
    {"display/enemyrect_topright.png", PICTURE},
    {"display/enemyrect_bottomleft.png", PICTURE},
    {"display/enemyrect_bottomright.png", PICTURE},
    {"fonts/impact/fps_a.png", DISPLAY_PICTURE},
    {"fonts/impact/numbers_a.png", DISPLAY_PICTURE},  // the texts would ask for it later
    {"fonts/impact/numbers_mini.png", DISPLAY_PICTURE},
    {"fonts/impact/cross.png", SPARE_DISPLAY_PICTURE},
    {"fonts/impact/letters.png", TEXT_PICTURE},
    {"fonts/impact/letter_cursor.png", TEXT_PICTURE},
    {"sounds/explode.wav", SOUND},
    {"sounds/explode2.wav", SOUND},
    {"sounds/miniExplode1.wav", SOUND},
    {"sounds/miniExplode2.wav", SOUND},
    {"sounds/shot001b.wav", SOUND},
    {"sounds/shot002.wav", SOUND},
    {"sounds/intro.wav", SOUND},
    {"sounds/keyboard.wav", SOUND},
};

std::string explosionFrame(int number) {
    char path[32];
    std::snprintf(path, sizeof path, "explosions/ex%04i.png", number);
    return path;
}

}  // namespace

void PrintTo(const GameFile& file, std::ostream* out) {
    *out << file.path;
}

std::vector<GameFile> explosionFrames(int first, int end) {
    std::vector<GameFile> files;
    for (int i = first; i < end; ++i) {
        files.push_back({explosionFrame(i), PICTURE});
    }
    return files;
}

std::vector<GameFile> namedFiles(bool sounds) {
    std::vector<GameFile> files;
    for (const GameFile& file : NAMED_FILES) {
        if ((file.role == SOUND) == sounds) {
            files.push_back(file);
        }
    }
    return files;
}

std::vector<GameFile> allFiles() {
    std::vector<GameFile> files = explosionFrames(0, EXPLOSION_FRAMES);
    files.insert(files.end(), std::begin(NAMED_FILES), std::end(NAMED_FILES));
    return files;
}
