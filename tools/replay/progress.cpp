// SPDX-License-Identifier: MIT
#include "replay/progress.h"

#include <cstdio>
#include <unistd.h>

namespace replay {
namespace {

constexpr std::chrono::milliseconds TERMINAL_PAUSE(200);
// Where lines stay, a line for each fifth of the work, and none for what is done in no time.
constexpr std::chrono::seconds LINE_PAUSE(2);
constexpr std::uint64_t FIFTHS = 5;
constexpr char CLEAR_LINE[] = "\r\033[K";

}  // namespace

Progress::Progress(const std::string& wantedWork, std::uint64_t wantedSteps)
    : work(wantedWork), steps(wantedSteps), isTerminal(isatty(STDERR_FILENO) != 0) {}

bool Progress::isTimeToTell(Clock::time_point now) const {
    if (isTerminal) {
        return now - lastTold >= TERMINAL_PAUSE;
    }
    return now - lastTold >= LINE_PAUSE && done * FIFTHS / steps > fifthsTold;
}

void Progress::step() {
    const Clock::time_point now = Clock::now();
    if (done++ == 0) {
        // What goes before the first step says nothing about the others.
        start = lastTold = now;
    }
    if (done >= steps || !isTimeToTell(now)) {
        return;
    }
    lastTold = now;
    fifthsTold = done * FIFTHS / steps;
    const double seconds = std::chrono::duration<double>(now - start).count();
    const double left = seconds * static_cast<double>(steps - done) / static_cast<double>(done);
    std::fprintf(stderr, "%s%s: %3.0f %%, %.0f s left%s", isTerminal ? CLEAR_LINE : "",
                 work.c_str(), 100.0 * static_cast<double>(done) / static_cast<double>(steps), left,
                 isTerminal ? "" : "\n");
    std::fflush(stderr);
}

Progress::~Progress() {
    if (isTerminal) {
        std::fputs(CLEAR_LINE, stderr);
        std::fflush(stderr);
    }
}

}  // namespace replay
