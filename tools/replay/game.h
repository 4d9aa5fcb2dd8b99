// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_GAME_H
#define KRAVOLTIX_REPLAY_GAME_H

#include "front/recording.h"

#include <stdexcept>
#include <string>
#include <vector>

// The unmodified game, run as a process of its own with the layer in front of its libraries.
namespace replay {

// What goes wrong with the machine or with a file, in one line for the user. Ends the verb.
struct Trouble : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What is run: found beside this tool unless the user names it.
struct Place {
    std::string program;
    std::string preload;
    std::string data;
};

// Fills in what the user has not named: the build tree's files or the installed ones, both by their
// place relative to this tool. Throws Trouble that names what is missing.
void complete(Place& place);

struct KeptFrame {
    Uint32 frame;
    std::string file;  // a BMP picture
};

struct GameRun {
    std::string script;                  // recording or scenario; empty: the player plays
    std::vector<std::string> arguments;  // of the game
    std::string recordTo;
    std::string errorsTo;         // file for its standard error; empty: this process's own
    std::vector<KeptFrame> kept;  // in the order of their frames
    bool seen = false;            // in the player's window and with sound; else without both
    bool quiet = true;            // the game's text is dropped
    double speed = 0;             // 0: as fast as the machine can
    int filmTo = -1;              // descriptor that takes raw pictures, filmRate a second
    unsigned int filmRate = 60;
};

struct GameResult {
    int status = 0;  // exit status, or -1 after a signal
    int signal = 0;  // that ended the game, or 0
};

// Runs a game to its end.
GameResult runGame(const Place& place, const GameRun& run);

// The same without waiting; waitForGame() then. The caller may close its filmTo in between.
int startGame(const Place& place, const GameRun& run);
GameResult waitForGame(int process);

// Reads a recording or scenario; throws Trouble when it cannot be read, or when it was cut off and
// `partly` is false.
front::Recording readFile(const std::string& path, bool partly);

// What comes of a file's game: plays it without window and sound at full speed. A damaged start of
// the game (a bad script) throws Trouble.
front::Recording playAgain(const Place& place, const std::string& path,
                           const std::vector<KeptFrame>& kept = {});

// A file's own folder, removed at the end of the scope.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path;
};

}  // namespace replay

#endif
