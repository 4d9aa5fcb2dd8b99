// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_PLAYTHROUGH_TEXTS_H
#define KRAVOLTIX_TESTS_PLAYTHROUGH_TEXTS_H

#include <string>

// What the program prints, byte for byte. "@" stands for the line with the web address.
constexpr char HELP_BOX[] = R"(
  +------------------------------------------------------------------+
  |                 K R A V O L T I X  ---  H E L P                  |
  +------------------------------------------------------------------+ 
  |  Options:                                                        |
  |   --help, -?         :  print out this help message              |
  |   --fullscreen, -fs  :  start in fullscreen mode                 |
  |   --nosound,    -ns  :  start without sound                      |
  +------------------------------------------------------------------+ 
  |  Keys:                                                           |
  |   up    arrow        :  flying up                                |
  |   right arrow        :  flying down                              |
  |   left  arrow        :  flying left                              |
  |   right arrow        :  flying right                             |
  |   "A"                :  for laser shot                           |
  |   "S"                :  for rocket shot                          |
  +------------------------------------------------------------------+ 
  |  By the way: redirecting output in a file stops bucking          |
  |  and makes the game faster (only interesting in "window mode").  |
  +------------------------------------------------------------------+ 
@
  +------------------------------------------------------------------+

)";

constexpr char BANNER[] = R"(
+------------------------------------------------------------------+
|                        K R A V O L T I X                         |
+------------------------------------------------------------------+ 
|  Options:                                                        |
|   --help, -?         :  print out this help message              |
|   --fullscreen, -fs  :  start in fullscreen mode                 |
|   --nosound,    -ns  :  start without sound                      |
+------------------------------------------------------------------+ 
|  Keys:                                                           |
|   up    arrow        :  flying up                                |
|   right arrow        :  flying down                              |
|   left  arrow        :  flying left                              |
|   right arrow        :  flying right                             |
|   "A"                :  for laser shot                           |
|   "S"                :  for rocket shot                          |
+------------------------------------------------------------------+ 

READY for Testing?
GO!

First Challenge:
 (a) Win against the "test formation"! 
 (b) same as (a) without rocket shot! ;)
)";

constexpr char SLOW_FRAME_LINES[] = R"(  (    Sorry, your framerate was too small!(?)    )
  ( Perhaps you got now a very strange condition! )

)";

constexpr char FADE_OUT_LINES[] = R"(
Fade out all the audio channels in 1 second...
)";

constexpr char THANKS_LINES[] = R"(
Thank you for testing!

Questions? ... )" KRAVOLTIX_WEB_ADDRESS R"(

)";

inline bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

inline int timesIn(const std::string& text, const std::string& part) {
    int times = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++times;
    }
    return times;
}

#endif
