// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_PICTURE_H
#define KRAVOLTIX_FRONT_PICTURE_H

#include <SDL.h>

// What tells one picture on the screen from another. Only what is seen counts: red, green and blue
// of every pixel, whatever stands in the screen's unused bits. Screens have 32 bits a pixel.
namespace front {

Uint64 pictureHash(const SDL_Surface* screen);

// The hash of a row of pictures, from that of all but the last and that of the last.
Uint64 chained(Uint64 digest, Uint64 pictureHash);

// The hash of a file's content, 0 when it cannot be read.
Uint64 fileHash(const char* path);

// How many pixels of the box have this colour, 0xrrggbb.
Uint32 countPixels(const SDL_Surface* screen, const SDL_Rect& box, Uint32 colour);

// Writes the picture row by row, four bytes a pixel: blue, green, red and 0. False when the reader
// has gone.
bool writePicture(const SDL_Surface* screen, int descriptor);

}  // namespace front

#endif
