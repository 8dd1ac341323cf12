#include "dictionary/StringConverters.h"
#include "dictionary/ValuePasses.h"
#include "localizer/DefaultLocalizer.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/TemporaryFile.h"

#include <kivcore/StringConversion.h>

#include <exception>
#include <functional>
#include <string>

namespace pemtext {

namespace {

// Prints the answer to each key; an exception of the engine is the last line.
int AnswerKeys(const std::string& file,
               const std::function<std::string(const std::string&)>& answer)
{
    for (const JsonLine& line : ReadJsonLines(file)) {
        std::string key;
        if (!ToBytes(line.text, key))
            throw Failure(file + ":" + std::to_string(line.number) +
                          ": a key is bytes, U+0000 to U+00FF");
        std::string value;
        try {
            value = answer(key);
        } catch (const std::exception& error) {
            Print("{\"error\":" + JsonUtf8String(error.what()) + "}\n");
            return kBad;
        }
        Print("{\"key\":" + JsonByteString(key) + ",\"value\":" + value + "}\n");
    }
    return kDone;
}

// The fallback dictionary of the process, while this lives.
class Fallback {
public:
    explicit Fallback(const std::string& file)
    {
        LoadInto(dictionary_, file);
        morvish::Dictionary::SetFallback(&dictionary_);
    }
    Fallback(const Fallback&) = delete;
    Fallback& operator=(const Fallback&) = delete;

private:
    morvish::Dictionary dictionary_;  // unsets itself
};

}  // namespace

int RunLookup(const Arguments& arguments)
{
    const std::string keys = arguments.Required("--keys");
    morvish::Dictionary dictionary;
    LoadInto(dictionary, arguments.Files().front());
    std::optional<Fallback> fallback;
    if (const auto file = arguments.Value("--fallback"))
        fallback.emplace(*file);

    if (arguments.Has("--raw")) {
        return AnswerKeys(keys, [&](const std::string& key) {
            const char16_t* units = nullptr;
            std::size_t length = 0;
            return dictionary.RawLookup(key.c_str(), units, length) ? JsonString({units, length})
                                                                    : "null";
        });
    }
    const morvish::ConversionContext context{morvish::kSelectorUtf8};
    const bool isUtf8 = arguments.Has("--utf8");
    return AnswerKeys(keys, [&](const std::string& key) {
        return JsonString(dictionary.Lookup(key.c_str(), isUtf8 ? &context : nullptr).View());
    });
}

int RunLocalize(const Arguments& arguments)
{
    const std::string keys = arguments.Required("--keys");
    kivmetadataapi::DefaultLocalizer localizer;
    if (!arguments.Files().empty()) {
        // The localizer loads files by their names, and passes over what cannot be opened.
        const std::string& file = arguments.Files().front();
        const std::string content = ReadInput(file);
        if (file == "-") {
            const TemporaryFile copy(content);
            localizer.LoadDictionary(copy.Path());
        } else {
            localizer.LoadDictionary(kivcore::string::UTF8to16(file));
        }
    }
    return AnswerKeys(keys, [&](const std::string& key) {
        const kivcore::UString text = localizer.Localize(key);
        return JsonString({text.data(), text.size()});
    });
}

int RunValue(const Arguments& arguments)
{
    const bool markersOnly = arguments.Has("--markers-only");
    for (const JsonLine& line : ReadJsonLines("-")) {
        const std::u16string& text = line.text;
        Print(JsonString(markersOnly ? morvish_private::SubstituteMarkers(text.data(), text.size())
                                     : morvish_private::EscapeValue(text.data(), text.size())) +
              "\n");
    }
    return kDone;
}

}  // namespace pemtext
