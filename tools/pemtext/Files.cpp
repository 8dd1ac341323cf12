#include "tools/pemtext/Files.h"

#include "dictionary/DictionaryLine.h"
#include "dictionary/InputStreams.h"
#include "tools/pemtext/SourceLines.h"

#include <kivcore/StringConversion.h>

namespace pemtext {

namespace {

std::string At(const std::string& name, std::size_t line)
{
    return NameOf(name) + ":" + std::to_string(line) + ": ";
}

}  // namespace

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
    const std::string content = ReadInput(name);
    morvish::basic_irstream<char> stream(content.data(), content.size());
    dictionary.LoadFromStream(&stream);
    if (IsImage(content)) {
        if (!dictionary.Valid())
            throw Failure(NameOf(name) +
                          ": the binary image is broken or of a version that is not read");
        return;
    }
    const SourceText source = SplitText(content);
    if (!dictionary.Valid()) {
        for (const SourceLine& line : source.lines) {
            if (!morvish_private::SplitLine(line.text).valid)
                throw Failure(At(name, line.number) +
                              "the line begins with '$', but not with \"$$$\"");
        }
        throw Failure(NameOf(name) + ": is no dictionary");
    }
    // The engine takes such a file for what it could read. Whoever made it should know.
    if (source.end == SourceText::End::kBrokenUtf8)
        Tell("pemtext: " + At(name, source.endLine) +
             "the line is not well-formed UTF-8; it and all that follows is left out\n");
    if (source.end == SourceText::End::kNulUnit)
        Tell("pemtext: " + At(name, source.endLine) +
             "a NUL ends the file here; what follows is left out\n");
}

}  // namespace pemtext
