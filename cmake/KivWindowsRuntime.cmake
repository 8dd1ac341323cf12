# The DLLs that ours need and Windows does not have: the compiler's runtime and wxWidgets. One copy
# of each, shared by all modules, so that exceptions cross from one to another. They lie beside the
# programs, built and installed.

file(GLOB runtime "${KIV_WINDOWS_WXWIDGETS}/lib/*/*.dll")
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
        COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${name}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT EXISTS "${path}")
        message(FATAL_ERROR "The compiler's folders have no ${name}")
    endif()
    list(APPEND runtime "${path}")
endforeach()

file(MAKE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
foreach(source IN LISTS runtime)
    get_filename_component(name "${source}" NAME)
    set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}")
    # Nine tenths of the compiler's files are symbols.
    execute_process(
        COMMAND "${CMAKE_STRIP}" --strip-unneeded -o "${CMAKE_BINARY_DIR}/stripped.dll" "${source}"
        COMMAND_ERROR_IS_FATAL ANY)
    file(COPY_FILE "${CMAKE_BINARY_DIR}/stripped.dll" "${copy}" ONLY_IF_DIFFERENT)
    file(REMOVE "${CMAKE_BINARY_DIR}/stripped.dll")
    install(PROGRAMS "${copy}" DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()

# Their terms are passed on with them.
set(licences "${CMAKE_INSTALL_DOCDIR}/licences")
install(FILES "${CMAKE_CURRENT_LIST_DIR}/windows-licences.txt"
    DESTINATION ${licences} RENAME README.txt)
foreach(prefix IN LISTS KIV_WINDOWS_PREFIXES)
    if(prefix STREQUAL KIV_WINDOWS_EXIV2 AND NOT KIV_EXIV2)
        continue()
    endif()
    if(IS_DIRECTORY "${prefix}/licences")
        install(DIRECTORY "${prefix}/licences/" DESTINATION ${licences})
    endif()
endforeach()
install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright
    DESTINATION ${licences} RENAME gcc.txt)
install(FILES /usr/share/common-licenses/GPL-3
    DESTINATION ${licences} RENAME gcc-gpl-3.txt)
install(FILES /usr/share/doc/mingw-w64-x86-64-dev/copyright
    DESTINATION ${licences} RENAME mingw-w64.txt)
install(FILES /usr/share/doc/libz-mingw-w64-dev/copyright
    DESTINATION ${licences} RENAME zlib.txt)
install(FILES /usr/share/doc/libagg-dev/copyright
    DESTINATION ${licences} RENAME agg.txt)
