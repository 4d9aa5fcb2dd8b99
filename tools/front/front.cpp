// SPDX-License-Identifier: MIT
#include "front/front.h"

#include <SDL_image.h>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
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

// Hooks of static objects may be gone, or not there yet, when a library calls.
bool hooksApply() {
    return pthread_equal(pthread_self(), mainThread) != 0;
}

}  // namespace

Hooks& hooks() {
    static Hooks* const all = new Hooks;  // outlives every exit handler
    return *all;
}

namespace real {
#define KRAVOLTIX_FRONT_REAL(name, result, parameters, arguments)                                  \
    result name parameters {                                                                       \
        static const auto function = reinterpret_cast<result(*) parameters>(findNext(#name));      \
        return function arguments;                                                                 \
    }
KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_REAL)
#undef KRAVOLTIX_FRONT_REAL
}  // namespace real

}  // namespace front

#define KRAVOLTIX_FRONT_WRAPPER(name, result, parameters, arguments)                               \
    extern "C" result name parameters {                                                            \
        if (front::hooksApply() && front::hooks().name) {                                          \
            return front::hooks().name arguments;                                                  \
        }                                                                                          \
        return front::real::name arguments;                                                        \
    }
KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_WRAPPER)
#undef KRAVOLTIX_FRONT_WRAPPER
