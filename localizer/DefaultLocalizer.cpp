#include "localizer/DefaultLocalizer.h"

#include "dictionary/Dictionary.h"
#include "dictionary/InputStreams.h"
#include "dictionary/Utf8.h"

#include <cstddef>
#include <string_view>

namespace kivmetadataapi {

namespace {

using kivcore::UString;

constexpr std::string_view kPlainStart = "$$$/";
constexpr std::string_view kWrappedStart = "($$$/";

UString FromUtf8(std::string_view bytes)
{
    const std::u16string text = morvish_private::ConvertUtf8Lossy(bytes);
    return UString(text.data(), text.size());
}

bool IsWrapped(std::string_view key)
{
    return key.starts_with(kWrappedStart) && key.back() == ')';
}

// What is left of a key when nothing is loaded: its default as it stands, escapes and markers
// included.
std::string_view DefaultOf(std::string_view key)
{
    const bool wrapped = IsWrapped(key);
    if (!wrapped && !key.starts_with(kPlainStart))
        return key;
    const std::size_t equals = key.find('=');
    if (equals == std::string_view::npos)
        return key;
    std::string_view text = key.substr(equals + 1);
    if (wrapped)
        text.remove_suffix(1);
    return text;
}

}  // namespace

DefaultLocalizer::DefaultLocalizer() : dictionary_(std::make_unique<morvish::Dictionary>()) {}

DefaultLocalizer::~DefaultLocalizer()
{
    if (Initialized() && Get() == this)
        Set(nullptr, nullptr);
}

void DefaultLocalizer::LoadDictionary(const UString& path)
{
    try {
        morvish::basic_ifstream<char> file(std::u16string_view(path.data(), path.size()));
        if (!file.is_open())
            return;
        dictionary_->LoadFromStream(&file);
        file.close();
    } catch (...) {
        // Out of memory in the middle of a file. What was read before it answers.
    }
}

UString DefaultLocalizer::Localize(const std::string& key)
{
    // The framework asks from everywhere, also while it shows an error, so nothing may leave: not
    // the exception of a replaced converter hook, and not that of an exhausted memory.
    try {
        return Translate(key);
    } catch (...) {
    }
    try {
        return FromUtf8(key);
    } catch (...) {
        return {};
    }
}

UString DefaultLocalizer::Translate(const std::string& key) const
{
    if (dictionary_->EntryCount() == 0)
        return FromUtf8(DefaultOf(key));

    const char16_t* units = nullptr;
    std::size_t lengthUnits = 0;
    if (dictionary_->RawLookup(key.c_str(), units, lengthUnits))
        return UString(units, lengthUnits);

    const bool wrapped = IsWrapped(key);
    if (!wrapped && !key.starts_with(kPlainStart))
        return FromUtf8(key);
    const std::string unwrapped = wrapped ? key.substr(1, key.size() - 2) : key;
    const morvish::ConversionContext context{morvish::kSelectorUtf8};
    const morvish::DictionaryString text = dictionary_->Lookup(unwrapped.c_str(), &context);
    // Without a text even the default does not count: the whole key shows that something is
    // missing.
    if (text.LengthUnits() == 0)
        return FromUtf8(key);
    return UString(text.Units(), text.LengthUnits());
}

}  // namespace kivmetadataapi
