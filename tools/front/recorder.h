// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_RECORDER_H
#define KRAVOLTIX_FRONT_RECORDER_H

#include "front/recording.h"

#include <string>
#include <vector>

// Writes a game down while it runs, in blocks of a second of its clock. Each block is packed and
// written at once, so a game that crashes or is killed leaves all but its last second.
namespace front {

class Recorder {
public:
    // What the first block begins with; to be filled in before the first frame.
    struct Head {
        std::vector<std::string> arguments;
        Uint32 startMs = 0;
        std::string libraries;
        std::vector<Failure> failures;
        std::vector<LoadedFile> files;
    };

    // False when the file cannot be made; errno tells why.
    bool open(const std::string& path);
    bool isOpen() const { return descriptor >= 0; }

    // A frame has been shown: its picture, and by how much the clock went on.
    void frame(Uint64 pictureHash, Uint32 ms);
    void event(Uint8 type, SDLKey key);
    void text(std::string_view bytes);
    // Before the first frame the clock counts from the game's start, then from 0.
    void call(Uint32 clockMs, const std::string& call);
    void hud(Uint32 energy, Uint32 lasers, Uint32 rockets);
    // What a scenario asks for; a replay is not compared by it.
    void pixels(const SDL_Rect& box, Uint32 colour, Uint32 count);
    void otherCall(Uint32 clockMs, const std::string& call);
    void drawing(const std::string& file, const SDL_Rect* part, const SDL_Rect* place);

    // The game is over; nothing may follow.
    void end(Uint32 clockMs, Uint32 status);

    // The hash of all pictures so far.
    Uint64 digest() const { return pictureDigest; }

    Head head;

private:
    void writeHead();
    void addRun(Uint32 ms);
    void writeBlock();
    std::string checkWords() const;

    int descriptor = -1;
    bool isWhole = true;  // until a block does not fit on the disk; then none follows
    Uint32 frames = 0;    // shown so far
    Uint64 pictureDigest = 0;

    std::vector<LibraryCall> early;  // before the first frame

    // the block
    std::string lines;
    Uint32 blockMs = 0;
    std::vector<FrameRun> runs;
    std::vector<Uint64> hashes;
};

}  // namespace front

#endif
