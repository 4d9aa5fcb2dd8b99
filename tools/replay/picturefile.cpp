// SPDX-License-Identifier: MIT
#include "replay/picturefile.h"

#include "replay/game.h"

#include <SDL.h>
#include <SDL_image.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace replay {
namespace {

constexpr int LEAST_SEEN = 96;  // brightness of the smallest difference

struct Picture {
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<Uint8> rgb;  // three bytes a pixel, row by row
};

Picture readPicture(const std::string& path) {
    const std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> surface(IMG_Load(path.c_str()),
                                                                       SDL_FreeSurface);
    if (surface == nullptr || surface->format->BytesPerPixel < 3) {
        throw Trouble(path + ": no picture: " + SDL_GetError());
    }
    Picture picture;
    picture.width = static_cast<unsigned int>(surface->w);
    picture.height = static_cast<unsigned int>(surface->h);
    for (int y = 0; y < surface->h; ++y) {
        const Uint8* row =
            static_cast<const Uint8*>(surface->pixels) + static_cast<ptrdiff_t>(y) * surface->pitch;
        for (int x = 0; x < surface->w; ++x, row += surface->format->BytesPerPixel) {
            Uint32 pixel = 0;
            std::copy_n(row, surface->format->BytesPerPixel, reinterpret_cast<Uint8*>(&pixel));
            Uint8 channels[3];
            SDL_GetRGB(pixel, surface->format, &channels[0], &channels[1], &channels[2]);
            picture.rgb.insert(picture.rgb.end(), channels, channels + 3);
        }
    }
    return picture;
}

void writePng(const Picture& picture, const std::string& path) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, path.c_str(), 0, picture.rgb.data(), 0, nullptr) == 0) {
        throw Trouble(path + ": cannot be written: " + image.message);
    }
}

}  // namespace

void convertToPng(const std::string& bmp, const std::string& png) {
    writePng(readPicture(bmp), png);
}

void writeDifference(const std::string& expected, const std::string& got, const std::string& png) {
    const Picture wanted = readPicture(expected);
    Picture shown = readPicture(got);
    if (wanted.rgb.size() != shown.rgb.size()) {
        throw Trouble(expected + " and " + got + " have different sizes");
    }
    for (size_t i = 0; i < shown.rgb.size(); ++i) {
        const int difference = std::abs(wanted.rgb[i] - shown.rgb[i]);
        shown.rgb[i] = static_cast<Uint8>(difference == 0 ? 0 : std::max(difference, LEAST_SEEN));
    }
    writePng(shown, png);
}

}  // namespace replay
