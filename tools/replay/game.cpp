// SPDX-License-Identifier: MIT
#include "replay/game.h"

#include "front/session.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <map>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace replay {
namespace {

namespace fs = std::filesystem;

constexpr char FIRST_ASSET[] = "/explosions/ex0000.png";  // tells a folder of game data
constexpr int STATUS_NOT_STARTED = 96;

fs::path ownFolder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

// The first of these places, relative to this tool, where there is such a file.
std::string findFile(std::initializer_list<const char*> places, const std::string& within,
                     const std::string& what, const std::string& option) {
    for (const char* place : places) {
        const fs::path path = (ownFolder() / place).lexically_normal();
        if (fs::exists(path.string() + within)) {
            return path.string();
        }
    }
    throw Trouble(what + " is not beside this program; name it with " + option);
}

// The variables that a new process gets, those of this one with some of them changed.
class Environment {
public:
    Environment() {
        for (char** entry = environ; *entry != nullptr; ++entry) {
            const std::string text = *entry;
            const size_t end = text.find('=');
            if (end != std::string::npos) {
                variables[text.substr(0, end)] = text.substr(end + 1);
            }
        }
    }

    std::string get(const std::string& name) const {
        const auto found = variables.find(name);
        return found == variables.end() ? "" : found->second;
    }

    // An empty value takes the variable away.
    void set(const std::string& name, const std::string& value) {
        if (value.empty()) {
            variables.erase(name);
        } else {
            variables[name] = value;
        }
    }

    // A list whose last word for a thing counts.
    void append(const std::string& name, const std::string& word) {
        const std::string others = get(name);
        set(name, others.empty() ? word : others + ":" + word);
    }

    std::vector<std::string> entries() const {
        std::vector<std::string> result;
        for (const auto& [name, value] : variables) {
            result.push_back(name);
            result.back().append("=").append(value);
        }
        return result;
    }

private:
    std::map<std::string, std::string> variables;
};

std::string keptList(const std::vector<KeptFrame>& kept) {
    std::string list;
    for (const KeptFrame& entry : kept) {
        list += (list.empty() ? "" : ",") + std::to_string(entry.frame) + ':' + entry.file;
    }
    return list;
}

std::vector<std::string> environmentOf(const Place& place, const GameRun& run) {
    Environment variables;
    const std::string others = variables.get("LD_PRELOAD");
    variables.set("LD_PRELOAD", place.preload + (others.empty() ? "" : ":" + others));
    variables.set("KRAVOLTIX_SCENARIO",
                  run.script.empty() ? "" : fs::absolute(run.script).string());
    variables.set("KRAVOLTIX_RECORD",
                  run.recordTo.empty() ? "" : fs::absolute(run.recordTo).string());
    variables.set("KRAVOLTIX_KEEP", keptList(run.kept));
    variables.set("KRAVOLTIX_SPEED", run.speed > 0 ? std::to_string(run.speed) : "");
    variables.set("KRAVOLTIX_FILM", run.filmTo >= 0 ? std::to_string(run.filmTo) : "");
    variables.set("KRAVOLTIX_FILM_RATE", std::to_string(run.filmRate));
    variables.set("KRAVOLTIX_CALLS", "");
    variables.set("KRAVOLTIX_PICTURES", fs::current_path().string());
    // A game built with the address sanitizer refuses libraries in front of its own.
    variables.append("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
    if (!run.seen) {
        variables.set("SDL_VIDEODRIVER", "dummy");
        variables.set("SDL_AUDIODRIVER", "dummy");
        // The game fills 160 MB when it starts. In large pages that takes half the time of a short
        // game.
        variables.append("GLIBC_TUNABLES", "glibc.malloc.hugetlb=1");
    }
    return variables.entries();
}

// As exec takes them; they point into `words`.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

void redirect(int from, int to) {
    if (from >= 0) {
        dup2(from, to);
        close(from);
    }
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// What the layer has to say, without its own name in front.
std::string layersMessage(const std::string& errors) {
    const std::string name = "front: ";
    const size_t start = errors.find(name);
    if (start == std::string::npos) {
        return errors.empty() ? "the game could not be started" : errors;
    }
    const size_t end = errors.find('\n', start);
    return errors.substr(start + name.size(), end - start - name.size());
}

// The dynamic linker takes blanks and colons for the ends of names. A file that has one in its path is
// named by a descriptor, which stays open for the game.
std::string nameForLinker(const std::string& path) {
    if (path.find_first_of(" :") == std::string::npos) {
        return path;
    }
    const int descriptor = open(path.c_str(), O_RDONLY);
    if (descriptor < 0) {
        throw Trouble(path + ": " + std::strerror(errno));
    }
    return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

void complete(Place& place) {
    if (place.program.empty()) {
        place.program = findFile({KRAVOLTIX_LIB_FROM_BIN "/kravoltix", "kravoltix"}, "", "the game",
                                 "--game PROGRAM");
    }
    if (place.preload.empty()) {
        place.preload =
            findFile({KRAVOLTIX_LIB_FROM_BIN "/libkravoltix_preload.so", "libkravoltix_preload.so"},
                     "", "the layer libkravoltix_preload.so", "--layer FILE");
    }
    if (place.data.empty()) {
        place.data = findFile({KRAVOLTIX_DATA_FROM_BIN, "../../data"}, FIRST_ASSET,
                              "the folder of the game's pictures and sounds", "--data FOLDER");
    }
    if (access(place.program.c_str(), X_OK) != 0) {
        throw Trouble(place.program + ": is no program that can be run (--game)");
    }
    if (!fs::is_directory(place.data)) {
        throw Trouble(place.data + ": is no folder (--data)");
    }
    // Without it the game would run all the same, and wait for a player.
    if (access(place.preload.c_str(), R_OK) != 0) {
        throw Trouble(place.preload + ": cannot be read (--layer)");
    }
    place.preload = nameForLinker(fs::absolute(place.preload).string());
}

// Several threads begin games at once, and in the new process a lock that another thread held stays
// locked: all that allocates is done before, and between fork and exec are only calls that POSIX
// allows there.
int startGame(const Place& place, const GameRun& run) {
    const std::string program = fs::absolute(place.program).string();
    std::vector<std::string> arguments = run.arguments;
    arguments.insert(arguments.begin(), "kravoltix");
    std::vector<std::string> environment = environmentOf(place, run);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    const pid_t process = fork();
    if (process == 0) {
        if (!run.errorsTo.empty()) {
            redirect(open(run.errorsTo.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
        }
        if (run.quiet) {
            redirect(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        }
        if (chdir(place.data.c_str()) == 0) {
            execve(program.c_str(), argumentPointers.data(), environmentPointers.data());
        }
        _exit(STATUS_NOT_STARTED);
    }
    if (process < 0) {
        throw Trouble(std::string("the game cannot be started: ") + std::strerror(errno));
    }
    return process;
}

GameResult waitForGame(int process) {
    int state = 0;
    while (waitpid(process, &state, 0) < 0 && errno == EINTR) {
    }
    GameResult result;
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    result.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    if (result.status == STATUS_NOT_STARTED) {
        throw Trouble("the game could not be started");
    }
    return result;
}

GameResult runGame(const Place& place, const GameRun& run) {
    return waitForGame(startGame(place, run));
}

front::Recording readFile(const std::string& path, bool partly) {
    front::Recording recording;
    std::string error;
    if (!front::readRecording(path, recording, error)) {
        throw Trouble(error);
    }
    if (!recording.cutOff.empty() && !partly) {
        throw Trouble(recording.cutOff + " (--partial takes what there is)");
    }
    return recording;
}

front::Recording playAgain(const Place& place, const std::string& path,
                           const std::vector<KeptFrame>& kept) {
    const TemporaryFolder folder;
    GameRun run;
    run.script = path;
    run.arguments = readFile(path, true).given.arguments;
    run.recordTo = folder.path + "/again.kvx";
    run.kept = kept;
    run.errorsTo = folder.path + "/errors.txt";
    const GameResult result = runGame(place, run);
    if (result.status == front::STATUS_BAD_SCRIPT || !fs::exists(run.recordTo)) {
        throw Trouble(layersMessage(contentOf(run.errorsTo)));
    }
    front::Recording again;
    std::string error;
    if (!front::readRecording(run.recordTo, again, error)) {
        // What a crash leaves of its first second is nothing.
        throw Trouble(path + (result.signal != 0 ? std::string(": the game crashed in its first "
                                                               "second: ") +
                                                       strsignal(result.signal)
                                                 : ": the game was not written down: " + error));
    }
    if (result.signal != 0) {
        throw Trouble(path + ": the game crashed in frame " +
                      std::to_string(again.seen.checks.size()) +
                      " or soon after: " + strsignal(result.signal));
    }
    if (!again.seen.ended) {
        throw Trouble(path + ": the game has not written its end");
    }
    return again;
}

TemporaryFolder::TemporaryFolder()
    : path((fs::temp_directory_path() / "kravoltix-XXXXXX").string()) {
    if (mkdtemp(path.data()) == nullptr) {
        throw Trouble("no temporary folder can be made: " + std::string(std::strerror(errno)));
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

}  // namespace replay
