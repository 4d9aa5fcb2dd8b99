# SPDX-License-Identifier: MIT
# What `cpack` packs from the installed tree: a Debian package, and an archive that runs from any
# folder. tools/package calls it so that the same sources give the same bytes.
set(CPACK_PACKAGE_NAME kravoltix)
set(CPACK_PACKAGE_VENDOR "The KRAVOLTIX developers")
set(CPACK_PACKAGE_CONTACT "KRAVOLTIX developers <maintainers@kravoltix.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://${KRAVOLTIX_WEB_ADDRESS}/")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_FILE_NAME "kravoltix-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageTree.cmake)
set(CPACK_KRAVOLTIX_SOURCE ${PROJECT_SOURCE_DIR})

# One package has program and data: a player needs one file. The libraries are found by dpkg-shlibdeps.
set(CPACK_DEBIAN_FILE_NAME ${CPACK_PACKAGE_FILE_NAME}.deb)
file(STRINGS debian/changelog revision LIMIT_COUNT 1)
string(REGEX REPLACE "^[^(]*\\([^)]*-([0-9]+)\\).*" "\\1" CPACK_DEBIAN_PACKAGE_RELEASE "${revision}")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS ffmpeg)
set(CPACK_DEBIAN_PACKAGE_CONFLICTS kravoltix-data)
set(CPACK_DEBIAN_PACKAGE_REPLACES kravoltix-data)
file(STRINGS debian/control description REGEX "^Description: arcade space shooter: one ship")
string(REPLACE "Description: " "" CPACK_PACKAGE_DESCRIPTION_SUMMARY "${description}")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"KRAVOLTIX is a small two-dimensional arcade space shooter. You fly one ship
over a falling starfield, fire a laser and homing rockets from limited
stocks, and fight seven enemies that fly as one formation along a timed
course and drop shots on you.

The game is drawn in software at 640 x 480 pixels, in a window or on the full
screen. It has no random numbers: the same keys at the same times are the same
game. kravoltix-replay, which is part of this package, records games, shows
them again, proves them frame by frame, and makes films of them.")

include(CPack)
