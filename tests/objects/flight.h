// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_OBJECTS_FLIGHT_H
#define KRAVOLTIX_TESTS_OBJECTS_FLIGHT_H

#include <SDL.h>
#include <SDL_mixer.h>

#include <cstddef>
#include <initializer_list>
#include <new>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

// A rectangle that can be compared and printed.
struct Box {
    int x, y, w, h;

    Box(int left, int top, int width, int height) : x(left), y(top), w(width), h(height) {}
    explicit Box(const SDL_Rect& rect) : Box(rect.x, rect.y, rect.w, rect.h) {}
};

bool operator==(const Box& one, const Box& other);
std::ostream& operator<<(std::ostream& out, const Box& box);

// A blit as it was handed to SDL: the rectangles themselves and what stood in them at that time.
struct Blit {
    SDL_Surface* picture;
    const SDL_Rect* part;  // null for the whole picture
    Box partBefore;
    SDL_Surface* onto;
    const SDL_Rect* place;
    Box placeBefore;
};

// A sound as it was handed to the mixer.
struct Sound {
    int channel;
    Mix_Chunk* chunk;
    int loops;
    int ticks;
};

bool operator==(const Sound& one, const Sound& other);
std::ostream& operator<<(std::ostream& out, const Sound& sound);

// A screen, and everything that flying objects hand to the libraries while this lives: blits go on
// to SDL, sounds go nowhere, pictures that are asked for by file are `loadedPicture`.
class Flight {
public:
    Flight();
    ~Flight();
    Flight(const Flight&) = delete;
    Flight& operator=(const Flight&) = delete;

    // Forgets what was seen so far and blacks the screen out.
    void forget();

    // The pictures of all blits so far, in their order.
    std::vector<SDL_Surface*> picturesDrawn() const;

    SDL_Surface* screen;
    SDL_Surface* loadedPicture;
    std::vector<Blit> blits;
    std::vector<Sound> sounds;
    std::vector<std::string> loads;
};

// The pictures of an explosion, each a surface of its own; `count` of them, size x size pixels.
class Pictures {
public:
    Pictures(int count, int size);

    SDL_Surface** frames() { return all.data(); }
    SDL_Surface* operator[](size_t index) const { return all[index]; }

    // The index of a picture, or -1.
    int indexOf(const SDL_Surface* picture) const;

private:
    std::vector<SDL_Surface*> all;
};

// A value of its own for every sound; nothing looks into it.
Mix_Chunk* makeSound();

// Fills memory with rubbish. What is not set by a constructor shows.
void soil(void* memory, size_t bytes);

// Has the heap hand out soiled memory for its next blocks of this size.
void soilHeap(size_t bytes);

// An object made in soiled memory. It is never freed, like every object of the game.
template <class Object, class... Arguments> Object& make(Arguments&&... arguments) {
    void* memory = ::operator new(sizeof(Object));
    soil(memory, sizeof(Object));
    return *new (memory) Object(std::forward<Arguments>(arguments)...);
}

// A member of an object, for expectInThisOrder({{"x", &object.x}, {"y", &object.y}}).
struct Member {
    const char* name;
    const volatile void* address;
};

// The members lie in the object one after the other.
void expectInThisOrder(std::initializer_list<Member> members);

#endif
