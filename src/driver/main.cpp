// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"
#include "driver/webaddress.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

constexpr int WINDOW_WIDTH_PX = 640;
constexpr int WINDOW_HEIGHT_PX = 480;

constexpr size_t BOX_INNER_WIDTH = 66;  // characters between the two "|" of a line of the help box

bool isEither(const char* argument, const char* longName, const char* shortName) {
    return std::strcmp(argument, longName) == 0 || std::strcmp(argument, shortName) == 0;
}

// The web address as a line of the help box: capitals with a blank between them, centred, the
// smaller half of the padding on the left.
void printWebAddressLine() {
    constexpr char ADDRESS[] = KRAVOLTIX_WEB_ADDRESS;
    static_assert(sizeof ADDRESS > 1 && 2 * (sizeof ADDRESS - 1) - 1 <= BOX_INNER_WIDTH,
                  "KRAVOLTIX_WEB_ADDRESS must have 1 to 33 characters to fit the help box");
    std::string spaced;
    for (const char* c = ADDRESS; *c != '\0'; ++c) {
        if (!spaced.empty()) {
            spaced += ' ';
        }
        spaced += static_cast<char>(std::toupper(static_cast<unsigned char>(*c)));
    }
    const size_t padding = BOX_INNER_WIDTH - spaced.size();
    const std::string left(padding / 2, ' ');
    const std::string right(padding - padding / 2, ' ');
    std::puts(("  |" + left + spaced + right + "|").c_str());
}

// clang-format off
void printHelp() {
    std::puts("\n  +------------------------------------------------------------------+");
    std::puts("  |                 K R A V O L T I X  ---  H E L P                  |");
    std::puts("  +------------------------------------------------------------------+ ");
    std::puts("  |  Options:                                                        |");
    std::puts("  |   --help, -?         :  print out this help message              |");
    std::puts("  |   --fullscreen, -fs  :  start in fullscreen mode                 |");
    std::puts("  |   --nosound,    -ns  :  start without sound                      |");
    std::puts("  +------------------------------------------------------------------+ ");
    std::puts("  |  Keys:                                                           |");
    std::puts("  |   up    arrow        :  flying up                                |");
    std::puts("  |   right arrow        :  flying down                              |");
    std::puts("  |   left  arrow        :  flying left                              |");
    std::puts("  |   right arrow        :  flying right                             |");
    std::puts("  |   \"A\"                :  for laser shot                           |");
    std::puts("  |   \"S\"                :  for rocket shot                          |");
    std::puts("  +------------------------------------------------------------------+ ");
    std::puts("  |  By the way: redirecting output in a file stops bucking          |");
    std::puts("  |  and makes the game faster (only interesting in \"window mode\").  |");
    std::puts("  +------------------------------------------------------------------+ ");
    printWebAddressLine();
    std::puts("  +------------------------------------------------------------------+\n");
}
// clang-format on

// A closed stream's number goes to what is opened next, be it the connection to the display, and a
// line that is printed would go there: such a stream takes all that is written and has nothing to read.
void fillClosedStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", O_RDWR);  // takes the lowest number that is free: this one
        }
    }
}

}  // namespace

// Looks at two arguments and no more; help counts in the first place only, and a word that is not
// known is no error.
int main(int argc, char* argv[]) {
    fillClosedStreams();
    if (argc > 1 && isEither(argv[1], "--help", "-?")) {
        printHelp();
        return 0;
    }
    bool fullscreen = false;
    bool noSound = false;
    for (int i = 1; i < argc && i <= 2; ++i) {
        fullscreen = fullscreen || isEither(argv[i], "--fullscreen", "-fs");
        noSound = noSound || isEither(argv[i], "--nosound", "-ns");
    }
    // The constructor is the whole game. Nothing is freed before the process ends.
    new BattleField(WINDOW_WIDTH_PX, WINDOW_HEIGHT_PX, fullscreen, noSound);
    return 0;
}
