#include "tools/pemtext/Files.h"

#include "dictionary/InputStreams.h"

#include <kivcore/StringConversion.h>

namespace pemtext {

void LoadInto(morvish::Dictionary& dictionary, const std::string& name, Loader loader)
{
    if (loader == Loader::kMemory || name == kStandard) {
        const std::string content = ReadInput(name);
        if (loader == Loader::kMemory) {
            dictionary.LoadFromMemory(content.data(), content.size());
            return;
        }
        morvish::basic_irstream<char> stream(content.data(), content.size());
        dictionary.LoadFromStream(&stream);
        return;
    }
    const kivcore::UString path = kivcore::string::UTF8to16(name);
    morvish::basic_ifstream<char> stream(std::u16string_view(path.data(), path.size()));
    if (!stream.is_open()) {
        ReadInput(name);  // knows the reason
        throw Failure(name + ": cannot be opened");
    }
    dictionary.LoadFromStream(&stream);
}

void LoadCleanly(morvish::Dictionary& dictionary, const std::string& name)
{
    LoadInto(dictionary, name);
    if (!dictionary.Valid())
        throw Failure(NameOf(name) + ": does not load cleanly (\"pemtext check\" tells why)");
}

}  // namespace pemtext
