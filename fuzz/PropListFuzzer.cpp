// Reads any bytes as a property list. What can be read is written, and must read back as the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <kivcore/PropList.h>
#include <kivcore/Xml.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kivcore::proplist;
    PropList list;
    try {
        list = utils::ReadPropList({reinterpret_cast<const char*>(data), size}, "input");
    } catch (const kivcore::xml::ParseError&) {
        return 0;
    }
    // Texts are compared, because a number that is none does not equal itself.
    const std::string text = utils::WritePropList(list);
    if (utils::WritePropList(utils::ReadPropList(text, "written")) != text) {
        std::abort();
    }
    return 0;
}
