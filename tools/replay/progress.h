// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_PROGRESS_H
#define KRAVOLTIX_REPLAY_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

// Tells on standard error how far a piece of work has come and how long it will still take: on a
// terminal in one line that is kept up to date, else in a few lines.
namespace replay {

class Progress {
public:
    Progress(const std::string& wantedWork, std::uint64_t wantedSteps);
    // Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step();

private:
    using Clock = std::chrono::steady_clock;

    bool isTimeToTell(Clock::time_point now) const;

    std::string work;
    std::uint64_t steps = 0;
    std::uint64_t done = 0;
    bool isTerminal = false;
    Clock::time_point start;
    Clock::time_point lastTold;
    std::uint64_t fifthsTold = 0;
};

}  // namespace replay

#endif
