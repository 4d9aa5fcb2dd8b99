// SPDX-License-Identifier: MIT
#include "replay/summary.h"

#include <cstdio>

namespace replay {
namespace {

// What the game prints at these events.
constexpr char EXPLOSION_TEXT[] = "FlyingObject->explode()\n";
constexpr char LASER_HIT_TEXT[] = "widht deathFactor 1 ->";
constexpr char ROCKET_HIT_TEXT[] = "widht deathFactor 10 ->";
constexpr char LOST_TEXT[] = "\nGood Bye World!\n";
constexpr char LEFT_TEXT[] = "\nThank you for testing!\n";

constexpr Uint32 ENEMIES = 7;

Uint32 timesIn(const std::string& text, const std::string& part) {
    Uint32 count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
        ++count;
    }
    return count;
}

// After a frame that took no time the game sleeps for a millisecond.
Uint32 frameMs(const front::FrameRun& run) {
    return run.ms == 0 ? 1 : run.ms;
}

Uint32 lengthOf(const front::Recording& recording) {
    if (recording.seen.ended) {
        return recording.seen.clockMs - recording.given.startMs;
    }
    Uint32 ms = 0;
    for (const front::FrameRun& run : recording.given.frameRuns) {
        ms += frameMs(run) * run.frames;
    }
    return ms;
}

// The clock of a frame, from the times of the frames before it.
Uint32 clockOf(const front::Recording& recording, Uint32 frame) {
    Uint32 ms = 0;
    Uint32 at = 1;
    for (const front::FrameRun& run : recording.given.frameRuns) {
        const Uint32 count = frame - at < run.frames ? frame - at : run.frames;
        ms += count * frameMs(run);
        at += count;
        if (at == frame) {
            break;
        }
    }
    return ms;
}

}  // namespace

Summary summaryOf(const front::Recording& recording) {
    const front::Seen& seen = recording.seen;
    const std::string text = seen.text();
    Summary summary;
    summary.frames = static_cast<Uint32>(seen.checks.size());
    summary.lengthMs = lengthOf(recording);
    const bool lost = text.find(LOST_TEXT) != std::string::npos;
    // The player's own explosion is told like an enemy's; it is the last one then.
    const Uint32 explosions = timesIn(text, EXPLOSION_TEXT);
    summary.enemiesDestroyed = explosions - (lost && explosions > 0 ? 1 : 0);
    summary.laserHits = timesIn(text, LASER_HIT_TEXT);
    summary.rocketHits = timesIn(text, ROCKET_HIT_TEXT);
    if (!seen.hud.empty()) {
        summary.playMs = summary.lengthMs - clockOf(recording, seen.hud.front().frame);
        summary.lasersFired = seen.hud.front().lasers - seen.hud.back().lasers;
        summary.rocketsFired = seen.hud.front().rockets - seen.hud.back().rockets;
        summary.energy = seen.hud.back().energy;
    }
    if (lost) {
        summary.outcome = Outcome::LOST;
    } else if (seen.ended && summary.frames == 0) {
        summary.outcome = Outcome::NOT_STARTED;
    } else if (summary.enemiesDestroyed == ENEMIES) {
        summary.outcome = Outcome::WON;
    } else if (text.find(LEFT_TEXT) != std::string::npos) {
        summary.outcome = Outcome::LEFT;
    }
    return summary;
}

const char* wordFor(Outcome outcome) {
    switch (outcome) {
    case Outcome::WON:
        return "won";
    case Outcome::LOST:
        return "lost";
    case Outcome::LEFT:
        return "left";
    case Outcome::NOT_STARTED:
        return "not started";
    case Outcome::UNFINISHED:
        break;
    }
    return "unfinished";
}

std::string lengthWords(Uint32 ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%u:%02u.%03u", ms / 60000, ms / 1000 % 60, ms % 1000);
    return text;
}

}  // namespace replay
