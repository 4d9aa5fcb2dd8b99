// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_FILMFORMATS_H
#define KRAVOLTIX_REPLAY_FILMFORMATS_H

#include <string>
#include <vector>

// What ffmpeg is told for each kind of film. It takes the game's raw pictures from its standard
// input. The same pictures give the same bytes: nothing of the machine or the day goes into a film.
namespace replay {

constexpr int FILM_WIDTH_PX = 640;
constexpr int FILM_HEIGHT_PX = 480;
constexpr unsigned int FILM_FPS = 60;
constexpr unsigned int GIF_FPS = 25;       // a frame of a GIF lasts whole hundredths of a second
constexpr unsigned int MOST_GIF_FPS = 50;  // and two of them at least, or players slow it down

std::vector<std::string> mp4Arguments(const std::string& soundFile, const std::string& out);

// A GIF has 256 colours for the whole film; they are chosen first, into a picture of their own.
std::vector<std::string> paletteArguments(unsigned int rate, double scale,
                                          const std::string& palette);
std::vector<std::string> gifArguments(unsigned int rate, double scale, const std::string& palette,
                                      const std::string& out);

// frame-000001.png and so on, in this folder.
std::vector<std::string> pngArguments(unsigned int rate, const std::string& folder);

}  // namespace replay

#endif
