# Resources of Windows modules. On other systems these do nothing.

if(WIN32)
    enable_language(RC)
endif()

# kiv_add_resource_script(NAME kind script): compiles a resource script into NAME. By itself, so that the
# options of C and C++, which its compiler does not know, stay away.
function(kiv_add_resource_script name kind script)
    add_library(${name}_${kind} OBJECT "${script}")
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${name}_${kind}>)
endfunction()

# kiv_add_version_resource(NAME DESCRIPTION text): the version record of the library or program NAME,
# after resources/Version.rc.in.
function(kiv_add_version_resource name)
    if(NOT WIN32)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION" "")
    get_target_property(type ${name} TYPE)
    if(type STREQUAL "EXECUTABLE")
        set(FILE "${name}.exe")
        set(TYPE 0x1L)
    else()
        set(FILE "${name}.dll")
        set(TYPE 0x2L)
    endif()
    # Four numbers, whatever the project has.
    string(REPLACE "." "," NUMBERS "${PROJECT_VERSION}.0.0.0")
    string(REGEX MATCH "^[0-9]+,[0-9]+,[0-9]+,[0-9]+" NUMBERS "${NUMBERS}")
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}_version.rc")
    configure_file("${PROJECT_SOURCE_DIR}/resources/Version.rc.in" "${source}" @ONLY)
    kiv_add_resource_script(${name} version "${source}")
endfunction()

# kiv_add_xml_resources(NAME files...): documents that the module carries as resources of type XML,
# each named as its file without the ending.
function(kiv_add_xml_resources name)
    if(NOT WIN32)
        return()
    endif()
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}_documents.rc")
    set(text "")
    foreach(file IN LISTS ARGN)
        get_filename_component(stem "${file}" NAME_WE)
        # Without quotes: in quotes the name would be one with quotes in it.
        string(APPEND text "${stem} XML \"${file}\"\n")
    endforeach()
    file(CONFIGURE OUTPUT "${source}" CONTENT "${text}" @ONLY)
    set_source_files_properties("${source}" PROPERTIES OBJECT_DEPENDS "${ARGN}")
    kiv_add_resource_script(${name} documents "${source}")
endfunction()
