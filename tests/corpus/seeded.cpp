// SPDX-License-Identifier: MIT
#include "corpus/seeded.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace corpus {
namespace {

// Where the intro stands, on the game's clock. Letters come and go one a frame where frames are long.
constexpr std::uint32_t TITLE_MS = 3000;   // the title begins
constexpr std::uint32_t TYPING_MS = 5000;  // title and hint, in short frames
constexpr std::uint32_t TYPING_FRAMES = 45;
constexpr std::uint32_t LEAVING_MS = 4500;  // both, after Return
constexpr std::uint32_t LEAVING_FRAMES = 88;
constexpr std::uint32_t COUNTDOWN_MS = 6500;

constexpr std::uint32_t INTRO_LEFT_MS = 20000;  // a game without Return ends before

// How long play lasts: so many frames, and at most so many milliseconds.
constexpr std::uint32_t FEWEST_FRAMES = 150;
constexpr std::uint32_t MOST_FRAMES = 1000;
constexpr std::uint32_t LONGEST_MS = 400000;
// Where frames are short, the fight comes up in longer ones.
constexpr std::uint32_t SHORT_MS = 20;
constexpr std::uint32_t LEAD_MS = 25000;
// One seed in a hundred is a long game with small frame times, and one of four of these is fast.
constexpr std::uint32_t LONG_EVERY = 100;
constexpr std::uint32_t LONG_SEED = 50;
constexpr std::uint32_t LONG_MS = 185000;
constexpr std::uint32_t LONG_FAST_MS = 45000;

constexpr std::uint32_t LIMIT_SLACK = 300;  // frames beyond the planned end

// Most players of long games do not live to their end; of these numbers' games it is known. The last
// four are fast ones.
constexpr std::uint32_t LONG_GAMES[] = {1250,  3350,  7350, 8550, 8650, 8850,
                                        10450, 11350, 750,  1550, 1950, 11550};

// What a seed's game is made of.
std::uint32_t numberOf(std::uint32_t seed) {
    const bool isLong = seed % LONG_EVERY == LONG_SEED && seed / LONG_EVERY < std::size(LONG_GAMES);
    return isLong ? LONG_GAMES[seed / LONG_EVERY] : seed;
}

// The generator of the pseudo-random numbers is spelled out, since those of the standard library
// differ between its makers.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : state(seed) {}

    // 0 to count - 1
    std::uint32_t below(std::uint32_t count) {
        state += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = state;
        mixed = (mixed ^ mixed >> 30) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111ebU;
        mixed ^= mixed >> 31;
        return static_cast<std::uint32_t>((mixed >> 32) * count >> 32);
    }

    std::uint32_t between(std::uint32_t least, std::uint32_t most) {
        return least + below(most - least + 1);
    }

    bool oneIn(std::uint32_t count) { return below(count) == 0; }

    template <typename List> const auto& oneOf(const List& list) {
        return *(std::begin(list) + below(static_cast<std::uint32_t>(std::size(list))));
    }

private:
    std::uint64_t state;
};

// clang-format off
// Options, more often none.
const std::vector<const char*> OPTIONS[] = {
    {}, {}, {}, {}, {}, {}, {},
    {"-ns"}, {"-ns"}, {"-fs"}, {"-fs"}, {"-ns", "-fs"}, {"-fs", "-ns"},
    {"--nosound"}, {"--fullscreen"}, {"--fullscreen", "--nosound"},
    {"-x", "-ns"}, {"-x", "-y", "-ns"}, {"-ns", "--help"},
};
// clang-format on

// Below 266 the game's second frame time would wrap.
constexpr std::uint32_t STARTS_MS[] = {266, 266, 266, 266, 267, 281, 500, 999, 2999, 3000, 3001};

// Frame times: one that comes in between now and then, and the rest between two bounds.
struct Pace {
    const char* name;
    std::uint32_t least, most;
    std::uint32_t other;       // this frame time ...
    std::uint32_t otherEvery;  // ... in one frame of so many, 0 for never
};

// clang-format off
constexpr Pace INTRO_PACES[] = {
    {"51 ms",           51,   51,    0,  0},
    {"266 ms",         266,  266,    0,  0},
    {"33 ms",           33,   33,    0,  0},
    {"40 to 90 ms",     40,   90,    0,  0},
    {"100 ms",         100,  100,    0,  0},
    {"1001 ms",       1001, 1001,    0,  0},
    {"60 to 300 ms",    60,  300, 1001, 20},
};
constexpr Pace PLAY_PACES[] = {
    {"1 ms",             1,    1,    0,  0},
    {"4 ms",             4,    4,    0,  0},
    {"16 ms",           16,   16,    0,  0},
    {"17 ms",           17,   17,    0,  0},
    {"33 ms",           33,   33,    0,  0},
    {"50 ms",           50,   50,    0,  0},
    {"100 ms",         100,  100,    0,  0},
    {"266 ms",         266,  266,    0,  0},
    {"999 ms",         999,  999,    0,  0},
    {"1000 ms",       1000, 1000,    0,  0},
    {"1001 ms",       1001, 1001,    0,  0},
    {"0 or 1 ms",        0,    1,    0,  0},
    {"0 to 20 ms",       0,   20,    0,  0},
    {"16 or 17 ms",     16,   17,    0,  0},
    {"10 to 40 ms",     10,   40,    0,  0},
    {"30 to 60 ms",     30,   60,    0,  0},
    {"50 to 90 ms",     50,   90,    0,  0},
    {"17 ms and 266",   17,   17,  266, 40},
    {"33 ms and 1001",  33,   33, 1001, 60},
    {"16 ms and 0",     16,   16,    0, 10},
    {"25 ms and 1",     25,   25,    1,  3},
    {"50 ms and 999",   50,   50,  999, 30},
    {"1 to 1001 ms",     1, 1001,    0,  0},
    {"100 to 400 ms",  100,  400, 1000, 25},
};
constexpr Pace LONG_PACES[] = {
    {"16 ms",           16,   16,    0,  0},
    {"17 ms",           17,   17,    0,  0},
    {"16 or 17 ms",     16,   17,    0,  0},
};
constexpr Pace LEAD_PACE = {"50 to 60 ms", 50, 60, 0, 0};
constexpr Pace LONG_FAST_PACE = {"4 ms", 4, 4, 0, 0};

// How a key is used: pressed so often, for so long. A most of 0 never presses it.
struct Habit {
    std::uint32_t leastPause, mostPause;  // ms between two presses
    std::uint32_t leastHeld, mostHeld;    // ms
};
constexpr Habit NEVER =     {  0,     0,   0,     0};
constexpr Habit TAPPING =   {150,   900,  10,   120};
constexpr Habit HOLDING =   {300,  3000, 400,  2500};
constexpr Habit DODGING =   {200,   500, 150,   450};
constexpr Habit SELDOM =    {2000, 9000,  30,   400};
constexpr Habit SPAMMING =  {  1,    60,   1,    60};
constexpr Habit FIRING =    {120,   600,  30,   200};
constexpr Habit CLUTCHING = {100,   500, 20000, 60000};

struct Style {
    const char* name;
    Habit left, right, up, down, laser, rocket;
};
constexpr Style STYLES[] = {
    {"still",                NEVER,     NEVER,     NEVER,     NEVER,   NEVER,     NEVER},
    {"still and firing",     NEVER,     NEVER,     NEVER,     NEVER,   FIRING,    SELDOM},
    {"tapping",              TAPPING,   TAPPING,   TAPPING,   TAPPING, TAPPING,   SELDOM},
    {"holding",              HOLDING,   HOLDING,   HOLDING,   HOLDING, FIRING,    SELDOM},
    {"dodging",              DODGING,   DODGING,   SELDOM,    SELDOM,  FIRING,    FIRING},
    {"dodging without fire", DODGING,   DODGING,   DODGING,   DODGING, NEVER,     NEVER},
    {"fire spam",            SELDOM,    SELDOM,    NEVER,     NEVER,   SPAMMING,  SPAMMING},
    {"spam and dodging",     DODGING,   DODGING,   TAPPING,   TAPPING, SPAMMING,  SELDOM},
    {"along the bottom",     HOLDING,   HOLDING,   NEVER,     SELDOM,  FIRING,    SELDOM},
    {"into the formation",   TAPPING,   TAPPING,   CLUTCHING, NEVER,   FIRING,    SELDOM},
    {"at the left edge",     CLUTCHING, NEVER,     SELDOM,    SELDOM,  FIRING,    FIRING},
    {"at the right edge",    NEVER,     CLUTCHING, SELDOM,    SELDOM,  TAPPING,   FIRING},
    {"all keys held",        CLUTCHING, CLUTCHING, CLUTCHING, CLUTCHING, CLUTCHING, CLUTCHING},
    {"rockets only",         TAPPING,   TAPPING,   SELDOM,    NEVER,   NEVER,     FIRING},
    {"lasers only",          SELDOM,    SELDOM,    NEVER,     NEVER,   FIRING,    NEVER},
};

// Behind the enemies nothing hits the player, so these games are not over before their time.
constexpr Style LONG_STYLES[] = {
    {"behind the enemies",   TAPPING,   TAPPING,   CLUTCHING, NEVER,   FIRING,    SELDOM},
    {"along the top",        HOLDING,   HOLDING,   CLUTCHING, NEVER,   SELDOM,    FIRING},
    {"dodging at the top",   DODGING,   DODGING,   CLUTCHING, NEVER,   NEVER,     SELDOM},
};
// clang-format on

// Keys that mean nothing to the game, or nothing in play.
constexpr const char* IDLE_KEYS[] = {"space", "return", "x", "1", "key-13", "key-282", "key-304"};

enum class Return { EARLY, SOON, NORMAL, LATE, TWICE, HELD };
struct ReturnWay {
    Return way;
    const char* name;
};
constexpr ReturnWay RETURNS[] = {
    {Return::EARLY, "Return before the title"},
    {Return::SOON, "Return while it is typed"},
    {Return::NORMAL, "Return"},
    {Return::NORMAL, "Return"},
    {Return::NORMAL, "Return"},
    {Return::NORMAL, "Return"},
    {Return::NORMAL, "Return"},
    {Return::NORMAL, "Return"},
    {Return::LATE, "Return late"},
    {Return::TWICE, "Return twice"},
    {Return::HELD, "Return held"},
};
constexpr std::uint32_t NEVER_EVERY = 25;  // games that are left in the intro

enum class End { ESCAPE, QUIT, DEATH, LIMIT };
struct EndWay {
    End way;
    const char* name;
};
constexpr EndWay ENDS[] = {
    {End::ESCAPE, "Escape"},          {End::ESCAPE, "Escape"},
    {End::QUIT, "the window closed"}, {End::QUIT, "the window closed"},
    {End::DEATH, "to the death"},     {End::DEATH, "to the death"},
    {End::DEATH, "to the death"},     {End::LIMIT, "stopped"},
};

struct Key {
    std::uint32_t ms;
    std::string words;
};

class Game {
public:
    explicit Game(std::uint32_t givenSeed)
        : seed(givenSeed), number(numberOf(givenSeed)), dice(number) {}

    std::string scenario() {
        options = &dice.oneOf(OPTIONS);
        startMs = dice.oneOf(STARTS_MS);
        intro = &dice.oneOf(INTRO_PACES);
        style = isLong() ? &dice.oneOf(LONG_STYLES) : &dice.oneOf(STYLES);
        pressReturn();
        choosePlay();
        addFrames();
        addPlayKeys();
        addIdleKeys();
        addEnd();
        return text();
    }

private:
    bool isLong() const { return number % LONG_EVERY == LONG_SEED; }

    void press(const char* key, std::uint32_t ms, std::uint32_t heldMs) {
        keys.push_back({ms, std::string("down ") + key});
        keys.push_back({ms + heldMs, std::string("up ") + key});
    }

    void pressReturn() {
        if (!isLong() && dice.oneIn(NEVER_EVERY)) {
            returnName = "no Return";
            introEndMs = startMs + dice.between(TITLE_MS, INTRO_LEFT_MS);
            return;
        }
        const ReturnWay& chosen = dice.oneOf(RETURNS);
        returnName = chosen.name;
        const std::uint32_t hintMs = TITLE_MS + std::max(TYPING_MS, TYPING_FRAMES * intro->most);
        std::uint32_t at = dice.between(hintMs, hintMs + 1500);
        std::uint32_t held = dice.between(20, 200);
        switch (chosen.way) {
        case Return::EARLY:
            at = startMs + dice.below(TITLE_MS);
            break;
        case Return::SOON:
            at = TITLE_MS + dice.below(hintMs - TITLE_MS);
            break;
        case Return::LATE:
            at = dice.between(2 * hintMs, 4 * hintMs);
            break;
        case Return::TWICE:
            press("return", at + dice.between(100, 3000), held);
            break;
        case Return::HELD:
            held = LEAVING_MS + COUNTDOWN_MS;
            break;
        default:
            break;
        }
        press("return", at, held);
        // One that comes before the hint may count for nothing: a second one gets the game going.
        if (at < hintMs) {
            at = hintMs + 500;
            press("return", at, 100);
        }
        introEndMs = at + std::max(LEAVING_MS, LEAVING_FRAMES * intro->most) + COUNTDOWN_MS;
    }

    void choosePlay() {
        if (returnName == std::string("no Return")) {
            pace = intro;
            endMs = introEndMs;
            return;
        }
        if (isLong()) {
            const bool isFast = number / LONG_EVERY % 4 == 3;
            pace = isFast ? &LONG_FAST_PACE : &dice.oneOf(LONG_PACES);
            endMs = introEndMs + (isFast ? LONG_FAST_MS : LONG_MS);
            return;
        }
        pace = &dice.oneOf(PLAY_PACES);
        playFrames = dice.between(FEWEST_FRAMES, MOST_FRAMES);
        leadMs = pace->most <= SHORT_MS && !dice.oneIn(4) ? dice.below(LEAD_MS) : 0;
        endMs = introEndMs + LONGEST_MS;
    }

    std::uint32_t nextFrame(const Pace& of) {
        if (of.otherEvery != 0 && dice.oneIn(of.otherEvery)) {
            return of.other;
        }
        return dice.between(of.least, of.most);
    }

    // A frame that takes no time costs the game a millisecond's sleep.
    void addFrame(std::uint32_t ms, std::uint32_t& clock) {
        frames.push_back(ms);
        clock += std::max(ms, 1U);
    }

    void addFrames() {
        std::uint32_t clock = startMs;
        while (clock < introEndMs) {
            addFrame(nextFrame(*intro), clock);
        }
        while (clock < introEndMs + leadMs) {
            addFrame(nextFrame(LEAD_PACE), clock);
        }
        for (std::uint32_t i = 0; clock < endMs && (playFrames == 0 || i < playFrames); ++i) {
            addFrame(nextFrame(*pace), clock);
        }
        endMs = std::min(clock, endMs);
    }

    void addHabit(const char* key, const Habit& habit) {
        if (habit.mostHeld == 0) {
            return;
        }
        // The first press may come in the countdown: the key is held when play begins.
        std::uint32_t ms = introEndMs - std::min(introEndMs, dice.below(2500));
        while ((ms += dice.between(habit.leastPause, habit.mostPause)) < endMs) {
            const std::uint32_t held = dice.between(habit.leastHeld, habit.mostHeld);
            press(key, ms, held);
            ms += held;
        }
    }

    void addPlayKeys() {
        addHabit("left", style->left);
        addHabit("right", style->right);
        addHabit("up", style->up);
        addHabit("down", style->down);
        addHabit("a", style->laser);
        addHabit("s", style->rocket);
    }

    void addIdleKeys() {
        for (std::uint32_t i = dice.below(4); i > 0; --i) {
            press(dice.oneOf(IDLE_KEYS), dice.between(startMs, endMs), dice.between(1, 500));
        }
        // Fire in the intro is no fire, but a key that is held until play.
        if (dice.oneIn(6)) {
            press(dice.oneIn(2) ? "a" : "s", dice.between(startMs, introEndMs), 15000);
        }
    }

    // A game to the death is left too, should the player live.
    void addEnd() {
        const EndWay& chosen = dice.oneOf(ENDS);
        endName = chosen.name;
        limit = static_cast<std::uint32_t>(frames.size()) + LIMIT_SLACK;
        if (chosen.way == End::LIMIT) {
            limit = static_cast<std::uint32_t>(frames.size()) - dice.below(LIMIT_SLACK / 10);
        }
        keys.push_back({endMs, chosen.way == End::QUIT ? "quit" : "down escape"});
    }

    // "16 17*3 16", a line for each stretch
    std::string frameWords() const {
        std::string words;
        size_t lineStart = 0;
        for (size_t i = 0; i < frames.size();) {
            size_t next = i;
            while (next < frames.size() && frames[next] == frames[i]) {
                ++next;
            }
            if (words.size() - lineStart > 90 || i == 0) {
                lineStart = words.size() + 1;
                words += (i == 0 ? "times " : "\ntimes ") + std::to_string(i + 1);
            }
            words += ' ' + std::to_string(frames[i]);
            if (next - i > 1) {
                words += '*' + std::to_string(next - i);
            }
            i = next;
        }
        return words + '\n';
    }

    std::string text() {
        std::string all = "what Seed " + std::to_string(seed) + ": " + style->name +
                          ", frames of " + pace->name + ", " + returnName + ", " + endName + ".\n";
        for (const char* option : *options) {
            all += std::string("option \"") + option + "\"\n";
        }
        all += "start " + std::to_string(startMs) + "\nlimit " + std::to_string(limit) + '\n' +
               frameWords();
        std::stable_sort(keys.begin(), keys.end(),
                         [](const Key& a, const Key& b) { return a.ms < b.ms; });
        for (const Key& key : keys) {
            all += "ms " + std::to_string(key.ms) + ' ' + key.words + '\n';
            if (key.words == "quit" || key.words == "down escape") {
                break;
            }
        }
        return all;
    }

    std::uint32_t seed;
    std::uint32_t number;
    Dice dice;

    const std::vector<const char*>* options = nullptr;
    const Pace* intro = nullptr;
    const Pace* pace = nullptr;  // of play
    const Style* style = nullptr;
    const char* returnName = "";
    const char* endName = "";

    std::uint32_t startMs = 0;
    std::uint32_t introEndMs = 0;  // play begins about here
    std::uint32_t endMs = 0;
    std::uint32_t leadMs = 0;
    std::uint32_t playFrames = 0;  // at most, 0 for as many as fit
    std::uint32_t limit = 0;

    std::vector<std::uint32_t> frames;  // their times in ms
    std::vector<Key> keys;
};

}  // namespace

std::string scenarioOf(std::uint32_t seed) {
    return Game(seed).scenario();
}

}  // namespace corpus
