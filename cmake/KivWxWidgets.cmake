# kivtoolkit_wx: wxWidgets as one INTERFACE target, the system's own or, for Windows, the one that
# scripts/windows_deps.sh built. Its headers are none of our warnings' business.

add_library(kivtoolkit_wx INTERFACE)

if(WIN32)
    set(wx_libraries "${KIV_WINDOWS_WXWIDGETS}/lib/gcc_x64_dll")
    target_include_directories(kivtoolkit_wx SYSTEM INTERFACE
        "${KIV_WINDOWS_WXWIDGETS}/include" "${wx_libraries}/mswu")
    target_compile_definitions(kivtoolkit_wx INTERFACE __WXMSW__ WXUSINGDLL wxDEBUG_LEVEL=0)
    target_link_libraries(kivtoolkit_wx INTERFACE "${wx_libraries}/libwxmsw32u.a")
else()
    find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)
    target_include_directories(kivtoolkit_wx SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
    target_compile_definitions(kivtoolkit_wx INTERFACE
        ${wxWidgets_DEFINITIONS} $<$<CONFIG:Debug>:${wxWidgets_DEFINITIONS_DEBUG}>)
    target_compile_options(kivtoolkit_wx INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_directories(kivtoolkit_wx INTERFACE ${wxWidgets_LIBRARY_DIRS})
    target_link_libraries(kivtoolkit_wx INTERFACE ${wxWidgets_LIBRARIES})
endif()
