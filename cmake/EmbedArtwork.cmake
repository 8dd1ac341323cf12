# Writes OUTPUT, a C++ source: a table of the artwork in FILES (a list), each byte as it stands in the
# file. Artwork whose text has class="directional" is mirrored where text runs from right to left.

set(arrays "")
set(rows "")
foreach(file IN LISTS FILES)
    get_filename_component(name "${file}" NAME_WE)
    string(MAKE_C_IDENTIFIER "${name}" identifier)
    file(READ "${file}" bytes HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND arrays "constexpr char k_${identifier}[] = {${bytes}};\n")
    file(READ "${file}" text)
    set(mirroring "kNever")
    string(FIND "${text}" "class=\"directional\"" at)
    if(NOT at EQUAL -1)
        set(mirroring "kRightToLeft")
    endif()
    string(APPEND rows
        "    {\"${name}\", {k_${identifier}, sizeof k_${identifier}}, IconMirroring::${mirroring}},\n")
endforeach()

file(WRITE "${OUTPUT}" "// Written from resources/artwork when the module is built.

#include \"framework/kivtoolkit/src/Artwork.h\"

namespace kivtoolkit {

namespace {

using kivui::ui::IconMirroring;

${arrays}
constexpr ArtworkFile kFiles[] = {
${rows}};

}  // namespace

std::span<const ArtworkFile> ArtworkFiles() noexcept
{
    return kFiles;
}

}  // namespace kivtoolkit
")
