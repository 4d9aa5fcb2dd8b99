// SPDX-License-Identifier: MIT
#include "replay/verify.h"

#include "replay/compare.h"
#include "replay/picturefile.h"
#include "replay/summary.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>

namespace replay {
namespace {

namespace fs = std::filesystem;

constexpr int SAME = 0;
constexpr int DIFFERENT = 1;
constexpr int NOT_COMPARED = 2;

struct Verdict {
    int status = NOT_COMPARED;
    std::string report;
};

std::string figures(const Compared& compared) {
    return std::to_string(compared.frames) + " pictures, " + std::to_string(compared.calls) +
           " calls of the mixer, " + std::to_string(compared.bytes) + " bytes of text";
}

// Writes the picture that came, and where it can be had the one expected and their difference.
class PictureReport {
public:
    PictureReport(const VerifyOptions& given, const std::string& path, Uint32 differing)
        : options(given), file(path), frame(differing) {}

    std::string write() {
        const std::string got = keep(options.place, "got");
        std::string report = "\n  got:        " + got;
        const std::string wanted = expectedPicture();
        if (wanted.empty()) {
            return report +
                   "\n  expected:   not kept (--expected-game plays it with another program)";
        }
        writeDifference(wanted, got, name("difference"));
        return report + "\n  expected:   " + wanted + "\n  difference: " + name("difference");
    }

private:
    std::string name(const std::string& what) const {
        const fs::path base = options.pictureFolder.empty()
                                  ? fs::path(file)
                                  : fs::path(options.pictureFolder) / fs::path(file).filename();
        return base.string() + "-frame-" + std::to_string(frame) + "-" + what + ".png";
    }

    std::string keep(const Place& place, const std::string& what) const {
        const TemporaryFolder folder;
        const std::string bmp = folder.path + "/frame.bmp";
        playAgain(place, file, {{frame, bmp}});
        if (!fs::exists(bmp)) {
            return "the game has no such frame";
        }
        convertToPng(bmp, name(what));
        return name(what);
    }

    std::string expectedPicture() const {
        const std::string kept = name("expected");
        if (!options.expectedProgram.empty()) {
            Place other = options.place;
            other.program = options.expectedProgram;
            return keep(other, "expected");
        }
        return fs::exists(kept) ? kept : "";
    }

    const VerifyOptions& options;
    const std::string& file;
    Uint32 frame;
};

std::string filesThatDiffer(const front::Seen& expected, const front::Seen& got) {
    std::string names;
    for (const front::LoadedFile& wanted : expected.files) {
        for (const front::LoadedFile& came : got.files) {
            if (wanted.file == came.file && wanted.hash != came.hash) {
                names += (names.empty() ? "" : ", ") + wanted.file;
                break;
            }
        }
    }
    return names.empty() ? "" : "\n  the game's files are others than then: " + names;
}

Verdict judgeRecording(const VerifyOptions& options, const std::string& file,
                       const front::Recording& expected, const front::Recording& got) {
    Channels channels;
    std::string remark;
    if (expected.seen.libraries != got.seen.libraries) {
        const std::string both =
            "made with " + expected.seen.libraries + ", played with " + got.seen.libraries;
        if (!options.anyLibrary) {
            return {NOT_COMPARED, file + ": " + both +
                                      ": two libraries round pictures differently "
                                      "(--any-library compares all else)"};
        }
        channels.pictures = false;
        remark = "; pictures were not compared (" + both + ")";
    }
    Compared compared;
    const std::optional<Difference> difference = firstDifference(expected, got, channels, compared);
    if (difference) {
        std::string report = file + ": frame " + std::to_string(difference->frame) + " differs (" +
                             nameOf(difference->channel) + "): " + difference->message +
                             filesThatDiffer(expected.seen, got.seen);
        if (difference->channel == Channel::PICTURES) {
            report += PictureReport(options, file, difference->frame).write();
        }
        return {DIFFERENT, report};
    }
    if (compared.bytes == 0 || (channels.pictures && compared.frames == 0)) {
        return {NOT_COMPARED, file + ": nothing was recorded that could be compared"};
    }
    return {SAME, file + ": the same game: " + figures(compared) + remark};
}

Verdict judgeScenario(const std::string& file, const front::Scenario& scenario,
                      const front::Seen& got) {
    if (scenario.expectations.empty()) {
        return {NOT_COMPARED, file + ": expects nothing, so nothing is proven (\"expect\" lines)"};
    }
    std::string report;
    for (const Unmet& unmet : unmetExpectations(scenario, got)) {
        report += (report.empty() ? "" : "\n") + file + ':' + std::to_string(unmet.line) + ": " +
                  unmet.message;
    }
    if (!report.empty()) {
        return {DIFFERENT, report};
    }
    return {SAME, file + ": as expected: " + std::to_string(scenario.expectations.size()) +
                      " expectations, " + std::to_string(got.frames) + " frames"};
}

Verdict judge(const VerifyOptions& options, const std::string& file) {
    try {
        const front::Recording expected = readFile(file, options.partly);
        const auto start = std::chrono::steady_clock::now();
        const front::Recording got = playAgain(options.place, file);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        Verdict verdict = expected.isRecording ? judgeRecording(options, file, expected, got)
                                               : judgeScenario(file, expected.given, got.seen);
        if (verdict.status == SAME) {
            char text[64];
            std::snprintf(text, sizeof text, " (%s of play in %.1f s)",
                          lengthWords(summaryOf(got).lengthMs).c_str(), took.count());
            verdict.report += text;
        }
        return verdict;
    } catch (const Trouble& trouble) {
        return {NOT_COMPARED, trouble.what()};
    }
}

}  // namespace

int verify(const VerifyOptions& options) {
    std::vector<Verdict> verdicts(options.files.size());
    std::vector<bool> done(options.files.size());
    std::atomic<size_t> next = 0;
    size_t printed = 0;
    std::mutex printing;
    const auto work = [&] {
        for (size_t i = next++; i < options.files.size(); i = next++) {
            Verdict verdict = judge(options, options.files[i]);
            const std::lock_guard<std::mutex> lock(printing);
            verdicts[i] = std::move(verdict);
            done[i] = true;
            // In the order of the files, whichever game ends first.
            for (; printed < done.size() && done[printed]; ++printed) {
                std::puts(verdicts[printed].report.c_str());
                std::fflush(stdout);
            }
        }
    };
    std::vector<std::thread> workers;
    for (unsigned int i = 1; i < std::min<size_t>(options.jobs, options.files.size()); ++i) {
        workers.emplace_back(work);
    }
    work();
    for (std::thread& worker : workers) {
        worker.join();
    }
    int status = SAME;
    for (const Verdict& verdict : verdicts) {
        status = std::max(status, verdict.status);
    }
    return status;
}

}  // namespace replay
