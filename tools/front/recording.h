// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_RECORDING_H
#define KRAVOLTIX_FRONT_RECORDING_H

#include "front/scenario.h"

#include <string>
#include <string_view>
#include <vector>

// A game with what came of it: picture, library calls and text, frame by frame. Frames are counted
// by SDL_Flip from 1; what comes before the first one has frame 0, what comes between two flips
// belongs to the earlier. docs/replay-format.md tells the file.
namespace front {

constexpr Uint32 RECORDING_FORMAT = 1;
constexpr char RECORDING_WORD[] = "kravoltix-replay";

struct PrintedText {
    Uint32 frame;
    std::string bytes;
};

struct LibraryCall {
    Uint32 frame;
    Uint32 clockMs;
    std::string call;
};

// What the player reads on the screen.
struct HudReading {
    Uint32 frame;
    Uint32 energy;
    Uint32 lasers;
    Uint32 rockets;
};

// The low bits of a picture's hash: enough to find the first picture that differs.
struct PictureCheck {
    Uint32 value;
    Uint32 bits;
};

// The hash of all pictures up to and with this frame.
struct PictureDigest {
    Uint32 frame;
    Uint64 digest;
};

struct PixelCount {
    Uint32 frame;
    Uint32 colour;
    SDL_Rect box;
    Uint32 count;
};

// A picture, or a part of it from this corner on, that was drawn with its corner at this place.
struct Drawing {
    Uint32 frame;  // the one that shows it
    std::string file;
    Corner part, place;
};

struct LoadedFile {
    std::string file;
    Uint64 hash;
};

struct Seen {
    std::string libraries;  // "SDL 1.2.15"
    std::vector<LoadedFile> files;
    std::vector<PrintedText> texts;
    std::vector<LibraryCall> calls;
    std::vector<HudReading> hud;
    std::vector<PictureCheck> checks;  // of frame 1, 2, ...
    std::vector<PictureDigest> digests;
    std::vector<PixelCount> pixels;
    std::vector<LibraryCall> otherCalls;  // not of the mixer, and not compared
    std::vector<Drawing> drawings;
    // The end; without one the game was killed, or the file is not whole.
    bool ended = false;
    Uint32 frames = 0;
    Uint32 clockMs = 0;
    Uint32 status = 0;

    std::string text() const;  // all that was printed
};

struct Recording {
    Scenario given;
    Seen seen;
    bool isRecording = false;  // false: a scenario, nothing has been seen yet
    std::string cutOff;        // where a recording without an end stops; empty when it is whole
};

// Reads a recording or a scenario from its file. False with `error` set to "FILE:LINE: what is
// wrong", or "FILE: ..." where no line can be told; the recording is not to be used then. One that
// was cut off is read up to where it is whole, and says so in `cutOff`.
bool readRecording(const std::string& path, Recording& recording, std::string& error);

// The same from memory; `name` stands for the file in messages.
bool readRecording(std::string_view bytes, const std::string& name, Recording& recording,
                   std::string& error);

// One gzip member with this text. A recording is a row of them, so that what is written is safe.
std::string packed(const std::string& text);

}  // namespace front

#endif
