// SPDX-License-Identifier: MIT
#include "front/recorder.h"

#include "front/picture.h"
#include "front/writeall.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace front {
namespace {

constexpr Uint32 BLOCK_MS = 1000;
constexpr size_t BLOCK_FRAMES = 1000;

// Sixty kilobytes a minute for the checks of the pictures, whatever the frame rate: the more frames
// in a block, the fewer bits for each.
constexpr size_t FRAMES_WITH_32_BITS = 250;
constexpr size_t FRAMES_WITH_16_BITS = 500;

std::string formatted(const char* format, unsigned long long value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string boxWords(const SDL_Rect& box) {
    return std::to_string(box.x) + ' ' + std::to_string(box.y) + ' ' + std::to_string(box.w) + ' ' +
           std::to_string(box.h);
}

// A corner beyond the left or upper edge is told as one at the edge, like the lack of a rectangle.
std::string cornerWords(const SDL_Rect* rect) {
    const int x = rect == nullptr ? 0 : std::max<int>(rect->x, 0);
    const int y = rect == nullptr ? 0 : std::max<int>(rect->y, 0);
    return ' ' + std::to_string(x) + ' ' + std::to_string(y);
}

}  // namespace

bool Recorder::open(const std::string& path) {
    descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return descriptor >= 0;
}

void Recorder::frame(Uint64 pictureHash, Uint32 ms) {
    if (frames == 0) {
        writeHead();
    }
    ++frames;
    pictureDigest = chained(pictureDigest, pictureHash);
    hashes.push_back(pictureHash);
    addRun(ms);
    blockMs += ms;
    if (blockMs >= BLOCK_MS || hashes.size() >= BLOCK_FRAMES) {
        writeBlock();
    }
}

void Recorder::addRun(Uint32 ms) {
    if (!runs.empty() && runs.back().ms == ms) {
        ++runs.back().frames;
    } else {
        runs.push_back({ms, 1});
    }
}

void Recorder::event(Uint8 type, SDLKey key) {
    lines += "frame " + std::to_string(frames);
    lines += type == SDL_QUIT      ? std::string(" quit")
             : type == SDL_KEYDOWN ? " down " + keyWord(key)
                                   : " up " + keyWord(key);
    lines += '\n';
}

void Recorder::text(std::string_view bytes) {
    if (!bytes.empty()) {
        lines += "text " + std::to_string(frames) + ' ' + quoted(bytes) + '\n';
    }
}

void Recorder::call(Uint32 clockMs, const std::string& call) {
    if (frames == 0) {
        early.push_back({0, clockMs, call});
        return;
    }
    lines += "call " + std::to_string(frames) + ' ' + std::to_string(clockMs) + ' ' + call + '\n';
}

void Recorder::hud(Uint32 energy, Uint32 lasers, Uint32 rockets) {
    lines += "hud " + std::to_string(frames) + ' ' + std::to_string(energy) + ' ' +
             std::to_string(lasers) + ' ' + std::to_string(rockets) + '\n';
}

void Recorder::pixels(const SDL_Rect& box, Uint32 colour, Uint32 count) {
    lines += "pixels " + std::to_string(frames + 1) + formatted(" %06llx ", colour) +
             boxWords(box) + ' ' + std::to_string(count) + '\n';
}

void Recorder::otherCall(Uint32 clockMs, const std::string& call) {
    lines += "other " + std::to_string(frames) + ' ' + std::to_string(clockMs) + ' ' + call + '\n';
}

void Recorder::drawing(const std::string& file, const SDL_Rect* part, const SDL_Rect* place) {
    lines += "drawn " + std::to_string(frames + 1) + ' ' + quoted(file) + cornerWords(part) +
             cornerWords(place) + '\n';
}

void Recorder::end(Uint32 clockMs, Uint32 status) {
    if (frames == 0) {
        writeHead();
    }
    writeBlock();
    lines = "end " + std::to_string(frames) + ' ' + std::to_string(clockMs) + ' ' +
            std::to_string(status) + '\n';
    writeBlock();
    close(descriptor);
    descriptor = -1;
}

// The head stands before all that has happened until the first frame. Only now is the clock known
// that the game's start is told by.
void Recorder::writeHead() {
    std::string text = RECORDING_WORD + formatted(" %llu\n", RECORDING_FORMAT);
    text += "library " + head.libraries + '\n';
    for (const std::string& argument : head.arguments) {
        text += "option " + quoted(argument) + '\n';
    }
    text += "start " + std::to_string(head.startMs) + '\n';
    for (const Failure& failure : head.failures) {
        text += "fail " + failure.function + ' ' + std::to_string(failure.call) + ' ' +
                failure.text + '\n';
    }
    for (const LoadedFile& file : head.files) {
        text += "file " + quoted(file.file) + formatted(" %016llx\n", file.hash);
    }
    for (const LibraryCall& call : early) {
        text += "call 0 " + std::to_string(head.startMs + call.clockMs) + ' ' + call.call + '\n';
    }
    lines.insert(0, text);
}

std::string Recorder::checkWords() const {
    const size_t count = hashes.size();
    const unsigned int bits = count <= FRAMES_WITH_32_BITS   ? 32
                              : count <= FRAMES_WITH_16_BITS ? 16
                                                             : 8;
    std::string words = std::to_string(frames - count + 1) + ' ' + std::to_string(bits) + ' ';
    for (const Uint64 hash : hashes) {
        char check[9];
        std::snprintf(check, sizeof check, "%0*x", static_cast<int>(bits / 4),
                      static_cast<Uint32>(hash & (~Uint64{0} >> (64 - bits))));
        words += check;
    }
    return words;
}

void Recorder::writeBlock() {
    if (!hashes.empty()) {
        lines +=
            "times " + std::to_string(frames - hashes.size() + 1) + ' ' + runWords(runs) + '\n';
        lines += "pictures " + checkWords() + '\n';
        lines += "digest " + std::to_string(frames) + formatted(" %016llx\n", pictureDigest);
    }
    if (!lines.empty() && isWhole) {
        const std::string bytes = packed(lines);
        isWhole = writeAll(descriptor, bytes.data(), bytes.size());
        if (!isWhole) {
            std::perror("front: the recording ends here, the game goes on");
        }
    }
    lines.clear();
    runs.clear();
    hashes.clear();
    blockMs = 0;
}

}  // namespace front
