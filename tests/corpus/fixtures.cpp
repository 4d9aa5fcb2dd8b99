// SPDX-License-Identifier: MIT
// Writes the pictures and sounds that the corpus plays with into a folder: every path of data/, each
// picture of the true size. They are patterns, not art. So new art changes no game of the corpus, and
// the smallest shift, swap or flip of a picture does.
#include <png.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Picture {
    std::string path;
    unsigned int width, height;
};

constexpr int EXPLOSIONS = 46;
constexpr int MINI_EXPLOSIONS = 7;
constexpr unsigned int EXPLOSION_PX = 128;
constexpr unsigned int MINI_EXPLOSION_PX = 16;

// clang-format off
const Picture SINGLE_PICTURES[] = {
    {"display/energy01.png",               10, 65},
    {"display/energyscale.png",             9, 67},
    {"display/enemyrect_bottomleft.png",   13, 13},
    {"display/enemyrect_bottomright.png",  13, 13},
    {"display/enemyrect_topleft.png",      13, 13},
    {"display/enemyrect_topright.png",     13, 13},
    {"fonts/impact/cross.png",              5,  5},
    {"fonts/impact/fps_a.png",             19,  9},
    {"fonts/impact/letter_cursor.png",     80,  9},
    {"fonts/impact/letters.png",          208,  9},
    {"fonts/impact/numbers_a.png",         60,  9},
    {"fonts/impact/numbers_mini.png",      40,  5},
    {"ships/enemy01.png",                  39, 39},
    {"ships/enemy01left.png",              39, 39},
    {"ships/enemy01right.png",             39, 39},
    {"ships/ship01.png",                   39, 39},
    {"ships/ship01left.png",               39, 39},
    {"ships/ship01right.png",              39, 39},
    {"shots/e_shot01c.png",                11,  8},
    {"shots/item_shot01a.png",             29, 29},
    {"shots/item_shot02a.png",             29, 29},
    {"shots/shot01a.png",                   3, 11},
    {"shots/shot01b.png",                   9, 15},
};

const char* const SOUNDS[] = {
    "sounds/explode.wav",      "sounds/explode2.wav",      "sounds/intro.wav",
    "sounds/keyboard.wav",     "sounds/miniExplode1.wav",  "sounds/miniExplode2.wav",
    "sounds/shot001b.wav",     "sounds/shot002.wav",
};
// clang-format on

constexpr unsigned int SOUND_RATE_HZ = 22050;
constexpr unsigned int SOUND_SAMPLES = 441;  // 20 ms
constexpr unsigned int BYTES_PER_SAMPLE = 2;

constexpr unsigned int COLOURS = 256;
constexpr unsigned int HOLE = 0;  // the palette's transparent entry
constexpr std::uint8_t SEEN = 255;
constexpr std::uint8_t UNSEEN = 0;

std::vector<Picture> allPictures() {
    std::vector<Picture> all(std::begin(SINGLE_PICTURES), std::end(SINGLE_PICTURES));
    char path[40];
    for (int i = 0; i < EXPLOSIONS; ++i) {
        std::snprintf(path, sizeof path, "explosions/ex%04i.png", i);
        all.push_back({path, EXPLOSION_PX, EXPLOSION_PX});
    }
    for (int i = 0; i < MINI_EXPLOSIONS; ++i) {
        std::snprintf(path, sizeof path, "explosions/mini/ex%03i.png", i);
        all.push_back({path, MINI_EXPLOSION_PX, MINI_EXPLOSION_PX});
    }
    return all;
}

// Of a pixel or of a name: numbers that lie close to each other give values that do not.
std::uint32_t mixed(std::uint32_t value) {
    value ^= value >> 16;
    value *= 0x7feb352dU;
    value ^= value >> 15;
    value *= 0x846ca68bU;
    return value ^ value >> 16;
}

std::uint32_t numberOf(const std::string& name) {
    std::uint32_t number = 0;
    for (const char c : name) {
        number = mixed(number * 31 + static_cast<unsigned char>(c));
    }
    return number;
}

// Half of a colour is the picture's own, so that people tell pictures apart too. Those that are seen
// are never black, so that each shows on the sky. The hole has a colour too: whoever drew it would be
// found out.
//
// Colours come from a palette of which one entry is a hole. Such a picture is copied, pixel by pixel
// or not at all, by every library alike; one with an alpha channel is mixed, which rounds differently
// from library to library even where a pixel is opaque.
std::vector<std::uint8_t> makePalette(std::uint32_t picture) {
    std::vector<std::uint8_t> palette;
    for (unsigned int i = 0; i < COLOURS; ++i) {
        const std::uint32_t number = mixed(picture + i);
        for (unsigned int shift = 0; shift < 24; shift += 8) {
            palette.push_back(static_cast<std::uint8_t>((picture >> shift & 0x7f) +
                                                        (number >> shift & 0x7f) + 1));
        }
        palette.push_back(i == HOLE ? UNSEEN : SEEN);
    }
    return palette;
}

// One pixel in eight is a hole.
std::uint8_t pixelAt(std::uint32_t picture, unsigned int x, unsigned int y) {
    const std::uint32_t number = mixed(picture + mixed(y << 16 | x));
    return static_cast<std::uint8_t>(number >> 29 == 0 ? HOLE : 1 + number % (COLOURS - 1));
}

bool writePicture(const fs::path& folder, const Picture& picture) {
    const std::uint32_t name = numberOf(picture.path);
    const std::vector<std::uint8_t> palette = makePalette(name);
    std::vector<std::uint8_t> pixels;
    for (unsigned int y = 0; y < picture.height; ++y) {
        for (unsigned int x = 0; x < picture.width; ++x) {
            pixels.push_back(pixelAt(name, x, y));
        }
    }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGBA_COLORMAP;
    image.colormap_entries = COLOURS;
    const std::string path = folder / picture.path;
    if (png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, palette.data()) == 0) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), image.message);
        return false;
    }
    return true;
}

void addNumber(std::string& bytes, std::uint32_t number, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
        bytes += static_cast<char>(number >> 8 * i & 0xff);
    }
}

// A tone whose pitch is the sound's own, 16 bits, mono.
std::string soundBytes(const std::string& name) {
    constexpr std::uint32_t DATA_BYTES = SOUND_SAMPLES * BYTES_PER_SAMPLE;
    constexpr std::uint32_t HEADER_BYTES_BEHIND_SIZE = 36;
    std::string bytes = "RIFF";
    addNumber(bytes, HEADER_BYTES_BEHIND_SIZE + DATA_BYTES, 4);
    bytes += "WAVEfmt ";
    addNumber(bytes, 16, 4);  // bytes of the format
    addNumber(bytes, 1, 2);   // PCM
    addNumber(bytes, 1, 2);   // mono
    addNumber(bytes, SOUND_RATE_HZ, 4);
    addNumber(bytes, SOUND_RATE_HZ * BYTES_PER_SAMPLE, 4);
    addNumber(bytes, BYTES_PER_SAMPLE, 2);
    addNumber(bytes, BYTES_PER_SAMPLE * 8, 2);
    bytes += "data";
    addNumber(bytes, DATA_BYTES, 4);
    const std::uint32_t step = 1000 + numberOf(name) % 4000;
    for (std::uint32_t i = 0; i < SOUND_SAMPLES; ++i) {
        addNumber(bytes, i * step, BYTES_PER_SAMPLE);
    }
    return bytes;
}

bool writeSound(const fs::path& folder, const std::string& name) {
    const std::string path = folder / name;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        std::perror(path.c_str());
        return false;
    }
    const std::string bytes = soundBytes(name);
    const bool good = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !good) {
        std::perror(path.c_str());
        return false;
    }
    return true;
}

bool writeAll(const fs::path& folder) {
    bool good = true;
    for (const Picture& picture : allPictures()) {
        fs::create_directories((folder / picture.path).parent_path());
        good = writePicture(folder, picture) && good;
    }
    for (const char* sound : SOUNDS) {
        fs::create_directories((folder / sound).parent_path());
        good = writeSound(folder, sound) && good;
    }
    return good;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("Usage: kravoltix_fixtures FOLDER\n", stderr);
        return 2;
    }
    try {
        return writeAll(argv[1]) ? 0 : 1;
    } catch (const fs::filesystem_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
