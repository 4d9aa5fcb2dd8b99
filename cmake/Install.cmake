# SPDX-License-Identifier: MIT
# What `cmake --install` lays out.
set(dist ${PROJECT_SOURCE_DIR}/dist/linux)
set(generated ${PROJECT_BINARY_DIR}/dist)
set(share ${CMAKE_INSTALL_DATAROOTDIR})
configure_file(${dist}/launcher.in ${generated}/kravoltix @ONLY)
configure_file(${dist}/metainfo/org.example.kravoltix.metainfo.xml.in
    ${generated}/org.example.kravoltix.metainfo.xml @ONLY)

# `man` shows the page of the reader's language, and the English one where there is none.
set(man_languages de es fr ja pl)
function(install_manual_page page)
    install(FILES ${dist}/man/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man6)
    foreach(language IN LISTS man_languages)
        install(FILES ${dist}/man/${language}/${page}
            DESTINATION ${CMAKE_INSTALL_MANDIR}/${language}/man6)
    endforeach()
endfunction()

install(TARGETS kravoltix RUNTIME DESTINATION ${KRAVOLTIX_LIBDIR})
install(PROGRAMS ${generated}/kravoltix DESTINATION ${KRAVOLTIX_BINDIR})
install(DIRECTORY data/ DESTINATION ${KRAVOLTIX_DATADIR})
install(FILES ${dist}/applications/org.example.kravoltix.desktop DESTINATION ${share}/applications)
install(FILES ${generated}/org.example.kravoltix.metainfo.xml DESTINATION ${share}/metainfo)
install(DIRECTORY ${dist}/share/icons DESTINATION ${share} PATTERN mimetypes EXCLUDE)
install_manual_page(kravoltix.6)
install(FILES ${dist}/completions/kravoltix.bash
    DESTINATION ${share}/bash-completion/completions RENAME kravoltix)
install(FILES ${dist}/completions/_kravoltix DESTINATION ${share}/zsh/vendor-completions)
install(FILES ${dist}/completions/kravoltix.fish DESTINATION ${share}/fish/vendor_completions.d)

if(TARGET kravoltix-replay)
    install(TARGETS kravoltix-replay RUNTIME DESTINATION ${KRAVOLTIX_BINDIR})
    install(TARGETS kravoltix_preload LIBRARY DESTINATION ${KRAVOLTIX_LIBDIR})
    install(FILES ${dist}/applications/org.example.kravoltix.replay.desktop
        DESTINATION ${share}/applications)
    install(FILES ${dist}/mime/kravoltix.xml DESTINATION ${share}/mime/packages)
    install(DIRECTORY ${dist}/share/icons DESTINATION ${share}
        FILES_MATCHING PATTERN application-x-kravoltix-replay.*)
    install_manual_page(kravoltix-replay.6)
    install(FILES ${dist}/completions/kravoltix-replay.bash
        DESTINATION ${share}/bash-completion/completions RENAME kravoltix-replay)
    install(FILES ${dist}/completions/_kravoltix-replay DESTINATION ${share}/zsh/vendor-completions)
    install(FILES ${dist}/completions/kravoltix-replay.fish
        DESTINATION ${share}/fish/vendor_completions.d)
endif()
