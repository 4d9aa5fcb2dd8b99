// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_DRIVER_WEBADDRESS_H
#define KRAVOLTIX_DRIVER_WEBADDRESS_H

// Where players find the project; the build sets it (CMake variable KRAVOLTIX_WEB_ADDRESS). The
// default is a reserved name, so that a build without one sends nobody to a stranger.
#ifndef KRAVOLTIX_WEB_ADDRESS
#define KRAVOLTIX_WEB_ADDRESS "kravoltix.example"
#endif

#endif
