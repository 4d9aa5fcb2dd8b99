// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_FLYINGOBJECT_H
#define KRAVOLTIX_OBJECTS_FLYINGOBJECT_H

#include <SDL.h>
#include <SDL_mixer.h>

// The energy of an object whose explosion has run to its end: its owner takes it out of the game.
constexpr int ENERGY_EXPLODED = -666;

// From this picture of its explosion on, the ship under it is no longer drawn.
constexpr Uint32 SHIP_GONE_FROM_FRAME = 20;

// The base of everything that flies: a picture with a float position, inertia in four directions,
// energy and two explosions. Its owner drives it once a frame: setFrameDelay(), control(), show().
// Nothing is virtual; a derived class hides what it has of its own, and callers get the operation
// of the type that they hold.
//
// Positions are pixels from the top left corner of the screen to the top left corner of the object,
// y grows downward. `xFloat` and `yFloat` are the truth; the rectangles follow from them with each
// move, x parts with horizontal moves and y parts with vertical ones. SDL writes the visible part
// back into `destRect` with each blit, and the next hit test sees that. Times are milliseconds,
// speeds become pixels per millisecond through `speedScale`. Pictures, screen and sounds are given,
// not owned, and outlive the object; nothing given is checked.
class FlyingObject {
public:
    // An object at (x, y) on a field of fieldWidth x fieldHeight pixels, at rest and active.
    FlyingObject(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
                 SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside);
    ~FlyingObject();

    // One frame: moves by the four direction flags, then steps a mini explosion that is running.
    void control();

    // Hands over the milliseconds of the last frame; comes before control() in every frame.
    void setFrameDelay(unsigned int ms);

    // Draws the visible part; returns SDL's result.
    int show();

    // One frame of movement in one direction: accelerating, or coasting to a stop. Opposite
    // directions are independent, so an object slides on for a while after it has been reversed.
    void moveLeft(bool accelerate);
    void moveRight(bool accelerate);
    void moveUp(bool accelerate);
    void moveDown(bool accelerate);

    // Adds to the energy; negative to damage.
    void setEnergyRelative(int delta);

    // What the next control() accelerates towards.
    void setGoingLeft(bool going);
    void setGoingRight(bool going);
    void setGoingUp(bool going);
    void setGoingDown(bool going);

    // Gives the pictures of the explosion, 46 at least, each frameWidth x frameHeight pixels.
    void setExplosion(SDL_Surface** frames, int frameWidth, int frameHeight);

    // The same for the mini explosion, 6 at least.
    void setMiniExplosion(SDL_Surface** frames, int frameWidth, int frameHeight);

    // Puts the mini explosion at a place on the screen and rewinds it. It runs only while
    // `miniExploding` is set, which is the hit code's to do.
    void setMiniExplosionPosition(int x, int y);

    // One frame of the explosion, drawn at once; its end sets the energy to ENERGY_EXPLODED. With
    // the first step comes the sound and a line on standard output.
    void explode();

    // One frame of the mini explosion, drawn at once; control() calls it while `miniExploding`.
    void miniExplode();

    float getXFloat();
    float getYFloat();

    // Whether a point of the screen lies inside the visible rectangle; all four edges are outside.
    bool isInRect(int px, int py);

    SDL_Surface* image;
    Uint32 frameDelay = 0;  // milliseconds of the last frame
    int fieldWidth;
    int fieldHeight;

    // place on the screen
    SDL_Rect destRect;    // where the visible part lands; stays where it was beyond left and top
    SDL_Rect sourceRect;  // the visible part of the picture
    float xFloat;
    float yFloat;
    int width;
    int height;

    // steering
    bool goingLeft = false;
    bool goingRight = false;
    bool goingUp = false;
    bool goingDown = false;
    bool externallySteered;  // a formation sets the flags
    bool active = true;      // cleared when a shot has hit: it is neither drawn nor tested any more

    // motion
    float speedScale;     // pixels per unit of speed and millisecond
    float speedLeft = 0;  // moves only while above 0; braking may leave it below 0 for a frame
    float speedRight = 0;
    float speedUp = 0;
    float speedDown = 0;
    float maxSpeedLeft;  // a speed that has reached this grows no more
    float maxSpeedRight;
    float maxSpeedUp;
    float maxSpeedDown;
    float accelLeft;  // growth of the speed per millisecond
    float accelRight;
    float accelUp;
    float accelDown;
    SDL_Surface* screen;

    // explosions
    SDL_Surface** explosionFrames = nullptr;
    SDL_Rect explosionSourceRect = {0, 0, 0, 0};
    SDL_Rect explosionDestRect = {0, 0, 0, 0};
    int explosionWidth = 0;
    int explosionHeight = 0;
    SDL_Surface** miniExplosionFrames = nullptr;
    SDL_Rect miniExplosionRect = {0, 0, 0, 0};
    Uint32 explosionTimer = 0;      // milliseconds towards the next picture; 0: not started
    Uint32 explosionFrame = 0;      // the picture shown
    Uint32 miniExplosionTimer = 0;  // likewise
    Uint32 miniExplosionFrame = 0;
    bool miniExploding = false;

    Uint32 lifeTime = 0;  // sum of all frame delays
    int energy = 0;       // hit points; below 1 an object is neither hit nor chosen as a target

    // set by the owner
    Mix_Chunk* explosionSound = nullptr;
    Mix_Chunk* miniExplosionSound = nullptr;

private:
    void placeExplosion();
};

#endif
