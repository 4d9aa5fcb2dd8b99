// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_RELIABILITY_START_H
#define KRAVOLTIX_TESTS_RELIABILITY_START_H

#include "driver/battlefield.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

// A start of the game in a process of its own, cheap enough to be made by the ten thousands: the
// process is forked from the test's and has the intact pictures already. Everything behind the game
// is the true thing but its clock, which goes on with each frame, and its events, which the test
// queues.
namespace reliability {

constexpr Uint32 FRAME_MS = 51;  // one step of every text and explosion

// The game that runs in this process, for the hooks of a test.
struct Running {
    explicit Running(BattleField& played) : field(played) {}

    BattleField& field;
    int frame = 0;  // frames shown so far
    Uint32 clockMs = 4000;
    Uint32 frameMs = FRAME_MS;  // what the clock goes on by when a frame is shown
    std::deque<SDL_Event> events;

    void press(SDLKey key);
    void release(SDLKey key);
    void closeWindow();
};

// What the process tells its parent besides its text.
struct Report {
    bool damagedLoaded;  // the damaged file came back from the library, the last time it was asked
    int damagedLoads;
    int damagedWidth, damagedHeight;  // of the damaged picture that came back, in pixels
    int damagedUses;                  // drawings of it, or plays
    int nothingDrawn;                 // drawings of no picture
    int frames;
    unsigned int soundSum;  // of all samples of the damaged sound, each of which was read
    int calls;              // whatever a test counts
    Uint32 seen[40];        // whatever a test notes
};

constexpr int STATUS_NOTHING_LOADED = 96;

struct Start {
    std::string folder = GAME_DATA;  // working directory
    bool fullscreen = false;
    bool noSound = true;
    // The file that is truly loaded; with trueSounds also all sounds, by the true mixer. Else
    // intact pictures come from the test's own memory, and the mixer is not asked.
    std::string damaged;
    std::vector<std::string> missing;  // asked for in vain; loaded like the damaged one
    bool trueSounds = false;
    // Ends with STATUS_NOTHING_LOADED where the library makes nothing of the damaged file: the game
    // has nothing then that it would not have without the file.
    bool onlyWithDamaged = false;
    // In the new process, before the game: more hooks, other streams.
    std::function<void(Running&)> prepare;
    std::function<void(Running&, Report&)> prepareWithReport;
    // After each frame is complete, before its events are handled.
    std::function<void(Running&)> betweenFrames;
    std::function<void(Running&, Report&)> betweenFramesWithReport;
};

struct End {
    int status = -1;  // exit status, -1 after a signal
    int signal = 0;
    std::string output;
    std::string error;
    Report report = {};

    bool isCrash() const;      // of the game or a library, told by the system or a sanitizer
    std::string told() const;  // for messages
};

// Loads the intact pictures, once for the process.
void loadIntactPictures();

End start(const Start& wanted);

// Runs an action in a process of its own; its result becomes the exit status.
End inOtherProcess(const std::function<int(Report&)>& action);

// Tells on standard error how far a long test has come and how long it will take.
class Progress {
public:
    Progress(const char* ofWhat, size_t howMany);
    void step();

private:
    const char* name;
    size_t cases;
    size_t done = 0;
    double startSeconds;
    double toldSeconds;
};

}  // namespace reliability

#endif
