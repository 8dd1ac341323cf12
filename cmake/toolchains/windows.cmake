# Windows x64 from Linux: mingw-w64 with the posix thread model. The libraries that Debian does not
# package for it come from scripts/windows_deps.sh.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(KIV_MINGW x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KIV_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KIV_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${KIV_MINGW}-windres)

# Programs are this machine's; headers and libraries are never.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_ROOT_PATH /usr/${KIV_MINGW})

# The script builds its libraries with this file too, before there is a list of them.
if(NOT KIV_WINDOWS_NO_LIBRARIES)
    set(KIV_WINDOWS_LIBRARIES "${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries.cmake")
    if(NOT EXISTS "${KIV_WINDOWS_LIBRARIES}")
        message(FATAL_ERROR "The libraries for Windows are missing: run scripts/windows_deps.sh")
    endif()
    include("${KIV_WINDOWS_LIBRARIES}")
    list(APPEND CMAKE_FIND_ROOT_PATH ${KIV_WINDOWS_PREFIXES})
    set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine.sh")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KIV_WINDOWS_NO_LIBRARIES)
