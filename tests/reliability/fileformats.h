// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_RELIABILITY_FILEFORMATS_H
#define KRAVOLTIX_TESTS_RELIABILITY_FILEFORMATS_H

#include <string>

// Contents that pictures (PNG) and sounds (WAV) should not have. The same arguments give the same
// bytes everywhere.
namespace reliability {

// One bit of the file, chosen by the seed, is another one.
std::string withFlippedBit(std::string file, size_t seed);

// The same inside one of a picture's chunks, whose checksum then fits the new content.
std::string withFittedFlip(std::string picture, size_t seed);

// A picture that ends in the middle of its pixels.
std::string beforeLastPixels(const std::string& picture);

// Good pictures of sizes and depths that the game does not expect.
size_t otherPictures();
std::string otherPicture(size_t number);

// Pictures whose size no library takes.
size_t impossiblePictures();
std::string impossiblePicture(size_t number);

// Good sounds of lengths, rates and formats that the game does not expect.
size_t otherSounds();
std::string otherSound(size_t number);

// Sounds that say of themselves what cannot be, or what few can play.
size_t oddSounds();
std::string oddSound(size_t number);

}  // namespace reliability

#endif
