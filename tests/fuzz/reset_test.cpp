// SPDX-License-Identifier: MIT
// Many games in one process: each must be the game that a player who starts the program has.
#include "front/front.h"
#include "front/recording.h"
#include "fuzz/blocks.h"
#include "fuzz/games.h"
#include "fuzz/heldgame.h"
#include "fuzz/statemap.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "support/capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Bytes = std::vector<std::uint8_t>;
using fuzz::HeldGame;
using fuzz::Moment;

constexpr char BEGINNING[] = "-- the start --\n";
constexpr char FAREWELL[] = "\nThank you for testing!";

std::vector<Bytes> keptInputs() {
    std::vector<Bytes> inputs;
    std::ifstream in(FUZZ_CORPUS "/play.txt");
    for (std::string line; std::getline(in, line);) {
        Bytes bytes;
        for (size_t i = 0; i + 1 < line.size(); i += 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(line.substr(i, 2), nullptr, 16)));
        }
        inputs.push_back(bytes);
    }
    return inputs;
}

// The longest kept inputs that begin at a start.
std::vector<Bytes> longestFrom(HeldGame::Start start, size_t count) {
    std::vector<Bytes> inputs = keptInputs();
    const auto isOther = [&](const Bytes& bytes) {
        return fuzz::Game(bytes.data(), bytes.size()).start() != start;
    };
    inputs.erase(std::remove_if(inputs.begin(), inputs.end(), isOther), inputs.end());
    std::sort(inputs.begin(), inputs.end(),
              [](const Bytes& a, const Bytes& b) { return a.size() > b.size(); });
    inputs.resize(std::min(inputs.size(), count));
    return inputs;
}

// Writes down what a player would see and hear: each picture with its place, and each sound.
class Witness {
public:
    Witness() {
        front::Hooks& hooks = front::hooks();
        hooks.IMG_Load = [this](const char* file) {
            const fuzz::Unwatched own;
            SDL_Surface* picture = front::real::IMG_Load(file);
            names[picture] = file;
            return picture;
        };
        hooks.SDL_UpperBlit = [this, blit = hooks.SDL_UpperBlit](SDL_Surface* from, SDL_Rect* part,
                                                                 SDL_Surface* to, SDL_Rect* place) {
            const fuzz::Unwatched own;
            seen << names[from];
            note(part);
            note(place);
            return blit(from, part, to, place);
        };
        hooks.Mix_PlayChannelTimed = [this](int channel, Mix_Chunk*, int, int) {
            const fuzz::Unwatched own;
            seen << "sound " << channel << '\n';
            return channel;
        };
    }

    void start() {
        std::fputs(BEGINNING, stdout);
        seen.str("");
    }

    std::string all() const { return seen.str(); }

private:
    void note(const SDL_Rect* rect) {
        if (rect != nullptr) {
            seen << ' ' << rect->x << ' ' << rect->y << ' ' << rect->w << ' ' << rect->h;
        }
        seen << '\n';
    }

    std::map<const SDL_Surface*, std::string> names;
    std::ostringstream seen;
};

std::string placesOf(const BattleField& field) {
    std::ostringstream out;
    out << std::hexfloat << field.myShip->xFloat << ' ' << field.myShip->yFloat << ' '
        << field.myShip->energy << ' ' << field.formationTimer << ' ' << field.formationTime;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const EnemyShip& enemy = *field.enemyShips[i];
        out << '\n' << enemy.xFloat << ' ' << enemy.yFloat << ' ' << enemy.energy;
    }
    return out.str();
}

// The text between a game's start and its farewell.
std::string middle(const std::string& text) {
    const size_t from = text.find(BEGINNING) + sizeof BEGINNING - 1;
    return text.substr(from, text.find(FAREWELL, from) - from);
}

// What a game shows, plays, prints and comes to.
using Player = std::function<void(HeldGame& held, const fuzz::NextMoment& next)>;

std::string storyOf(HeldGame& held, Witness& witness, const Bytes& bytes, const Player& player) {
    fuzz::Game game(bytes.data(), bytes.size());
    std::string places;
    bool begun = false;
    const std::string text = capturedOutput([&] {
        player(held, [&](Moment& moment) {
            if (!begun) {
                witness.start();
                begun = true;
            }
            const bool goesOn = game.next(moment);
            places = placesOf(held.field);
            return goesOn;
        });
    });
    return middle(text) + witness.all() + places;
}

// In a process of its own, which plays one game as the program does.
std::string freshStoryOf(const Bytes& bytes) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        HeldGame held;
        Witness witness;
        const fuzz::Game game(bytes.data(), bytes.size());
        const std::string story =
            storyOf(held, witness, bytes, [&](HeldGame& fresh, const fuzz::NextMoment& next) {
                const bool isFirst = game.start() == HeldGame::AT_THE_FIRST_FRAME;
                fresh.playFresh(game.start(), isFirst ? game.clock() : HeldGame::FIRST_CLOCK_MS,
                                next);
            });
        for (size_t at = 0; at < story.size();) {
            at += static_cast<size_t>(write(ends[1], story.data() + at, story.size() - at));
        }
        _exit(0);
    }
    close(ends[1]);
    std::string story;
    char part[4096];
    for (ssize_t got = 0; (got = read(ends[0], part, sizeof part)) > 0;) {
        story.append(part, static_cast<size_t>(got));
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return story;
}

void playQuietly(HeldGame& held, const Bytes& bytes) {
    capturedOutput([&] {
        fuzz::Game game(bytes.data(), bytes.size());
        held.play(game.start(), game.clock(), [&](Moment& moment) { return game.next(moment); });
    });
}

class HeldGameFrom : public testing::TestWithParam<HeldGame::Start> {};

TEST_P(HeldGameFrom, IsThePlayersGameAfterManyOthers) {
    const std::vector<Bytes> inputs = longestFrom(GetParam(), 2);
    ASSERT_FALSE(inputs.empty());
    std::vector<std::string> fresh;
    fresh.reserve(inputs.size());
    for (const Bytes& bytes : inputs) {
        fresh.push_back(freshStoryOf(bytes));
    }
    HeldGame held;
    Witness witness;
    capturedOutput([&] { held.load(); });
    const std::vector<Bytes> others = keptInputs();
    for (size_t i = 0; i < others.size(); i += 17) {
        playQuietly(held, others[i]);
    }
    for (size_t i = 0; i < inputs.size(); ++i) {
        const std::string again =
            storyOf(held, witness, inputs[i], [&](HeldGame& game, const fuzz::NextMoment& next) {
                const fuzz::Game told(inputs[i].data(), inputs[i].size());
                game.play(told.start(), told.clock(), next);
            });
        EXPECT_GT(again.size(), 1000U);
        EXPECT_TRUE(again == fresh[i]) << "game " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Starts, HeldGameFrom,
                         testing::Values(HeldGame::AT_THE_FIRST_FRAME, HeldGame::AT_PLAY,
                                         HeldGame::IN_BATTLE));

TEST(HeldGame, LeavesNoByteOfAnotherGame) {
    HeldGame held;
    capturedOutput([&] { held.load(); });
    constexpr HeldGame::Start STARTS[] = {HeldGame::AT_THE_FIRST_FRAME, HeldGame::AT_PLAY,
                                          HeldGame::IN_BATTLE};
    for (const HeldGame::Start start : STARTS) {
        SCOPED_TRACE(start);
        for (const Bytes& bytes : longestFrom(start, 10)) {
            playQuietly(held, bytes);
        }
        EXPECT_GT(held.changedBlocks(start), 0U);
        held.putBack(start);
        EXPECT_EQ(held.changedBlocks(start), 0U);
    }
}

TEST(FuzzedGame, AScenarioBecomesTheSameFramesAndKeys) {
    std::istringstream in(
        "times 1 266 20*3 1001 4294967295 7\n"
        "frame 2 down a\nframe 4 up a\nframe 4 down return\nframe 7 down escape\n");
    front::Scenario scenario;
    std::string error;
    ASSERT_TRUE(front::readScenario(in, "test", scenario, error)) << error;
    const Bytes bytes = fuzz::bytesOf(scenario);
    fuzz::Game game(bytes.data(), bytes.size());
    const std::vector<Uint32> times = {266, 20, 20, 20, 1001, 4294967295U, 7};
    const std::map<size_t, SDLKey> keys = {
        {1, SDLK_a}, {3, SDLK_a}, {4, SDLK_RETURN}, {6, SDLK_ESCAPE}};
    for (size_t i = 0; i < times.size(); ++i) {
        SCOPED_TRACE(i);
        Moment moment;
        ASSERT_TRUE(game.next(moment));
        EXPECT_EQ(moment.ms, times[i]);
        const auto key = keys.find(i);
        ASSERT_EQ(moment.events.size(), key == keys.end() ? 0U : 1U);
        if (key != keys.end()) {
            EXPECT_EQ(moment.events.front().key.keysym.sym, key->second);
            EXPECT_EQ(moment.events.front().type, i == 3 ? SDL_KEYUP : SDL_KEYDOWN);
        }
    }
    Moment end;
    EXPECT_FALSE(game.next(end));
}

TEST(FuzzedFile, TheExampleHasEveryStatementAndIsAccepted) {
    front::Recording recording;
    std::string error;
    ASSERT_TRUE(front::readRecording(FUZZ_CORPUS "/../example.recording", recording, error))
        << error;
    EXPECT_TRUE(recording.seen.ended);
    EXPECT_EQ(recording.seen.frames, 3U);
    EXPECT_EQ(recording.given.events.size(), 3U);
}

TEST(FuzzedGame, AStateThatNoGameHasIsSeen) {
    HeldGame held;
    capturedOutput([&] { held.load(); });
    const auto stateAfter = [&](const std::function<void()>& change) {
        held.putBack(HeldGame::IN_BATTLE);
        change();
        fuzz::checkState(held.field);
    };
    stateAfter([] {});
    EXPECT_DEATH(stateAfter([&] { held.field.myShip->energy = 66; }), "player's energy is 66");
    EXPECT_DEATH(stateAfter([&] { held.field.myShip->xFloat = 0; }), "player's x is 0");
    EXPECT_DEATH(stateAfter([&] { held.field.enemiesAlive = 8; }), "number of enemies is 8");
    EXPECT_DEATH(stateAfter([&] { ++held.field.myFirstShotCount; }), "laser shots fired is 1");
}

}  // namespace
