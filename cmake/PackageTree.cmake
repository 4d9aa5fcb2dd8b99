# SPDX-License-Identifier: MIT
# Run by CPack on the tree that it packs: adds licence, changes and documents where a system keeps
# them, and does to a Debian package what Debian's own tools would do.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(prefix ${CPACK_TEMPORARY_DIRECTORY}/usr)
else()
    set(prefix ${CPACK_TEMPORARY_DIRECTORY})
endif()
set(readable FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(documents ${prefix}/share/doc/kravoltix)
file(COPY ${CPACK_KRAVOLTIX_SOURCE}/debian/copyright ${CPACK_KRAVOLTIX_SOURCE}/README.md
    ${CPACK_KRAVOLTIX_SOURCE}/NOT-BUGS.md ${CPACK_KRAVOLTIX_SOURCE}/CHANGELOG.md
    DESTINATION ${documents} ${readable})

if(CPACK_GENERATOR STREQUAL "DEB")
    file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
    file(COPY ${CPACK_KRAVOLTIX_SOURCE}/debian/changelog DESTINATION ${prefix} ${readable})
    file(RENAME ${prefix}/changelog ${documents}/changelog.Debian)
    file(GLOB_RECURSE pages ${prefix}/share/man/*.6)
    execute_process(COMMAND gzip -9n ${pages} ${documents}/changelog ${documents}/changelog.Debian
        COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB programs ${prefix}/games/kravoltix-replay ${prefix}/lib/games/kravoltix/*)
    execute_process(COMMAND strip --remove-section=.comment --remove-section=.note ${programs}
        COMMAND_ERROR_IS_FATAL ANY)
    file(COPY ${CPACK_KRAVOLTIX_SOURCE}/debian/kravoltix.lintian-overrides
        DESTINATION ${prefix}/share/lintian/overrides ${readable})
    file(RENAME ${prefix}/share/lintian/overrides/kravoltix.lintian-overrides
        ${prefix}/share/lintian/overrides/kravoltix)
endif()

# Files that are made while packing would bear the time of the packing.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference
        --date=@$ENV{SOURCE_DATE_EPOCH} {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
