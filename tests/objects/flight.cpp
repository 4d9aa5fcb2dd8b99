// SPDX-License-Identifier: MIT
#include "objects/flight.h"

#include "front/front.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace {

constexpr unsigned char RUBBISH = 0xa5;
constexpr int HEAP_BLOCKS = 7;

Box boxAt(const SDL_Rect* rect) {
    return rect == nullptr ? Box(0, 0, 0, 0) : Box(*rect);
}

}  // namespace

bool operator==(const Box& one, const Box& other) {
    return one.x == other.x && one.y == other.y && one.w == other.w && one.h == other.h;
}

std::ostream& operator<<(std::ostream& out, const Box& box) {
    return out << box.w << " x " << box.h << " at (" << box.x << ", " << box.y << ')';
}

bool operator==(const Sound& one, const Sound& other) {
    return one.channel == other.channel && one.chunk == other.chunk && one.loops == other.loops &&
           one.ticks == other.ticks;
}

std::ostream& operator<<(std::ostream& out, const Sound& sound) {
    return out << "sound " << sound.chunk << " on channel " << sound.channel << ", loops "
               << sound.loops << ", ticks " << sound.ticks;
}

Flight::Flight() : screen(makeScreen()), loadedPicture(makePicture(11, 8, GREEN)) {
    front::hooks().SDL_UpperBlit = [this](SDL_Surface* from, SDL_Rect* fromRect, SDL_Surface* to,
                                          SDL_Rect* toRect) {
        blits.push_back({from, fromRect, boxAt(fromRect), to, toRect, boxAt(toRect)});
        return front::real::SDL_UpperBlit(from, fromRect, to, toRect);
    };
    front::hooks().Mix_PlayChannelTimed = [this](int channel, Mix_Chunk* chunk, int loops,
                                                 int ticks) {
        sounds.push_back({channel, chunk, loops, ticks});
        return channel;
    };
    front::hooks().IMG_Load = [this](const char* file) {
        loads.emplace_back(file);
        return loadedPicture;
    };
}

Flight::~Flight() {
    front::hooks() = {};
}

void Flight::forget() {
    blits.clear();
    sounds.clear();
    loads.clear();
    paint(screen, 0, 0, screen->w, screen->h, BLACK);
}

std::vector<SDL_Surface*> Flight::picturesDrawn() const {
    std::vector<SDL_Surface*> pictures;
    for (const Blit& blit : blits) {
        pictures.push_back(blit.picture);
    }
    return pictures;
}

Pictures::Pictures(int count, int size) {
    for (int i = 0; i < count; ++i) {
        all.push_back(makePicture(size, size, BLUE));
    }
}

int Pictures::indexOf(const SDL_Surface* picture) const {
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i] == picture) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

Mix_Chunk* makeSound() {
    return new Mix_Chunk{};
}

void soil(void* memory, size_t bytes) {
    // volatile: or the compiler leaves out what no one seems to read
    volatile unsigned char* byte = static_cast<unsigned char*>(memory);
    for (size_t i = 0; i < bytes; ++i) {
        byte[i] = RUBBISH;
    }
}

void soilHeap(size_t bytes) {
    void* blocks[HEAP_BLOCKS];
    for (void*& block : blocks) {
        block = std::malloc(bytes);
        soil(block, bytes);
    }
    for (void* block : blocks) {
        std::free(block);
    }
}

void expectInThisOrder(std::initializer_list<Member> members) {
    const Member* before = nullptr;
    for (const Member& member : members) {
        if (before != nullptr) {
            EXPECT_TRUE(std::less<>()(before->address, member.address))
                << member.name << " does not follow " << before->name;
        }
        before = &member;
    }
}
