// SPDX-License-Identifier: MIT
#include "support/program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int STATUS_NOT_STARTED = 127;

// Files of a run, in its temporary folder.
constexpr char SCENARIO_FILE[] = "/scenario";
constexpr char OUTPUT_FILE[] = "/output";
constexpr char ERROR_FILE[] = "/error";
constexpr char CALLS_FILE[] = "/calls";
constexpr char PICTURE_SUFFIX[] = ".bmp";

std::string makeTemporaryFolder() {
    std::string path = std::filesystem::temp_directory_path() / "kravoltix-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        ADD_FAILURE() << "cannot make a folder in " << std::filesystem::temp_directory_path();
    }
    return path;
}

void addScenario(const ProgramRun& run, const std::string& folder,
                 std::map<std::string, std::string>& environment) {
    writeFile(folder + SCENARIO_FILE, run.scenario);
    environment["KRAVOLTIX_SCENARIO"] = folder + SCENARIO_FILE;
    environment["KRAVOLTIX_CALLS"] = folder + CALLS_FILE;
    environment["KRAVOLTIX_PICTURES"] = folder;
    environment["LD_PRELOAD"] = KRAVOLTIX_PRELOAD;
    // The layer brings the sanitizer's library with it, but cannot be behind it in the list.
    const char* options = std::getenv("ASAN_OPTIONS");
    environment["ASAN_OPTIONS"] =
        (options == nullptr ? "" : options + std::string(":")) + "verify_asan_link_order=0";
}

void sendInto(std::FILE* stream, const std::string& file) {
    if (std::freopen(file.c_str(), "w", stream) == nullptr) {
        _exit(STATUS_NOT_STARTED);
    }
}

// In the child: becomes the program.
[[noreturn]] void start(const ProgramRun& run, const std::string& folder,
                        const std::map<std::string, std::string>& environment) {
    sendInto(stdout, folder + OUTPUT_FILE);
    sendInto(stderr, folder + ERROR_FILE);
    for (const auto& variable : environment) {
        setenv(variable.first.c_str(), variable.second.c_str(), 1);
    }
    if (chdir(run.folder.c_str()) != 0) {
        _exit(STATUS_NOT_STARTED);
    }
    std::vector<char*> arguments = {const_cast<char*>("kravoltix")};
    for (const std::string& argument : run.arguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    execv(KRAVOLTIX_PROGRAM, arguments.data());
    _exit(STATUS_NOT_STARTED);
}

// Holds back the signal of a child's end, so that it can be waited for with a timeout.
class ChildSignal {
public:
    ChildSignal() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGCHLD);
        pthread_sigmask(SIG_BLOCK, &signals, &before);
    }

    ~ChildSignal() { restore(); }

    void restore() const { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

    bool comesWithin(unsigned int seconds) const {
        const timespec timeout = {static_cast<time_t>(seconds), 0};
        return sigtimedwait(&signals, nullptr, &timeout) == SIGCHLD;
    }

private:
    sigset_t signals = {};
    sigset_t before = {};
};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool beginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

// A line of a call begins with the clock; those of the counts at the end do not.
bool isCall(const std::string& line, const std::string& beginning) {
    const size_t clockEnd = line.find(' ');
    return line.find_first_not_of("0123456789") == clockEnd &&
           line.compare(clockEnd + 1, beginning.size(), beginning) == 0;
}

void collect(const std::string& folder, ProgramResult& result) {
    result.output = contentOf(folder + OUTPUT_FILE);
    result.error = contentOf(folder + ERROR_FILE);
    if (std::filesystem::exists(folder + CALLS_FILE)) {
        result.calls = linesOf(contentOf(folder + CALLS_FILE));
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == PICTURE_SUFFIX) {
            result.pictures[entry.path().filename()] = SDL_LoadBMP(entry.path().c_str());
        }
    }
}

int countIn(const std::vector<std::string>& lines, const std::string& beginning) {
    for (const std::string& line : lines) {
        if (beginsWith(line, beginning)) {
            return std::stoi(line.substr(beginning.size()));
        }
    }
    return 0;
}

}  // namespace

TemporaryFolder::TemporaryFolder() : path(makeTemporaryFolder()) {}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    EXPECT_TRUE(in.good()) << "cannot read " << path;
    return content.str();
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary);
    out << content;
    out.close();
    EXPECT_TRUE(out.good()) << "cannot write " << path;
}

ProgramResult runProgram(const ProgramRun& run) {
    const TemporaryFolder folder;
    std::map<std::string, std::string> environment = run.environment;
    if (!run.scenario.empty()) {
        addScenario(run, folder.path, environment);
    }
    const ChildSignal ended;
    const pid_t child = fork();
    if (child == 0) {
        ended.restore();
        start(run, folder.path, environment);
    }
    ProgramResult result;
    if (child < 0) {
        ADD_FAILURE() << "the program cannot be started";
        return result;
    }
    if (!ended.comesWithin(run.timeoutSeconds)) {
        kill(child, SIGKILL);
        result.timedOut = true;
    }
    int state = 0;
    waitpid(child, &state, 0);
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    result.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    collect(folder.path, result);
    return result;
}

std::vector<std::string> ProgramResult::callsOf(const std::string& beginning) const {
    std::vector<std::string> found;
    for (const std::string& line : calls) {
        if (isCall(line, beginning)) {
            found.push_back(line.substr(line.find(' ') + 1));
        }
    }
    return found;
}

long ProgramResult::clockOf(const std::string& beginning) const {
    for (const std::string& line : calls) {
        if (isCall(line, beginning)) {
            return std::stol(line);
        }
    }
    return -1;
}

int ProgramResult::timesCalled(const std::string& function) const {
    return countIn(calls, "called " + function + " ");
}

int ProgramResult::timesDrawn(const std::string& picture) const {
    return countIn(calls, "drawn " + picture + " ");
}

bool isComplete() {
    return std::getenv("KRAVOLTIX_COMPLETE") != nullptr;
}
