# Compiler settings that every target of ours shares, as one INTERFACE target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# What the systems do differently stands in files by this suffix.
set(KIV_PLATFORM posix)
if(WIN32)
    set(KIV_PLATFORM win)
    # kivcore.dll everywhere, not libkivcore.dll with this compiler only.
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
    set(CMAKE_SHARED_MODULE_PREFIX "")
endif()

# Everything that runs lies in one folder, as it does on Windows: programs find the libraries, the
# libraries find their data.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_BUILD_RPATH "$ORIGIN")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
# Installed, too, everything of ours lies in one folder on Windows, which has no search path in a
# library; elsewhere each kind has its own.
if(WIN32)
    set(CMAKE_INSTALL_DOCDIR doc)
    set(KIV_INSTALL_LIBRARYDIR "${CMAKE_INSTALL_BINDIR}")
    set(KIV_INSTALL_APPDIR "${CMAKE_INSTALL_BINDIR}")
    set(KIV_LIB_TO_DATA ".")
else()
    set(KIV_INSTALL_LIBRARYDIR "${CMAKE_INSTALL_LIBDIR}")
    set(KIV_INSTALL_APPDIR "${CMAKE_INSTALL_DATADIR}/kivmetadataapi")
    file(RELATIVE_PATH KIV_LIB_TO_DATA
        "${CMAKE_INSTALL_FULL_LIBDIR}" "${CMAKE_INSTALL_FULL_DATADIR}/kivmetadataapi")
endif()
file(RELATIVE_PATH KIV_BIN_TO_LIB
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${KIV_BIN_TO_LIB}")

find_program(KIV_CCACHE ccache)
if(KIV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER "${KIV_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${KIV_CCACHE}")
endif()

add_library(kiv_flags INTERFACE)
target_include_directories(kiv_flags INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(kiv_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    $<$<BOOL:${KIV_WARNINGS_AS_ERRORS}>:-Werror>)
if(WIN32)
    target_compile_definitions(kiv_flags INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
    # A large test file has more sections than a plain object file can hold, and the same sources
    # give the same file, whenever they are linked.
    target_compile_options(kiv_flags INTERFACE -Wa,-mbig-obj)
    target_link_options(kiv_flags INTERFACE -Wl,--no-insert-timestamp)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # Optimized builds with GCC 12 see an overlap in `"text" + std::string` that is not there.
    target_compile_options(kiv_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
# A unique symbol would pin our libraries in the host's process; GCC makes one of every static in a
# template.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    target_compile_options(kiv_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()
if(KIV_SANITIZE)
    target_compile_options(kiv_flags INTERFACE
        -fsanitize=${KIV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kiv_flags INTERFACE -fsanitize=${KIV_SANITIZE})
elseif(NOT WIN32)
    target_link_options(kiv_flags INTERFACE -Wl,--no-undefined)
endif()
