// SPDX-License-Identifier: MIT
#include "replay/soundtrack.h"

#include "replay/game.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

using replay::Wave;

constexpr Uint32 START_MS = 266;
constexpr double MOST_ONSET_MS = 10;

// Sounds of a game of the test's own, and its calls of the mixer.
class Soundtrack : public testing::Test {
protected:
    Soundtrack() {
        std::filesystem::create_directory(folder.path + "/sounds");
        call(0, "Mix_OpenAudio(22050, 0x8010, 1, 1024) = 0");
    }

    void makeSound(const std::string& name, const Wave& wave) const {
        replay::writeWav(folder.path + "/sounds/" + name, wave);
    }

    void call(Uint32 atMs, const std::string& text) { calls.push_back({0, START_MS + atMs, text}); }

    void play(Uint32 atMs, int channel, const std::string& name) {
        call(atMs,
             "Mix_PlayChannelTimed(" + std::to_string(channel) + ", sounds/" + name + ", 0, -1)");
    }

    Wave mix(Uint32 lengthMs) const {
        return replay::mixSoundtrack(calls, START_MS, START_MS + lengthMs, folder.path);
    }

    const replay::TemporaryFolder folder;
    std::vector<front::LibraryCall> calls;
};

Wave level(Sint16 value, Uint32 ms) {
    return Wave(replay::sampleAt(ms), value);
}

std::vector<double> onsetsOf(const Wave& wave) {
    std::vector<double> onsets;
    for (size_t i = 0; i < wave.size(); ++i) {
        if (wave[i] != 0) {
            onsets.push_back(static_cast<double>(i) * 1000 / replay::SOUND_HZ);
        }
    }
    return onsets;
}

TEST_F(Soundtrack, EachSoundBeginsWithinTenMillisecondsOfItsCall) {
    makeSound("click.wav", {20000});
    const std::vector<Uint32> times = {0, 1, 333, 1000, 1001, 29919, 59999};
    for (const Uint32 ms : times) {
        play(ms, 1, "click.wav");
    }
    const std::vector<double> onsets = onsetsOf(mix(60000));
    ASSERT_EQ(onsets.size(), times.size());
    for (size_t i = 0; i < times.size(); ++i) {
        EXPECT_NEAR(onsets[i], times[i], 0.03) << "half a sample";
        EXPECT_NEAR(onsets[i], times[i], MOST_ONSET_MS);
    }
}

TEST_F(Soundtrack, ANewSoundCutsTheOneBeforeItOnItsChannelAndNoOther) {
    makeSound("long.wav", level(1000, 1000));
    makeSound("short.wav", level(200, 100));
    makeSound("other.wav", level(30, 1000));
    play(0, 1, "long.wav");
    play(0, 2, "other.wav");
    play(500, 1, "short.wav");
    const Wave wave = mix(1000);
    EXPECT_EQ(wave[replay::sampleAt(500) - 1], 1030);
    EXPECT_EQ(wave[replay::sampleAt(500)], 230);
    EXPECT_EQ(wave[replay::sampleAt(600) - 1], 230);
    EXPECT_EQ(wave[replay::sampleAt(600)], 30) << "what was cut does not come back";
    EXPECT_EQ(wave.back(), 30);
}

TEST_F(Soundtrack, ASoundThatIsStartedAgainBeginsAnew) {
    makeSound("steps.wav", {100, 200, 300, 400});
    play(0, 1, "steps.wav");
    play(0, 1, "steps.wav");
    const Wave wave = mix(1);
    EXPECT_EQ((Wave(wave.begin(), wave.begin() + 4)), (Wave{100, 200, 300, 400}));
}

TEST_F(Soundtrack, FadingOutAllChannelsMakesThemEvenlySofterForASecond) {
    makeSound("long.wav", level(10000, 3000));
    play(0, 1, "long.wav");
    play(0, 2, "long.wav");
    call(500, "Mix_FadeOutChannel(-1, 1000)");
    const Wave wave = mix(3000);
    EXPECT_EQ(wave[replay::sampleAt(499)], 20000);
    EXPECT_NEAR(wave[replay::sampleAt(750)], 15000, 2);
    EXPECT_NEAR(wave[replay::sampleAt(1000)], 10000, 2);
    EXPECT_NEAR(wave[replay::sampleAt(1250)], 5000, 2);
    EXPECT_NEAR(wave[replay::sampleAt(1500) - 1], 0, 2);
    EXPECT_EQ(wave[replay::sampleAt(1501)], 0);
    EXPECT_EQ(wave.back(), 0);
}

TEST_F(Soundtrack, FadingOutOneChannelLeavesTheOthers) {
    makeSound("long.wav", level(1000, 1000));
    play(0, 1, "long.wav");
    play(0, 2, "long.wav");
    call(0, "Mix_FadeOutChannel(2, 100)");
    EXPECT_EQ(mix(1000)[replay::sampleAt(500)], 1000);
}

TEST_F(Soundtrack, ASoundThatBeginsWhileTheOthersFadeIsLoud) {
    makeSound("long.wav", level(10000, 3000));
    play(0, 1, "long.wav");
    call(0, "Mix_FadeOutChannel(-1, 1000)");
    play(500, 1, "long.wav");
    EXPECT_EQ(mix(1000)[replay::sampleAt(900)], 10000);
}

TEST_F(Soundtrack, ClosingTheMixerEndsEverySound) {
    makeSound("long.wav", level(1000, 3000));
    play(0, 1, "long.wav");
    call(400, "Mix_CloseAudio()");
    play(500, 2, "long.wav");
    const Wave wave = mix(1000);
    EXPECT_EQ(wave[replay::sampleAt(400) - 1], 1000);
    EXPECT_EQ(std::count_if(wave.begin() + static_cast<long>(replay::sampleAt(400)), wave.end(),
                            [](Sint16 sample) { return sample != 0; }),
              0);
}

TEST_F(Soundtrack, WithoutAnOpenMixerNothingIsHeard) {
    makeSound("long.wav", level(1000, 3000));
    calls.clear();
    play(0, 1, "long.wav");
    EXPECT_TRUE(onsetsOf(mix(100)).empty());
}

TEST_F(Soundtrack, TheSumOfTheChannelsIsHeldWithinSixteenBits) {
    makeSound("high.wav", level(20000, 300));
    makeSound("low.wav", level(-20000, 300));
    play(0, 1, "high.wav");
    play(0, 2, "high.wav");
    play(100, 3, "low.wav");
    play(200, 1, "low.wav");
    play(200, 2, "low.wav");
    const Wave wave = mix(300);
    EXPECT_EQ(wave[replay::sampleAt(50)], 32767);
    EXPECT_EQ(wave[replay::sampleAt(150)], 20000) << "only the sum of all is held";
    EXPECT_EQ(wave[replay::sampleAt(250)], -32768);
}

TEST_F(Soundtrack, ItLastsAsLongAsTheGame) {
    EXPECT_EQ(mix(0).size(), 0U);
    EXPECT_EQ(mix(1).size(), 22U);
    EXPECT_EQ(mix(1000).size(), 22050U);
    EXPECT_EQ(mix(29920).size(), 659736U);
    makeSound("long.wav", level(1000, 3000));
    play(900, 1, "long.wav");
    EXPECT_EQ(mix(1000).size(), 22050U);
}

TEST_F(Soundtrack, ASoundThatWasNotLoadedLeavesItsChannelAlone) {
    makeSound("long.wav", level(1000, 1000));
    play(0, 1, "long.wav");
    call(100, "Mix_PlayChannelTimed(1, none, 0, -1)");
    call(200, "Mix_PlayChannelTimed fails");
    EXPECT_EQ(mix(1000)[replay::sampleAt(500)], 1000);
}

TEST_F(Soundtrack, WhatIsCalledBeforeTheFirstPictureIsHeardWithIt) {
    makeSound("click.wav", {20000});
    calls.push_back({0, 0, "Mix_PlayChannelTimed(1, sounds/click.wav, 0, -1)"});
    EXPECT_EQ(mix(10).front(), 20000);
}

TEST_F(Soundtrack, ASoundFileOfAnotherFormatIsConverted) {
    // A second of 44100 Hz, 8 bits, stereo.
    const std::string header("RIFF\x24\x58\x01\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xac\0\0"
                             "\x88\x58\1\0\2\0\x8\0data\x88\x58\1\0",
                             44);
    std::ofstream(folder.path + "/sounds/stereo.wav", std::ios::binary)
        << header << std::string(88200, '\xc0');
    play(0, 1, "stereo.wav");
    const Wave wave = mix(2000);
    EXPECT_NEAR(wave[replay::sampleAt(500)], 0x4000, 0x200);
    EXPECT_NEAR(onsetsOf(wave).back(), 1000, 5);
}

TEST_F(Soundtrack, ASoundFileThatIsMissingIsNamed) {
    play(0, 1, "missing.wav");
    try {
        mix(100);
        FAIL() << "it was mixed";
    } catch (const replay::Trouble& trouble) {
        EXPECT_NE(std::string(trouble.what()).find("sounds/missing.wav"), std::string::npos)
            << trouble.what();
    }
}

TEST_F(Soundtrack, AWaveThatWasWrittenIsReadAgain) {
    const Wave wave = {0, 1, -1, 32767, -32768};
    makeSound("wave.wav", wave);
    SDL_AudioSpec spec = {};
    Uint8* bytes = nullptr;
    Uint32 length = 0;
    ASSERT_NE(SDL_LoadWAV((folder.path + "/sounds/wave.wav").c_str(), &spec, &bytes, &length),
              nullptr);
    EXPECT_EQ(spec.freq, 22050);
    EXPECT_EQ(spec.channels, 1);
    EXPECT_EQ(spec.format, AUDIO_S16SYS);
    ASSERT_EQ(length, wave.size() * sizeof(Sint16));
    EXPECT_TRUE(std::equal(wave.begin(), wave.end(), reinterpret_cast<Sint16*>(bytes)));
    SDL_FreeWAV(bytes);
}

TEST_F(Soundtrack, AWaveThatCannotBeWrittenIsTold) {
    EXPECT_THROW(replay::writeWav("/dev/full", level(0, 1000)), replay::Trouble);
}

}  // namespace
