# SPDX-License-Identifier: MIT
# What makes a fault of the game harder to abuse, for whatever the project builds: code at an address
# that no one knows, tables that are read-only once the program runs, checked stack and buffers, and no
# stack that runs as code. A packager's own flags come before these and agree with them.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Sanitizers and coverage bring checks of their own.
if(NOT KRAVOLTIX_SANITIZE AND NOT KRAVOLTIX_COVERAGE)
    check_cxx_compiler_flag(-fstack-clash-protection HAS_STACK_CLASH_PROTECTION)
    # The C library checks buffers only where the compiler optimises.
    target_compile_options(kravoltix_options INTERFACE
        -fstack-protector-strong
        $<$<BOOL:${HAS_STACK_CLASH_PROTECTION}>:-fstack-clash-protection>
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    target_link_options(kravoltix_options INTERFACE
        LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
