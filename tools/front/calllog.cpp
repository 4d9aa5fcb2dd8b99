// SPDX-License-Identifier: MIT
#include "front/calllog.h"

#include <cstdio>

namespace front {

bool CallLog::open(const char* path) {
    file = std::fopen(path, "w");
    if (file == nullptr) {
        return false;
    }
    // Line by line, so that a crash leaves all that came before it.
    std::setvbuf(file, nullptr, _IOLBF, BUFSIZ);
    return true;
}

void CallLog::write(Uint32 clockMs, const std::string& line) {
    if (file != nullptr) {
        std::fprintf(file, "%u %s\n", clockMs, line.c_str());
    }
}

void CallLog::countCall(const char* function) {
    if (file != nullptr) {
        ++calls[function];
    }
}

void CallLog::countDrawing(const SDL_Surface* picture) {
    if (file != nullptr) {
        ++drawings[nameOf(picture)];
    }
}

void CallLog::name(const void* asset, const std::string& path) {
    if (asset != nullptr) {
        names[asset] = path;
    }
}

std::string CallLog::nameOf(const void* asset) const {
    if (asset == nullptr) {
        return "none";
    }
    const auto found = names.find(asset);
    return found == names.end() ? "unnamed" : found->second;
}

void CallLog::writeCounts() {
    if (file == nullptr) {
        return;
    }
    for (const auto& call : calls) {
        std::fprintf(file, "called %s %u\n", call.first.c_str(), call.second);
    }
    for (const auto& drawing : drawings) {
        std::fprintf(file, "drawn %s %u\n", drawing.first.c_str(), drawing.second);
    }
}

}  // namespace front
