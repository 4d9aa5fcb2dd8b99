// SPDX-License-Identifier: MIT
// Writes scenarios as inputs of the play fuzzer: kravoltix-fuzz-seeds FOLDER SCENARIO ...
#include "front/recording.h"
#include "fuzz/games.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fputs("Usage: kravoltix-fuzz-seeds FOLDER SCENARIO ...\n", stderr);
        return 1;
    }
    const std::filesystem::path folder = argv[1];
    for (int i = 2; i < argc; ++i) {
        front::Recording recording;
        std::string error;
        if (!front::readRecording(argv[i], recording, error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            return 1;
        }
        const std::vector<std::uint8_t> bytes = fuzz::bytesOf(recording.given);
        std::ofstream out(folder / std::filesystem::path(argv[i]).stem(), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            std::perror(argv[1]);
            return 1;
        }
    }
    return 0;
}
