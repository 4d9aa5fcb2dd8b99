// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_FILM_H
#define KRAVOLTIX_REPLAY_FILM_H

#include "replay/game.h"

#include <optional>
#include <string>

namespace replay {

struct FilmOptions {
    std::string file;                  // recording or scenario
    std::string out;                   // .mp4, .gif, or a folder for PNG pictures
    double from = 0;                   // seconds of the game, from its first picture
    std::optional<double> to;          // none: to the game's end
    std::optional<unsigned int> rate;  // pictures a second, of a GIF or of PNG pictures
    double scale = 1;                  // of a GIF
    bool force = false;                // writes over what is there
    bool partly = false;               // a recording that was cut off is filmed as far as it goes
    Place place;
};

// Films a game without window and sound: every picture stands where the game's own clock puts it,
// however long the machine takes. An .mp4 has the game's sounds. The same game gives the same bytes.
// The exit status: 0, or 1 when the game that was filmed is not the one that was recorded.
int film(const FilmOptions& options);

}  // namespace replay

#endif
