# SPDX-License-Identifier: MIT
# Where an installed game has its parts, below any prefix. A packager sets the three folders as the
# distribution wants them. Launcher and tool find the others by relative paths, so that an installed
# tree may be moved.
include(GNUInstallDirs)

set(KRAVOLTIX_BINDIR games CACHE STRING "Folder of the commands, below the prefix")
set(KRAVOLTIX_LIBDIR lib/games/kravoltix CACHE STRING "Folder of the game's program and its layer")
set(KRAVOLTIX_DATADIR ${CMAKE_INSTALL_DATAROOTDIR}/games/kravoltix CACHE STRING
    "Folder of the game's pictures and sounds")

file(RELATIVE_PATH KRAVOLTIX_DATA_FROM_BIN /${KRAVOLTIX_BINDIR} /${KRAVOLTIX_DATADIR})
file(RELATIVE_PATH KRAVOLTIX_LIB_FROM_BIN /${KRAVOLTIX_BINDIR} /${KRAVOLTIX_LIBDIR})
