// SPDX-License-Identifier: MIT
// What the words behind the program's name do.
#include "playthrough/texts.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <cctype>

namespace {

constexpr char LEAVE_AT_ONCE[] = "frame 1 quit\n";

constexpr char WINDOW_CALL[] = "SDL_SetVideoMode(640, 480, 32, 0x60000000)";
constexpr char FULLSCREEN_CALL[] = "SDL_SetVideoMode(640, 480, 32, 0xe0000000)";

ProgramResult runWith(const std::vector<std::string>& arguments) {
    return runProgram({arguments, LEAVE_AT_ONCE});
}

// The address in capitals with a blank between them, in a frame of 66 characters.
std::string expectedAddressLine() {
    const std::string address = KRAVOLTIX_WEB_ADDRESS;
    std::string line;
    for (size_t i = 0; i < address.size(); ++i) {
        line += i == 0 ? "" : " ";
        line += static_cast<char>(std::toupper(static_cast<unsigned char>(address[i])));
    }
    for (bool right = true; line.size() < 66; right = !right) {
        line.insert(right ? line.size() : 0, 1, ' ');
    }
    return "  |" + line + "|";
}

std::string expectedHelp() {
    std::string help = HELP_BOX;
    return help.replace(help.find('@'), 1, expectedAddressLine());
}

struct ArgumentCase {
    const char* rule;
    std::vector<std::string> arguments;
    bool fullscreen;
    bool sound;
};

void expectStart(const ArgumentCase& c) {
    SCOPED_TRACE(c.rule);
    const ProgramResult result = runWith(c.arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(timesIn(result.output, "H E L P"), 0);
    EXPECT_EQ(timesIn(result.output, "Starting in fullscreen mode...\n"), c.fullscreen ? 1 : 0);
    EXPECT_EQ(timesIn(result.output, "Starting in window mode...\n"), c.fullscreen ? 0 : 1);
    EXPECT_EQ(result.callsOf(FULLSCREEN_CALL).size(), c.fullscreen ? 1U : 0U);
    EXPECT_EQ(result.callsOf(WINDOW_CALL).size(), c.fullscreen ? 0U : 1U);
    EXPECT_EQ(timesIn(result.output, "Starting with audio support...\n"), c.sound ? 1 : 0);
    EXPECT_EQ(result.timesCalled("Mix_OpenAudio"), c.sound ? 1 : 0);
}

TEST(CommandLine, WithoutWordsTheGameStartsInAWindowWithSound) {
    expectStart({"no words", {}, false, true});
}

TEST(CommandLine, HelpInTheFirstPlacePrintsTheBoxAndEnds) {
    for (const char* word : {"--help", "-?"}) {
        SCOPED_TRACE(word);
        const ProgramResult result = runWith({word});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, expectedHelp());
        EXPECT_EQ(result.error, "");
    }
}

TEST(CommandLine, HelpCallsNoLibraryAndOpensNoWindow) {
    for (const char* word : {"--help", "-?"}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(runWith({word}).calls, std::vector<std::string>());
    }
}

TEST(CommandLine, HelpNeedsNeitherDisplayNorSoundNorTheGamesFiles) {
    const TemporaryFolder empty;
    ProgramRun run;
    run.arguments = {"--help"};
    run.folder = empty.path;
    run.environment = {{"SDL_VIDEODRIVER", "nonsense"}, {"SDL_AUDIODRIVER", "nonsense"}};
    const ProgramResult result = runProgram(run);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, expectedHelp());
}

TEST(CommandLine, HelpGoesBeforeAnyWordBehindIt) {
    const ProgramResult result = runWith({"--help", "-fs", "-ns"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, expectedHelp());
    EXPECT_EQ(result.calls, std::vector<std::string>());
}

TEST(CommandLine, TheBoxShowsTheAddressSpacedOutAndTheSmallerHalfOfThePaddingOnTheLeft) {
    if (std::string(KRAVOLTIX_WEB_ADDRESS) != "kravoltix.example") {
        GTEST_SKIP() << "built with another address";
    }
    const char line[] = "  |                K R A V O L T I X . E X A M P L E                 |\n";
    EXPECT_EQ(timesIn(runWith({"-?"}).output, line), 1);
}

TEST(CommandLine, EachOptionCountsInTheFirstAndInTheSecondPlace) {
    const ArgumentCase cases[] = {
        {"long full screen, first", {"--fullscreen"}, true, true},
        {"short full screen, first", {"-fs"}, true, true},
        {"long full screen, second", {"x", "--fullscreen"}, true, true},
        {"short full screen, second", {"x", "-fs"}, true, true},
        {"long no sound, first", {"--nosound"}, false, false},
        {"short no sound, first", {"-ns"}, false, false},
        {"long no sound, second", {"x", "--nosound"}, false, false},
        {"short no sound, second", {"x", "-ns"}, false, false},
    };
    for (const ArgumentCase& c : cases) {
        expectStart(c);
    }
}

TEST(CommandLine, BothOptionsGoTogetherInEitherOrder) {
    const ArgumentCase cases[] = {
        {"no sound before full screen", {"-ns", "-fs"}, true, false},
        {"full screen before no sound", {"-fs", "-ns"}, true, false},
        {"long words", {"--fullscreen", "--nosound"}, true, false},
        {"a long and a short word", {"-ns", "--fullscreen"}, true, false},
    };
    for (const ArgumentCase& c : cases) {
        expectStart(c);
    }
}

TEST(CommandLine, TheSameOptionTwiceIsNoHarm) {
    expectStart({"full screen twice", {"-fs", "--fullscreen"}, true, true});
    expectStart({"no sound twice", {"-ns", "-ns"}, false, false});
}

TEST(CommandLine, HelpInTheSecondPlaceIsNotSeen) {
    expectStart({"full screen, then --help", {"-fs", "--help"}, true, true});
    expectStart({"no sound, then -?", {"-ns", "-?"}, false, false});
    expectStart({"an unknown word, then --help", {"x", "--help"}, false, true});
}

TEST(CommandLine, AThirdWordIsNeverLookedAt) {
    expectStart({"two unknown words before full screen", {"x", "y", "-fs"}, false, true});
    expectStart({"two unknown words before no sound", {"x", "y", "-ns"}, false, true});
    expectStart({"help in the third place", {"x", "y", "--help"}, false, true});
    expectStart({"both after full screen", {"-fs", "x", "-ns", "-ns"}, true, true});
}

TEST(CommandLine, AWordThatIsNotKnownIsNoError) {
    const ArgumentCase cases[] = {
        {"longer than the option", {"--fullscreens"}, false, true},
        {"longer than the short option", {"-fsx"}, false, true},
        {"a beginning of the option", {"--fullscree"}, false, true},
        {"longer, no sound", {"--nosounds", "-nsx"}, false, true},
        {"longer, help", {"--helpme"}, false, true},
        {"longer, short help", {"-?x"}, false, true},
        {"capitals", {"--FULLSCREEN", "-NS"}, false, true},
        {"capitals, help", {"--HELP"}, false, true},
        {"no dash", {"fs", "ns"}, false, true},
        {"one dash for the long word", {"-fullscreen", "-nosound"}, false, true},
        {"one dash for long help", {"-help"}, false, true},
        {"two dashes for the short word", {"--fs", "--ns"}, false, true},
        {"help by another letter", {"-h"}, false, true},
        {"nothing in quotes", {"", ""}, false, true},
        {"both options in one word", {"-fs -ns"}, false, true},
    };
    for (const ArgumentCase& c : cases) {
        expectStart(c);
    }
}

}  // namespace
