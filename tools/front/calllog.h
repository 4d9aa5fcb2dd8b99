// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_CALLLOG_H
#define KRAVOLTIX_FRONT_CALLLOG_H

#include <SDL.h>

#include <cstdio>
#include <map>
#include <string>

// What a game asks of the libraries, as lines of a text file: start-up, loads, sounds and shutdown
// call by call with the clock in front; at the end how often each function was called and how often
// each picture was drawn. README.md beside this file tells the format.
namespace front {

class CallLog {
public:
    // Lines go to this file from now on, without it nowhere. False when it cannot be made.
    bool open(const char* path);

    void write(Uint32 clockMs, const std::string& line);

    void countCall(const char* function);
    void countDrawing(const SDL_Surface* picture);

    // Pictures and sounds are called by the paths of their files. Null is "none", an unknown one "unnamed".
    void name(const void* asset, const std::string& path);
    std::string nameOf(const void* asset) const;

    // The counts of the whole run.
    void writeCounts();

private:
    std::FILE* file = nullptr;
    std::map<const void*, std::string> names;
    std::map<std::string, Uint32> calls;
    std::map<std::string, Uint32> drawings;
};

}  // namespace front

#endif
