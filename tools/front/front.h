// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_FRONT_H
#define KRAVOLTIX_FRONT_FRONT_H

#include <SDL.h>
#include <SDL_mixer.h>

#include <functional>

// Stands in front of SDL, SDL_image and SDL_mixer: every library function that the game calls is
// defined here too and comes first, by link order or by LD_PRELOAD. Each one runs its hook when one
// is set, or else goes on to the library. So tests and tools hold the clock, the events, the picture
// and the sounds of a game that knows nothing of it.
//
// Hooks meet the program's own calls in its main thread. What the libraries call for themselves, and
// what the mixer's thread calls, always gets the library.
namespace front {

// NAME, result, parameters, arguments: one row for each function that the game calls.
// clang-format off
#define KRAVOLTIX_FRONT_FUNCTIONS(ROW) \
    ROW(SDL_Init, int, (Uint32 flags), (flags)) \
    ROW(SDL_SetVideoMode, SDL_Surface*, (int width, int height, int bpp, Uint32 flags), \
        (width, height, bpp, flags)) \
    ROW(SDL_ShowCursor, int, (int toggle), (toggle)) \
    ROW(SDL_GetTicks, Uint32, (void), ()) \
    ROW(SDL_Delay, void, (Uint32 ms), (ms)) \
    ROW(SDL_PollEvent, int, (SDL_Event* event), (event)) \
    ROW(SDL_Flip, int, (SDL_Surface* screen), (screen)) \
    ROW(SDL_FillRect, int, (SDL_Surface* dst, SDL_Rect* dstrect, Uint32 color), \
        (dst, dstrect, color)) \
    ROW(SDL_UpperBlit, int, \
        (SDL_Surface* src, SDL_Rect* srcrect, SDL_Surface* dst, SDL_Rect* dstrect), \
        (src, srcrect, dst, dstrect)) \
    ROW(SDL_LockSurface, int, (SDL_Surface* surface), (surface)) \
    ROW(SDL_UnlockSurface, void, (SDL_Surface* surface), (surface)) \
    ROW(SDL_RWFromFile, SDL_RWops*, (const char* file, const char* mode), (file, mode)) \
    ROW(SDL_LoadBMP_RW, SDL_Surface*, (SDL_RWops* src, int freesrc), (src, freesrc)) \
    ROW(SDL_DisplayFormat, SDL_Surface*, (SDL_Surface* surface), (surface)) \
    ROW(SDL_SetColorKey, int, (SDL_Surface* surface, Uint32 flag, Uint32 key), \
        (surface, flag, key)) \
    ROW(SDL_FreeSurface, void, (SDL_Surface* surface), (surface)) \
    ROW(SDL_Quit, void, (void), ()) \
    ROW(IMG_Load, SDL_Surface*, (const char* file), (file)) \
    ROW(Mix_OpenAudio, int, (int frequency, Uint16 format, int channels, int chunksize), \
        (frequency, format, channels, chunksize)) \
    ROW(Mix_LoadWAV_RW, Mix_Chunk*, (SDL_RWops* src, int freesrc), (src, freesrc)) \
    ROW(Mix_PlayChannelTimed, int, (int channel, Mix_Chunk* chunk, int loops, int ticks), \
        (channel, chunk, loops, ticks)) \
    ROW(Mix_FadeOutChannel, int, (int which, int ms), (which, ms)) \
    ROW(Mix_FadeOutMusic, int, (int ms), (ms)) \
    ROW(Mix_CloseAudio, void, (void), ())
// clang-format on

// One hook for each function, under its name, all empty at first:
//     front::hooks().SDL_GetTicks = [] { return Uint32{266}; };
struct Hooks {
#define KRAVOLTIX_FRONT_HOOK(name, result, parameters, arguments)                                  \
    std::function<result parameters> name;
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_HOOK)
#undef KRAVOLTIX_FRONT_HOOK
};

Hooks& hooks();

// The libraries' own functions, for hooks that want to go on to them: front::real::SDL_Flip(screen).
namespace real {
#define KRAVOLTIX_FRONT_REAL(name, result, parameters, arguments) result name parameters;
KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_REAL)
#undef KRAVOLTIX_FRONT_REAL
}  // namespace real

}  // namespace front

#endif
