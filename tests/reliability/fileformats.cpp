// SPDX-License-Identifier: MIT
#include "reliability/fileformats.h"

#include <cstdint>
#include <iterator>
#include <random>
#include <vector>
#include <zlib.h>

namespace reliability {
namespace {

constexpr char PNG_BEGIN[] = "\x89PNG\r\n\x1a\n";
constexpr size_t PNG_BEGIN_BYTES = 8;
constexpr size_t CHUNK_HEAD_BYTES = 8;  // length and name
constexpr size_t CHECKSUM_BYTES = 4;

enum ColourType { GREY = 0, RGB = 2, PALETTE = 3, GREY_ALPHA = 4, RGB_ALPHA = 6 };

struct Picture {
    uint32_t width, height;
    unsigned int bits;
    ColourType colours;
    bool interlaced;
};

// clang-format off
constexpr Picture OTHER_PICTURES[] = {
    {   1,    1,  8, RGB_ALPHA,  false},
    {   1,  500,  8, RGB_ALPHA,  false},
    { 500,    1,  8, RGB_ALPHA,  false},
    {   7,    5,  8, RGB_ALPHA,  false},
    {  38,   40,  8, RGB_ALPHA,  false},
    { 640,  480,  8, RGB_ALPHA,  false},
    {1500, 1100,  8, RGB_ALPHA,  false},
    {  39,   39,  1, GREY,       false},
    {  39,   39,  2, GREY,       false},
    {  39,   39,  4, GREY,       false},
    {  39,   39,  8, GREY,       false},
    {  39,   39, 16, GREY,       false},
    {  39,   39,  8, RGB,        false},
    {  39,   39, 16, RGB,        false},
    {  39,   39,  1, PALETTE,    false},
    {  39,   39,  2, PALETTE,    false},
    {  39,   39,  4, PALETTE,    false},
    {  39,   39,  8, PALETTE,    false},
    {  39,   39,  8, GREY_ALPHA, false},
    {  39,   39, 16, GREY_ALPHA, false},
    {  39,   39, 16, RGB_ALPHA,  false},
    {  39,   39,  8, RGB_ALPHA,  true},
    {  39,   39,  1, PALETTE,    true},
};

constexpr Picture IMPOSSIBLE_PICTURES[] = {
    {      0,       5, 8, RGB_ALPHA, false},
    {      5,       0, 8, RGB_ALPHA, false},
    {2000000,       1, 8, RGB_ALPHA, false},
    {      1, 2000000, 8, RGB_ALPHA, false},
    {      5,       5, 3, RGB_ALPHA, false},
};

// The passes of an interlaced picture: first column and row, and the steps between them.
struct Pass {
    uint32_t x, y, stepX, stepY;
};
constexpr Pass PASSES[] = {
    {0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2},
};

struct Sound {
    uint16_t format;  // 1 is plain samples
    uint16_t channels;
    uint32_t rateHz;
    uint16_t blockBytes;
    uint16_t bits;
    uint32_t dataBytes;
    uint32_t toldDataBytes;  // what the header says
};

constexpr Sound OTHER_SOUNDS[] = {
    {1, 1, 22050, 2, 16,     2,     2},
    {1, 1, 22050, 2, 16,  4000,  4000},
    {1, 1, 22050, 1,  8,  4000,  4000},
    {1, 2, 22050, 4, 16,  4000,  4000},
    {1, 2, 44100, 4, 16,  4000,  4000},
    {1, 1, 11025, 2, 16,  4000,  4000},
    {1, 1,  8000, 1,  8,  4000,  4000},
    {1, 2, 48000, 4, 16,  4000,  4000},
};

constexpr Sound ODD_SOUNDS[] = {
    {    1,   1, 22050,     2, 16,     0,          0},
    {    1,   1, 22050,     2, 16,  4001,       4001},
    {    1,   1, 22050,     2, 16,  4000,    4000000},
    {    1,   1, 22050,     2, 16,  4000, 0xffffffff},
    {    1,   0, 22050,     2, 16,  4000,       4000},
    {    1, 255, 22050,   510, 16,  4000,       4000},
    {    1,   1,     0,     2, 16,  4000,       4000},
    {    1,   1,     1,     2, 16,   400,        400},
    {    1,   1, 4294967295U, 2, 16, 4000,      4000},
    {    1,   1, 22050,     0, 16,  4000,       4000},
    {    1,   1, 22050,     2,  0,  4000,       4000},
    {    1,   1, 22050,     3, 24,  4002,       4002},
    {    1,   1, 22050,     4, 32,  4000,       4000},
    {    3,   1, 22050,     4, 32,  4000,       4000},  // floating point
    {    2,   1, 22050,   256,  4,  4096,       4096},  // compressed, with a header that is too short
    {   17,   1, 22050,   256,  4,  4096,       4096},
    {   17,   2, 22050,     1,  4,  4096,       4096},
    {   85,   1, 22050,     1,  0,  4000,       4000},  // MP3
    {65534,   1, 22050,     2, 16,  4000,       4000},
};
// clang-format on

void addBigEndian(std::string& to, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        to += static_cast<char>(value >> shift);
    }
}

void addLittleEndian(std::string& to, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        to += static_cast<char>(value >> (8 * i));
    }
}

uint32_t bigEndianAt(const std::string& file, size_t at) {
    uint32_t value = 0;
    for (size_t i = at; i < at + 4; ++i) {
        value = value << 8 | static_cast<unsigned char>(file[i]);
    }
    return value;
}

uint32_t checksumOf(const std::string& file, size_t at, size_t bytes) {
    return static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(file.data() + at), static_cast<uInt>(bytes)));
}

void addChunk(std::string& to, const std::string& name, const std::string& data) {
    addBigEndian(to, static_cast<uint32_t>(data.size()));
    to += name + data;
    addBigEndian(to, checksumOf(name + data, 0, name.size() + data.size()));
}

std::string noise(size_t bytes) {
    std::minstd_rand random(1);
    std::string content(bytes, '\0');
    for (char& c : content) {
        c = static_cast<char>(random() >> 8);
    }
    return content;
}

unsigned int channelsOf(ColourType colours) {
    switch (colours) {
    case RGB:
        return 3;
    case GREY_ALPHA:
        return 2;
    case RGB_ALPHA:
        return 4;
    default:
        return 1;
    }
}

void addRows(std::string& to, const Picture& picture, uint32_t width, uint32_t height) {
    const size_t rowBytes = (size_t{width} * channelsOf(picture.colours) * picture.bits + 7) / 8;
    for (uint32_t row = 0; width > 0 && row < height; ++row) {
        to += '\0' + noise(rowBytes);
    }
}

std::string pixelsOf(const Picture& picture) {
    std::string rows;
    if (!picture.interlaced) {
        addRows(rows, picture, picture.width, picture.height);
        return rows;
    }
    for (const Pass& pass : PASSES) {
        addRows(rows, picture, (picture.width - pass.x + pass.stepX - 1) / pass.stepX,
                (picture.height - pass.y + pass.stepY - 1) / pass.stepY);
    }
    return rows;
}

std::string compressed(const std::string& content) {
    uLongf bytes = compressBound(static_cast<uLong>(content.size()));
    std::string result(bytes, '\0');
    compress2(reinterpret_cast<Bytef*>(result.data()), &bytes,
              reinterpret_cast<const Bytef*>(content.data()), static_cast<uLong>(content.size()),
              1);
    result.resize(bytes);
    return result;
}

std::string fileOf(const Picture& picture) {
    std::string head;
    addBigEndian(head, picture.width);
    addBigEndian(head, picture.height);
    head += static_cast<char>(picture.bits);
    head += static_cast<char>(picture.colours);
    head += std::string(2, '\0');
    head += picture.interlaced ? '\1' : '\0';
    std::string file(PNG_BEGIN, PNG_BEGIN_BYTES);
    addChunk(file, "IHDR", head);
    if (picture.colours == PALETTE) {
        addChunk(file, "PLTE", noise(3 * (size_t{1} << picture.bits)));
    }
    addChunk(file, "IDAT", compressed(pixelsOf(picture)));
    addChunk(file, "IEND", "");
    return file;
}

std::string fileOf(const Sound& sound) {
    std::string file = "RIFF";
    addLittleEndian(file, 36 + sound.toldDataBytes, 4);
    file += "WAVEfmt ";
    addLittleEndian(file, 16, 4);
    addLittleEndian(file, sound.format, 2);
    addLittleEndian(file, sound.channels, 2);
    addLittleEndian(file, sound.rateHz, 4);
    addLittleEndian(file, sound.rateHz * sound.blockBytes, 4);
    addLittleEndian(file, sound.blockBytes, 2);
    addLittleEndian(file, sound.bits, 2);
    file += "data";
    addLittleEndian(file, sound.toldDataBytes, 4);
    return file + noise(sound.dataBytes);
}

// Where a chunk begins, for each chunk.
std::vector<size_t> chunksOf(const std::string& picture) {
    std::vector<size_t> chunks;
    for (size_t at = PNG_BEGIN_BYTES; at + CHUNK_HEAD_BYTES + CHECKSUM_BYTES <= picture.size();
         at += CHUNK_HEAD_BYTES + bigEndianAt(picture, at) + CHECKSUM_BYTES) {
        chunks.push_back(at);
    }
    return chunks;
}

void flip(std::string& file, size_t at, uint32_t bit) {
    file[at] = static_cast<char>(file[at] ^ (1 << bit));
}

}  // namespace

std::string withFlippedBit(std::string file, size_t seed) {
    std::mt19937 random(static_cast<uint32_t>(seed));
    const size_t at = random() % file.size();
    flip(file, at, random() % 8);
    return file;
}

// Each chunk is hit equally often: small ones say how the large ones are read.
std::string withFittedFlip(std::string picture, size_t seed) {
    std::mt19937 random(static_cast<uint32_t>(seed));
    const std::vector<size_t> chunks = chunksOf(picture);
    const size_t chunk = chunks[random() % chunks.size()];
    const size_t bytes = bigEndianAt(picture, chunk) + 4;  // with the name
    flip(picture, chunk + 4 + random() % bytes, random() % 8);
    std::string checksum;
    addBigEndian(checksum, checksumOf(picture, chunk + 4, bytes));
    return picture.replace(chunk + 4 + bytes, CHECKSUM_BYTES, checksum);
}

std::string beforeLastPixels(const std::string& picture) {
    size_t end = 0;
    for (const size_t chunk : chunksOf(picture)) {
        if (picture.compare(chunk + 4, 4, "IDAT") == 0) {
            end = chunk + CHUNK_HEAD_BYTES + bigEndianAt(picture, chunk) / 2;
        }
    }
    return picture.substr(0, end);
}

size_t otherPictures() {
    return std::size(OTHER_PICTURES);
}

std::string otherPicture(size_t number) {
    return fileOf(OTHER_PICTURES[number]);
}

size_t impossiblePictures() {
    return std::size(IMPOSSIBLE_PICTURES);
}

std::string impossiblePicture(size_t number) {
    return fileOf(IMPOSSIBLE_PICTURES[number]);
}

size_t otherSounds() {
    return std::size(OTHER_SOUNDS);
}

std::string otherSound(size_t number) {
    return fileOf(OTHER_SOUNDS[number]);
}

size_t oddSounds() {
    return std::size(ODD_SOUNDS);
}

std::string oddSound(size_t number) {
    return fileOf(ODD_SOUNDS[number]);
}

}  // namespace reliability
