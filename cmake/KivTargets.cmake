# Helpers that keep one way of declaring each kind of target.

# In front of an absolute path that a Windows program is given, by a definition or by an environment
# variable: under Wine, "Z:" is the root folder of the machine that builds. Empty on other systems.
set(KIV_DRIVE "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(KIV_DRIVE "Z:")
endif()

# In front of a script that runs programs for Windows many times: all in one installation, kept up.
set(KIV_TOGETHER "")
if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(KIV_TOGETHER ${CMAKE_CROSSCOMPILING_EMULATOR} --together)
endif()

# kiv_add_framework_library(NAME DESCRIPTION text SOURCES... [PUBLIC libs...] [PRIVATE libs...])
# A shared library of the open host framework: public headers under include/NAME, sources under src.
function(kiv_add_framework_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION" "SOURCES;PUBLIC;PRIVATE")
    add_library(${name} SHARED ${arg_SOURCES})
    string(TOUPPER ${name} upper)
    target_include_directories(${name}
        PUBLIC
            $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE ${upper}_BUILD)
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_link_libraries(${name}
        PUBLIC ${arg_PUBLIC}
        PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:kiv_flags>)
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    kiv_add_version_resource(${name} DESCRIPTION "${arg_DESCRIPTION}")
    kiv_install_library(${name})
    install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
endfunction()

# kiv_install_library(NAME): installs a library and puts it into the package's export set.
function(kiv_install_library name)
    install(TARGETS ${name}
        EXPORT kivmetadataapiTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${KIV_INSTALL_LIBRARYDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()

# kiv_add_test(NAME SOURCES... LIBS... [LABELS...] [TIMEOUT seconds] [ENVIRONMENT VAR=value...])
# A GoogleTest program, one ctest entry. Programs for another system run under
# CMAKE_CROSSCOMPILING_EMULATOR; tests that name their command themselves put it before the program.
function(kiv_add_test name)
    if(NOT KIV_BUILD_TESTS)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LIBS;LABELS;ENVIRONMENT")
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 900)  # sanitizer builds on a busy machine are slow
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gmock GTest::gtest_main kiv_flags)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}" ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()

# kiv_add_tool_test(NAME PROGRAM SCRIPT): a script of this folder that runs a command-line program many
# times, and is told the folder that it lies in.
function(kiv_add_tool_test name program script)
    if(NOT KIV_BUILD_TESTS)
        return()
    endif()
    find_package(Python3 REQUIRED COMPONENTS Interpreter)
    add_test(NAME ${name}
        COMMAND ${KIV_TOGETHER} $<TARGET_FILE:Python3::Interpreter>
            "${CMAKE_CURRENT_SOURCE_DIR}/${script}" "$<TARGET_FILE_DIR:${program}>")
    set_tests_properties(${name} PROPERTIES TIMEOUT 1800 ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")
endfunction()

# kiv_add_fuzzer(NAME LIBS...): fuzz/NAME.cpp with the seeds in fuzz/seeds/NAME.
function(kiv_add_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBS")
    add_executable(${name} ${name}.cpp)
    target_link_libraries(${name} PRIVATE ${arg_LIBS} kiv_flags)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set_property(GLOBAL APPEND PROPERTY KIV_FUZZERS ${name})
endfunction()

# kiv_add_header_check(NAME): compiles each public header of the library NAME alone and twice, so
# that it stands without what others happened to include before it.
function(kiv_add_header_check name)
    if(NOT KIV_BUILD_TESTS)
        return()
    endif()
    file(GLOB headers CONFIGURE_DEPENDS
        RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}/include" "${CMAKE_CURRENT_SOURCE_DIR}/include/${name}/*.h")
    set(sources "")
    foreach(header IN LISTS headers)
        string(MAKE_C_IDENTIFIER "${header}" stem)
        set(source "${CMAKE_CURRENT_BINARY_DIR}/headers/${stem}.cpp")
        file(CONFIGURE OUTPUT "${source}" CONTENT "#include <${header}>\n#include <${header}>\n")
        list(APPEND sources "${source}")
    endforeach()
    add_library(${name}_header_check OBJECT ${sources})
    target_link_libraries(${name}_header_check PRIVATE ${name} kiv_flags)
endfunction()

# kiv_copy_data(FOLDER DIRECTORY dir): puts the files of the directory `dir` of this folder under FOLDER
# of the application's data: beside the programs in the build tree, and in the data folder when
# installed.
function(kiv_copy_data folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DIRECTORY" "")
    file(GLOB files CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${arg_DIRECTORY}/*.*")
    list(FILTER files EXCLUDE REGEX "CMakeLists.txt$|README.md$")
    set(copies)
    foreach(source IN LISTS files)
        get_filename_component(name "${source}" NAME)
        set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder}/${name}")
        add_custom_command(
            OUTPUT "${copy}"
            COMMAND ${CMAKE_COMMAND} -E copy "${source}" "${copy}"
            DEPENDS "${source}"
            VERBATIM)
        list(APPEND copies "${copy}")
    endforeach()
    string(MAKE_C_IDENTIFIER "${folder}" target)
    add_custom_target(data_${target} ALL DEPENDS ${copies})
    add_dependencies(application_data data_${target})
    install(FILES ${files} DESTINATION "${KIV_INSTALL_APPDIR}/${folder}")
endfunction()
