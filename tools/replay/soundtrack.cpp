// SPDX-License-Identifier: MIT
#include "replay/soundtrack.h"

#include "replay/game.h"

#include <SDL.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>

namespace replay {
namespace {

constexpr Uint64 MS_PER_SECOND = 1000;
constexpr int ALL_CHANNELS = -1;
constexpr Sint32 LOUDEST = std::numeric_limits<Sint16>::max();
constexpr Sint32 LOWEST = std::numeric_limits<Sint16>::min();

// A WAV file of 16 bits, mono.
constexpr Uint32 HEADER_BYTES = 44;
constexpr Uint32 FORMAT_BYTES = 16;
constexpr Uint32 BYTES_PER_SAMPLE = 2;
constexpr Uint32 BITS_PER_SAMPLE = 16;

// A file in the mixer's own format, whatever format it has.
Wave readWave(const std::string& path) {
    SDL_AudioSpec spec = {};
    Uint8* bytes = nullptr;
    Uint32 length = 0;
    if (SDL_LoadWAV(path.c_str(), &spec, &bytes, &length) == nullptr) {
        throw Trouble(path + ": no sound that can be read: " + SDL_GetError());
    }
    SDL_AudioCVT conversion = {};
    if (SDL_BuildAudioCVT(&conversion, spec.format, spec.channels, spec.freq, AUDIO_S16SYS, 1,
                          static_cast<int>(SOUND_HZ)) < 0) {
        SDL_FreeWAV(bytes);
        throw Trouble(path + ": " + SDL_GetError());
    }
    std::vector<Uint8> buffer(length * static_cast<size_t>(std::max(conversion.len_mult, 1)));
    std::copy_n(bytes, length, buffer.begin());
    SDL_FreeWAV(bytes);
    size_t converted = length;
    if (conversion.needed != 0) {
        conversion.buf = buffer.data();
        conversion.len = static_cast<int>(length);
        SDL_ConvertAudio(&conversion);
        converted = static_cast<size_t>(conversion.len_cvt);
    }
    Wave wave(converted / sizeof(Sint16));
    std::memcpy(wave.data(), buffer.data(), wave.size() * sizeof(Sint16));
    return wave;
}

// A sound on its channel. All places are samples of the soundtrack.
struct Voice {
    int channel;
    const Wave* sound;
    size_t first;
    size_t end;
    size_t fadeFirst;  // from here it gets softer until its end, if that comes first
    size_t fadeEnd;
};

// Follows the calls in their order, and leaves who sounds from where to where.
class Channels {
public:
    explicit Channels(const std::string& folder) : dataFolder(folder) {}

    void follow(const std::string& call, size_t at) {
        int channel = 0, ms = 0;
        char file[512];
        if (std::sscanf(call.c_str(), "Mix_PlayChannelTimed(%d, %511[^,],", &channel, file) == 2) {
            play(channel, file, at);
        } else if (std::sscanf(call.c_str(), "Mix_FadeOutChannel(%d, %d)", &channel, &ms) == 2) {
            fadeOut(channel, at, static_cast<Uint64>(std::max(ms, 0)));
        } else if (call == "Mix_CloseAudio()") {
            isOpen = false;
            silence(ALL_CHANNELS, at);
        } else if (call.rfind("Mix_OpenAudio(", 0) == 0) {
            isOpen = true;
        }
    }

    std::vector<Voice> voices;

private:
    // Each sound is played once and to its end: the game asks for nothing else. Null pointers are
    // refused by the mixer, and whatever plays goes on.
    void play(int channel, const std::string& file, size_t at) {
        if (!isOpen || file == "none") {
            return;
        }
        silence(channel, at);
        const auto [entry, isNew] = sounds.try_emplace(file);
        if (isNew) {
            entry->second = readWave(dataFolder + "/" + file);
        }
        const size_t end = at + entry->second.size();
        voices.push_back({channel, &entry->second, at, end, end, end});
    }

    // What sounds on the channel stops at once, in the middle of the wave.
    void silence(int channel, size_t at) {
        for (Voice& voice : voices) {
            if (channel == ALL_CHANNELS || voice.channel == channel) {
                voice.end = std::min(voice.end, at);
            }
        }
    }

    void fadeOut(int channel, size_t at, Uint64 ms) {
        for (Voice& voice : voices) {
            if ((channel == ALL_CHANNELS || voice.channel == channel) && at < voice.end) {
                voice.fadeFirst = at;
                voice.fadeEnd = at + sampleAt(ms);
                voice.end = std::min(voice.end, voice.fadeEnd);
            }
        }
    }

    const std::string dataFolder;
    std::map<std::string, Wave> sounds;
    bool isOpen = false;
};

double loudnessAt(const Voice& voice, size_t at) {
    return at < voice.fadeFirst ? 1.0
                                : static_cast<double>(voice.fadeEnd - at) /
                                      static_cast<double>(voice.fadeEnd - voice.fadeFirst);
}

void add(const Voice& voice, std::vector<double>& sum) {
    for (size_t at = voice.first; at < std::min(voice.end, sum.size()); ++at) {
        sum[at] += (*voice.sound)[at - voice.first] * loudnessAt(voice, at);
    }
}

void putNumber(std::string& bytes, Uint32 value, int count) {
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xff));
    }
}

std::string wavHeader(Uint32 dataBytes) {
    std::string header = "RIFF";
    putNumber(header, HEADER_BYTES - 8 + dataBytes, 4);
    header += "WAVEfmt ";
    putNumber(header, FORMAT_BYTES, 4);
    putNumber(header, 1, 2);  // samples as they are
    putNumber(header, 1, 2);  // mono
    putNumber(header, SOUND_HZ, 4);
    putNumber(header, SOUND_HZ * BYTES_PER_SAMPLE, 4);
    putNumber(header, BYTES_PER_SAMPLE, 2);
    putNumber(header, BITS_PER_SAMPLE, 2);
    header += "data";
    putNumber(header, dataBytes, 4);
    return header;
}

}  // namespace

size_t sampleAt(Uint64 ms) {
    return static_cast<size_t>((ms * SOUND_HZ + MS_PER_SECOND / 2) / MS_PER_SECOND);
}

Wave mixSoundtrack(const std::vector<front::LibraryCall>& calls, Uint32 startMs, Uint32 endMs,
                   const std::string& dataFolder) {
    Channels channels(dataFolder);
    for (const front::LibraryCall& call : calls) {
        // What a player's game calls before its first picture stands at the film's beginning.
        channels.follow(call.call, sampleAt(call.clockMs < startMs ? 0 : call.clockMs - startMs));
    }
    std::vector<double> sum(sampleAt(endMs - startMs));
    for (const Voice& voice : channels.voices) {
        add(voice, sum);
    }
    Wave wave(sum.size());
    std::transform(sum.begin(), sum.end(), wave.begin(), [](double value) {
        return static_cast<Sint16>(
            std::clamp(static_cast<Sint32>(value + (value < 0 ? -0.5 : 0.5)), LOWEST, LOUDEST));
    });
    return wave;
}

void writeWav(const std::string& path, const Wave& wave) {
    std::string bytes = wavHeader(static_cast<Uint32>(wave.size() * BYTES_PER_SAMPLE));
    for (const Sint16 sample : wave) {
        putNumber(bytes, static_cast<Uint16>(sample), BYTES_PER_SAMPLE);
    }
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) {
        throw Trouble(path + ": cannot be written: " + std::strerror(errno));
    }
}

}  // namespace replay
