// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_PROGRAM_H
#define KRAVOLTIX_TESTS_SUPPORT_PROGRAM_H

#include <SDL.h>

#include <map>
#include <string>
#include <vector>

// The built program, started from outside as a player starts it, as a process of its own. A
// scenario holds its clock, keys and library calls (tools/front/README.md); without one it gets the
// real ones.
struct ProgramRun {
    std::vector<std::string> arguments;
    std::string scenario;                                 // its text; "" runs the program by itself
    std::string folder = GAME_DATA;                       // working directory
    std::map<std::string, std::string> environment = {};  // besides the test's own
    unsigned int timeoutSeconds = 120;  // of real time; then the program is killed
};

struct ProgramResult {
    int status = -1;  // exit status, -1 after a signal
    int signal = 0;   // that ended the program, 0 when it ended by itself
    bool timedOut = false;
    std::string output;
    std::string error;
    std::vector<std::string> calls;                // lines of the file of calls, clock included
    std::map<std::string, SDL_Surface*> pictures;  // kept by the scenario, by their file names

    // The calls whose text (without the clock) begins so, in their order, without the clock.
    std::vector<std::string> callsOf(const std::string& beginning) const;

    // The clock of the first such call, -1 when there is none.
    long clockOf(const std::string& beginning) const;

    // How often the library function was called, and the picture drawn.
    int timesCalled(const std::string& function) const;
    int timesDrawn(const std::string& picture) const;

    bool called(const std::string& beginning) const { return !callsOf(beginning).empty(); }
};

ProgramResult runProgram(const ProgramRun& run);

// A folder of its own for a test, removed with everything in it at the end of the scope.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string path;
};

// The bytes of a file; a file that cannot be read or written fails the test.
std::string contentOf(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

// Whether the tests are to try everything, and not only a sample: the variable KRAVOLTIX_COMPLETE is set.
bool isComplete();

// Whether the game was built with sanitizers, which take their time.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

#endif
