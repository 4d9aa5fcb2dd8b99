// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_PICTUREFILE_H
#define KRAVOLTIX_REPLAY_PICTUREFILE_H

#include <string>

// Pictures as files: the game's layer keeps BMP, people get PNG.
namespace replay {

// Throws Trouble when a file cannot be read or written.
void convertToPng(const std::string& bmp, const std::string& png);

// Black where both pictures are alike, else by how much they differ, made bright enough to be seen.
// Both are BMP or PNG.
void writeDifference(const std::string& expected, const std::string& got, const std::string& png);

}  // namespace replay

#endif
