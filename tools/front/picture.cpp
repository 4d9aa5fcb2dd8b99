// SPDX-License-Identifier: MIT
#include "front/picture.h"

#include "front/writeall.h"

#define XXH_STATIC_LINKING_ONLY  // a state that lives on the stack
#ifdef __x86_64__
#include <xxh_x86dispatch.h>  // the same hashes, by the widest registers that the machine has
#else
#include <xxhash.h>
#endif

#include <algorithm>
#include <cstdio>
#include <vector>

namespace front {
namespace {

constexpr Uint32 COLOUR_BITS = 0xffffff;
constexpr int ROWS_AT_ONCE = 4;  // 10 kB of a game's screen: small enough for the fastest memory

bool isPlain(const SDL_PixelFormat& format) {
    return format.Rmask == 0xff0000 && format.Gmask == 0xff00 && format.Bmask == 0xff;
}

// SDL gives the screen whole rows, and the sanitizers' look at each pixel would keep them from being
// read by vectors.
#define UNCHECKED __attribute__((no_sanitize("address", "undefined")))

[[gnu::always_inline]] UNCHECKED inline void keepColourBits(const Uint32* pixels, int width,
                                                            Uint32* colours) {
    for (int x = 0; x < width; ++x) {
        colours[x] = pixels[x] & COLOUR_BITS;
    }
}

UNCHECKED void readPlainRow(const Uint32* pixels, int width, Uint32* colours) {
    keepColourBits(pixels, width, colours);
}

#ifdef __x86_64__
__attribute__((target("avx2"))) UNCHECKED void readPlainRowWide(const Uint32* pixels, int width,
                                                                Uint32* colours) {
    keepColourBits(pixels, width, colours);
}

const auto readPlain = __builtin_cpu_supports("avx2") ? readPlainRowWide : readPlainRow;
#else
constexpr auto readPlain = readPlainRow;
#endif

// One row as 0x00rrggbb.
void readRow(const SDL_Surface* screen, int y, Uint32* colours) {
    const Uint32* pixels = reinterpret_cast<const Uint32*>(
        static_cast<const Uint8*>(screen->pixels) + static_cast<ptrdiff_t>(y) * screen->pitch);
    if (isPlain(*screen->format)) {
        readPlain(pixels, screen->w, colours);
        return;
    }
    for (int x = 0; x < screen->w; ++x) {
        Uint8 red, green, blue;
        SDL_GetRGB(pixels[x], screen->format, &red, &green, &blue);
        colours[x] = static_cast<Uint32>(red << 16 | green << 8 | blue);
    }
}

}  // namespace

// Block by block, each seeded with the hash of those above.
Uint64 pictureHash(const SDL_Surface* screen) {
    static std::vector<Uint32> rows;
    const size_t width = static_cast<size_t>(screen->w);
    rows.resize(width * ROWS_AT_ONCE);
    Uint64 hash = 0;
    for (int y = 0; y < screen->h; y += ROWS_AT_ONCE) {
        const int count = std::min(ROWS_AT_ONCE, screen->h - y);
        for (int i = 0; i < count; ++i) {
            readRow(screen, y + i, rows.data() + width * static_cast<size_t>(i));
        }
        hash = XXH3_64bits_withSeed(rows.data(),
                                    width * static_cast<size_t>(count) * sizeof(Uint32), hash);
    }
    return hash;
}

Uint64 chained(Uint64 digest, Uint64 pictureHash) {
    const Uint64 both[2] = {digest, pictureHash};
    return XXH3_64bits(both, sizeof both);
}

Uint64 fileHash(const char* path) {
    std::FILE* file = std::fopen(path, "rb");
    if (file == nullptr) {
        return 0;
    }
    XXH3_state_t state;
    XXH3_64bits_reset(&state);
    char buffer[1 << 14];
    for (size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
        XXH3_64bits_update(&state, buffer, count);
    }
    std::fclose(file);
    return XXH3_64bits_digest(&state);
}

Uint32 countPixels(const SDL_Surface* screen, const SDL_Rect& box, Uint32 colour) {
    std::vector<Uint32> row(static_cast<size_t>(screen->w));
    const int right = std::min(box.x + box.w, screen->w);
    const int bottom = std::min(box.y + box.h, screen->h);
    Uint32 count = 0;
    for (int y = std::max<int>(box.y, 0); y < bottom; ++y) {
        readRow(screen, y, row.data());
        for (int x = std::max<int>(box.x, 0); x < right; ++x) {
            count += row[static_cast<size_t>(x)] == colour ? 1 : 0;
        }
    }
    return count;
}

bool writePicture(const SDL_Surface* screen, int descriptor) {
    std::vector<Uint32> rows(static_cast<size_t>(screen->w) * static_cast<size_t>(screen->h));
    for (int y = 0; y < screen->h; ++y) {
        readRow(screen, y, rows.data() + static_cast<size_t>(y) * static_cast<size_t>(screen->w));
    }
    return writeAll(descriptor, rows.data(), rows.size() * sizeof(Uint32));
}

}  // namespace front
