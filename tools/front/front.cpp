// SPDX-License-Identifier: MIT
#include "front/front.h"

#include <SDL_image.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

namespace front {
namespace {

const pthread_t mainThread = pthread_self();

void* findNext(const char* name) {
    void* found = dlsym(RTLD_NEXT, name);
    if (found == nullptr) {
        std::fprintf(stderr, "front: no library after this one has %s; is SDL linked?\n", name);
        std::abort();
    }
    return found;
}

// An object's code in memory.
struct CodeRange {
    uintptr_t begin = UINTPTR_MAX;
    uintptr_t end = 0;

    bool has(uintptr_t address) const { return address >= begin && address < end; }
};

// Whose calls are the game's: the program's own, and the C library's, which calls SDL_Quit() when
// the process ends.
struct GameCode {
    CodeRange program;
    CodeRange cLibrary;
    uintptr_t cLibraryBase = 0;
    bool isFirst = true;  // the program is the first object of a process
};

CodeRange codeOf(const dl_phdr_info& object) {
    CodeRange code;
    for (int i = 0; i < object.dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = object.dlpi_phdr[i];
        if (part.p_type == PT_LOAD && (part.p_flags & PF_X) != 0) {
            const uintptr_t begin = object.dlpi_addr + part.p_vaddr;
            code.begin = std::min(code.begin, begin);
            code.end = std::max(code.end, begin + part.p_memsz);
        }
    }
    return code;
}

int readObject(dl_phdr_info* object, size_t /*bytes*/, void* result) {
    GameCode& code = *static_cast<GameCode*>(result);
    if (code.isFirst) {
        code.program = codeOf(*object);
        code.isFirst = false;
    } else if (object->dlpi_addr == code.cLibraryBase) {
        code.cLibrary = codeOf(*object);
    }
    return 0;
}

GameCode findGameCode() {
    GameCode code;
    Dl_info cLibrary = {};
    if (dladdr(findNext("exit"), &cLibrary) != 0) {
        code.cLibraryBase = reinterpret_cast<uintptr_t>(cLibrary.dli_fbase);
    }
    dl_iterate_phdr(readObject, &code);
    return code;
}

// What the libraries do for themselves is theirs: their own clock, waits and blits stay real.
bool isGame(const void* caller) {
    static const GameCode code = findGameCode();
    const uintptr_t address = reinterpret_cast<uintptr_t>(caller);
    return (code.program.has(address) || code.cLibrary.has(address)) &&
           pthread_equal(pthread_self(), mainThread) != 0;
}

}  // namespace

Hooks& hooks() {
    static Hooks* const all = new Hooks;  // outlives every exit handler
    return *all;
}

namespace real {
// NOLINTBEGIN(bugprone-macro-parentheses): types take no parentheses
#define KRAVOLTIX_FRONT_REAL(name, result, parameters, arguments)                                  \
    result name parameters {                                                                       \
        static const auto function = reinterpret_cast<result(*) parameters>(findNext(#name));      \
        return function arguments;                                                                 \
    }
KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_REAL)
#undef KRAVOLTIX_FRONT_REAL
// NOLINTEND(bugprone-macro-parentheses)
}  // namespace real

}  // namespace front

#define KRAVOLTIX_FRONT_WRAPPER(name, result, parameters, arguments)                               \
    extern "C" result name parameters {                                                            \
        if (front::hooks().name && front::isGame(__builtin_return_address(0))) {                   \
            return front::hooks().name arguments;                                                  \
        }                                                                                          \
        return front::real::name arguments;                                                        \
    }
KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_WRAPPER)
#undef KRAVOLTIX_FRONT_WRAPPER
