// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_SESSION_H
#define KRAVOLTIX_FRONT_SESSION_H

#include "front/calllog.h"
#include "front/recorder.h"
#include "front/recording.h"

#include <functional>
#include <string>
#include <vector>

// One game behind the hooks of front.h: its clock and keys come from a script or from the player,
// and its pictures, sounds and text are written down as they come.
//
// The clock stands still while the game draws and thinks. It goes on when a frame is shown
// (SDL_Flip) and when the game sleeps (SDL_Delay). So the script, which tells how long each frame
// takes, is the whole game; and a player's game, whose clock goes on by the real time at the same
// two places, can be told by such a script.
namespace front {

// Exit statuses that the game does not have.
constexpr int STATUS_BAD_SCRIPT = 97;
constexpr int STATUS_ENDLESS_GAME = 98;

struct SessionOptions {
    bool scripted = false;  // false: the real clock and the real keys
    Recording script;
    std::vector<std::string> arguments;  // of the game, for the recording
    std::string recordTo;                // the recording; empty for none
    std::string callsTo;                 // the log of calls; empty for none
    std::string pictureFolder = ".";     // for the pictures that the script keeps
    std::vector<KeptPicture> pictures;   // more of them
    int framesTo = -1;                   // descriptor that takes a picture for each
    Uint32 framesPerSecond = 60;         // ... of the game's clock; -1 for none
    double speed = 0;                    // of a scripted game, 1 as it was played, 0 at full speed
};

class Session {
public:
    // Opens what it writes; hooks are not put yet. Ends the process with STATUS_BAD_SCRIPT and a
    // message when the options cannot be met.
    explicit Session(const SessionOptions& wanted);

    // Stands in front of the libraries from now on. There is one session in a process; it must live
    // until the process ends, since exit handlers still call the libraries.
    void putHooks();

    // The process ends with this status: collects the last text and writes the end.
    void end(int status);

    // The function returns something that means a failure, and the game asks for it.
    static bool canFail(const std::string& function);

private:
    void holdClockAndEvents();
    void noteStartAndEnd();
    void notePictures();
    void noteSounds();
    void wrapEverything();
    template <typename Result, typename... Arguments>
    void wrap(const char* name, std::function<Result(Arguments...)>& hook,
              Result (*realFunction)(Arguments...));
    const Failure* failureOf(const char* function, Uint32 call) const;
    void noteFailure(const char* function, Uint32 call);

    void note(const std::string& line);
    void noteMixer(const std::string& line, bool succeeded = true);
    void noteFile(const char* file);
    void recordCall(const std::string& line);
    void recordWantedCall(const std::string& line);
    void noteBlit(const SDL_Surface* from, const SDL_Rect* part, const SDL_Rect* place);
    void recordWantedDrawing(const SDL_Surface* from, const SDL_Rect* part, const SDL_Rect* place);

    int flip(SDL_Surface* shown);
    int flipScripted(SDL_Surface* shown);
    int flipLive(SDL_Surface* shown);
    void startLiveClock();
    void recordFrame(Uint64 pictureHash, Uint32 ms);
    void keepPictures(SDL_Surface* shown);
    void countWantedPixels(const SDL_Surface* shown);
    void showFramesUntil(Uint32 untilMs, const SDL_Surface* shown);
    Uint64 realDueMs() const;
    void waitForMoment();
    void delay(Uint32 ms);
    Uint32 nextFrameMs();
    int pollScripted(SDL_Event* event);
    int pollLive(SDL_Event* event);
    bool quitIsAsked(SDL_Event* event);
    void captureText();
    void collectText();
    [[noreturn]] void stop(int status, const std::string& message);

    SessionOptions options;
    CallLog log;
    Recorder recorder;
    SDL_Surface* screen = nullptr;
    std::string lastOpened;  // the file that the next sound is loaded from
    bool audioIsOpen = false;

    // the clock
    Uint32 clockMs = 0;
    Uint32 firstFrameMs = 0;  // when the first frame was shown
    Uint32 frame = 0;         // frames shown so far
    Uint32 frameMs = Scenario::DEFAULT_FRAME_MS;
    bool liveClockRuns = false;
    Uint32 liveOffsetMs = 0;  // from the real clock to the game's

    // how far the script has come
    size_t nextRun = 0;
    Uint32 framesOfRun = 0;
    size_t nextFrameTime = 0;
    size_t nextEvent = 0;
    size_t nextPicture = 0;
    size_t nextOption = 0;  // picture of the options

    // what the display shows
    const SDL_Surface* energyBar = nullptr;
    const SDL_Surface* smallDigits = nullptr;
    HudReading hud = {0, 0, 0, 0};
    HudReading lastHud = {0, ~0U, 0, 0};
    bool hudIsShown = false;

    // what was printed
    int textFile = -1;  // takes the place of standard output
    int realOutput = -1;
    off_t textRead = 0;

    Uint64 framesShown = 0;   // to options.framesTo
    Uint64 watchStartMs = 0;  // real time of the first frame
};

}  // namespace front

#endif
