// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_RELIABILITY_QUICKTOUR_H
#define KRAVOLTIX_TESTS_RELIABILITY_QUICKTOUR_H

#include "reliability/start.h"

#include <string>

namespace reliability {

// A game of 56 frames in which every picture is drawn and every sound played, to the player's end:
// for betweenFrames. The game's own fields are moved on where the true way there is long.
void quickTour(Running& game);

constexpr int QUICK_TOUR_FRAMES = 56;

// What a game prints, by the rules.
std::string startText(bool fullscreen, bool noSound);  // to the first load
std::string birthText();                               // the objects, without the display
std::string displayText();                             // the display and the banner
std::string quickTourText();                           // from the first frame to the player's end
std::string quickTourTextWithoutHits();
std::string farewellText(bool noSound);

// All of it.
std::string wholeText(bool noSound, const std::string& tour = quickTourText());

// The lines of standard error that are not the libraries' messages about a picture or a driver.
std::string unexpectedLines(const std::string& error);

}  // namespace reliability

#endif
