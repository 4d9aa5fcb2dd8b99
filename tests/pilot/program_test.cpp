// SPDX-License-Identifier: MIT
// The pilots' program, started from outside: it plays the kept games again and comes to the kept
// figures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The exit status; what it prints goes nowhere.
int runPilot(const std::string& arguments) {
    const std::string command = std::string(PILOT_PROGRAM) + " " + arguments;
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    EXPECT_TRUE(in) << path;
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// A file of its own for a test, removed at the end.
class OutputFile {
public:
    OutputFile() {
        const int file = mkstemp(name.data());
        EXPECT_GE(file, 0);
        close(file);
    }
    ~OutputFile() { std::filesystem::remove(name); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& path() const { return name; }

private:
    std::string name = std::filesystem::temp_directory_path() / "kravoltix-pilot-XXXXXX";
};

struct KeptGame {
    const char* file;
    const char* arguments;
};

void PrintTo(const KeptGame& game, std::ostream* out) {
    *out << game.file;
}

class KeptGames : public testing::TestWithParam<KeptGame> {};

INSTANTIATE_TEST_SUITE_P(OfThePilots, KeptGames,
                         testing::Values(KeptGame{"won", "winner --fps 60"},
                                         KeptGame{"won-1000", "winner --fps 1000"},
                                         KeptGame{"purist", "purist --fps 60"},
                                         KeptGame{"purist-1000", "purist --fps 1000"},
                                         KeptGame{"lost", "idler --fps 60"},
                                         KeptGame{"left", "leaver --fps 60"},
                                         KeptGame{"tour", "tourist"}),
                         [](const auto& instance) {
                             std::string name = instance.param.file;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

TEST_P(KeptGames, AreWrittenAgainByTheSteadyHand) {
    const OutputFile out;
    ASSERT_EQ(runPilot("play " + std::string(GetParam().arguments) + " " + out.path()), 0);
    EXPECT_TRUE(readFile(out.path()) ==
                readFile(PLAYTHROUGHS "/" + std::string(GetParam().file) + ".scenario"))
        << "the pilot plays another game; tests/playthrough/README.md tells what to do";
}

TEST(APilot, PlaysTheSameGameWhetherItIsDrawnOrNot) {
    const OutputFile drawn;
    const OutputFile undrawn;
    ASSERT_EQ(runPilot("play winner --seed 5 --draw " + drawn.path()), 0);
    ASSERT_EQ(runPilot("play winner --seed 5 " + undrawn.path()), 0);
    EXPECT_TRUE(readFile(drawn.path()) == readFile(undrawn.path()));
}

TEST(APilot, PlaysAnotherGameWithAnotherSeed) {
    const OutputFile one;
    const OutputFile other;
    ASSERT_EQ(runPilot("play idler --seed 1 " + one.path()), 0);
    ASSERT_EQ(runPilot("play idler --seed 2 " + other.path()), 0);
    EXPECT_FALSE(readFile(one.path()) == readFile(other.path()));
}

TEST(TheBalance, OfAFewSeedsComesToTheKeptFigures) {
    const OutputFile out;
    ASSERT_EQ(runPilot("balance --games 4 --json " + out.path()), 0);
    EXPECT_EQ(readFile(out.path()), readFile(KEPT_FIGURES));
}

TEST(TheBalance, IsTheSameWithOneProcessAtATime) {
    const OutputFile out;
    ASSERT_EQ(runPilot("balance --games 4 --processes 1 --json " + out.path()), 0);
    EXPECT_EQ(readFile(out.path()), readFile(KEPT_FIGURES));
}

TEST(ThePilotsCommandLine, RefusesWhatItDoesNotKnow) {
    const OutputFile out;
    EXPECT_NE(runPilot(""), 0);
    EXPECT_NE(runPilot("play nobody " + out.path()), 0);
    EXPECT_NE(runPilot("play winner --fps 0 " + out.path()), 0);
    EXPECT_NE(runPilot("play winner --fps 1001 " + out.path()), 0);
    EXPECT_NE(runPilot("balance --games 0 --json " + out.path()), 0);
    EXPECT_NE(runPilot("--data /nowhere play idler " + out.path()), 0);
    EXPECT_NE(runPilot("play idler /nowhere/idler.scenario"), 0);
    EXPECT_EQ(runPilot("--help"), 0);
}

}  // namespace
