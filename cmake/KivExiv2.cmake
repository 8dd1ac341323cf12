# Exiv2, as the target kiv_exiv2. Its own package files differ between systems and want libraries that
# are not there; a header and a library are all it takes.

find_path(KIV_EXIV2_INCLUDE exiv2/exif.hpp)
find_library(KIV_EXIV2_LIBRARY exiv2)
if(NOT KIV_EXIV2_INCLUDE OR NOT KIV_EXIV2_LIBRARY)
    message(FATAL_ERROR "Exiv2, which reads Exif and IIM data, is missing: install it (Debian's package "
        "libexiv2-dev; for Windows run scripts/windows_deps.sh), or build without it: -DKIV_EXIV2=OFF")
endif()

add_library(kiv_exiv2 INTERFACE)
target_include_directories(kiv_exiv2 SYSTEM INTERFACE "${KIV_EXIV2_INCLUDE}")
target_link_libraries(kiv_exiv2 INTERFACE "${KIV_EXIV2_LIBRARY}")
# Else its headers mark all classes as exported, and what we make of them would be exported by us.
target_compile_definitions(kiv_exiv2 INTERFACE exiv2lib_STATIC)
if(WIN32)
    target_link_libraries(kiv_exiv2 INTERFACE psapi ws2_32 shell32)
endif()
