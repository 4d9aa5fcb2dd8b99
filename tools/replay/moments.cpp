// SPDX-License-Identifier: MIT
#include "replay/moments.h"

#include "replay/picturefile.h"
#include "replay/summary.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>

namespace replay {
namespace {

namespace fs = std::filesystem;

// When there is most to see.
constexpr Uint32 TITLE_MS = 20;           // before Return lets the title go
constexpr Uint32 COUNTDOWN_MS = 2000;     // behind its music
constexpr Uint32 FORMATION_MS = 300;      // before the first of it explodes
constexpr Uint32 FLASH_MS = 60;           // behind the hit
constexpr Uint32 FIREBALL_MS = 300;       // behind the explosion's sound
constexpr Uint32 LAST_FIREBALL_MS = 700;  // the same, where nobody is left to look at

constexpr double MS_PER_SECOND = 1000;

// What tells them.
constexpr char RETURN_IS_PRESSED[] = "sounds/keyboard.wav,";
constexpr char INTRO[] = "sounds/intro.wav,";
constexpr char LASER_HITS[] = "sounds/miniExplode1.wav,";
constexpr char ENEMY_EXPLODES[] = "sounds/explode.wav,";
constexpr char PLAYER_EXPLODES[] = "sounds/explode2.wav,";

using Clocks = std::vector<Uint32>;

// When each frame was shown, from frame 1 on.
Clocks shownAt(const front::Recording& recording) {
    Clocks clocks;
    Uint32 clock = recording.given.startMs;
    for (const front::FrameRun& run : recording.given.frameRuns) {
        for (Uint32 i = 0; i < run.frames; ++i) {
            clocks.push_back(clock);
            clock += run.ms == 0 ? 1 : run.ms;  // the game sleeps behind a frame without time
        }
    }
    return clocks;
}

// When the game played this sound, in its order.
Clocks timesOf(const front::Seen& seen, const std::string& sound) {
    Clocks times;
    for (const front::LibraryCall& call : seen.calls) {
        if (call.call.rfind("Mix_PlayChannelTimed(", 0) == 0 &&
            call.call.find(sound) != std::string::npos) {
            times.push_back(call.clockMs);
        }
    }
    return times;
}

// The one that follows its predecessor soonest: two fireballs at once.
Uint32 closest(const Clocks& times) {
    size_t best = 0;
    for (size_t i = 1; i < times.size(); ++i) {
        if (best == 0 || times[i] - times[i - 1] < times[best] - times[best - 1]) {
            best = i;
        }
    }
    return times[best];
}

// The one that comes soonest in the light of a fireball; else the first.
Uint32 litHit(const Clocks& hits, const Clocks& explosions) {
    Uint32 best = hits.front();
    Uint32 bestAge = ~0U;
    for (const Uint32 hit : hits) {
        for (const Uint32 explosion : explosions) {
            const Uint32 age = hit - explosion;
            if (hit >= explosion + FIREBALL_MS && age < bestAge) {
                best = hit;
                bestAge = age;
            }
        }
    }
    return best;
}

class Chooser {
public:
    explicit Chooser(const front::Recording& recording) : clocks(shownAt(recording)) {}

    // The last frame that was shown by this time.
    void add(const std::string& name, Uint32 clockMs) {
        const auto behind = std::upper_bound(clocks.begin(), clocks.end(), clockMs);
        if (behind != clocks.begin()) {
            const Uint32 frame = static_cast<Uint32>(behind - clocks.begin());
            moments.push_back({name, frame, *std::prev(behind) - clocks.front()});
        }
    }

    std::vector<Moment> moments;

private:
    const Clocks clocks;
};

}  // namespace

std::vector<Moment> momentsOf(const front::Recording& recording) {
    const front::Seen& seen = recording.seen;
    const Clocks keys = timesOf(seen, RETURN_IS_PRESSED);
    const Clocks intro = timesOf(seen, INTRO);
    const Clocks hits = timesOf(seen, LASER_HITS);
    const Clocks explosions = timesOf(seen, ENEMY_EXPLODES);
    const Clocks ownEnd = timesOf(seen, PLAYER_EXPLODES);
    Chooser chooser(recording);
    if (!intro.empty() && !keys.empty()) {
        chooser.add("title", keys.front() - TITLE_MS);
        chooser.add("countdown", intro.front() + COUNTDOWN_MS);
    }
    if (!explosions.empty()) {
        chooser.add("formation", explosions.front() - FORMATION_MS);
        chooser.add("explosion", closest(explosions) + FIREBALL_MS);
    }
    if (!hits.empty()) {
        chooser.add("laser-hit", litHit(hits, explosions) + FLASH_MS);
    }
    const Outcome outcome = summaryOf(recording).outcome;
    if (outcome == Outcome::WON && !explosions.empty()) {
        chooser.add("won", explosions.back() + LAST_FIREBALL_MS);
    } else if (outcome == Outcome::LOST && !ownEnd.empty()) {
        chooser.add("lost", ownEnd.back() + LAST_FIREBALL_MS);
    }
    std::stable_sort(chooser.moments.begin(), chooser.moments.end(),
                     [](const Moment& a, const Moment& b) { return a.frame < b.frame; });
    return chooser.moments;
}

int keepMoments(const MomentsOptions& options) {
    const std::vector<Moment> moments = momentsOf(playAgain(options.place, options.file));
    if (moments.empty()) {
        throw Trouble(options.file + ": the game has none of the moments; its sounds tell them");
    }
    std::error_code error;
    fs::create_directories(options.folder, error);
    if (error) {
        throw Trouble(options.folder + ": cannot be made: " + error.message());
    }
    const TemporaryFolder folder;
    std::vector<KeptFrame> kept;
    for (const Moment& moment : moments) {
        const std::string png = options.folder + "/" + moment.name + ".png";
        if (!options.force && fs::exists(png)) {
            throw Trouble(png + ": is there already; say --force to write over it");
        }
        kept.push_back({moment.frame, folder.path + "/" + moment.name + ".bmp"});
    }
    playAgain(options.place, options.file, kept);
    for (size_t i = 0; i < moments.size(); ++i) {
        const std::string png = options.folder + "/" + moments[i].name + ".png";
        convertToPng(kept[i].file, png);
        std::printf("%s: frame %u, second %.1f\n", png.c_str(), moments[i].frame,
                    moments[i].ms / MS_PER_SECOND);
    }
    return 0;
}

}  // namespace replay
