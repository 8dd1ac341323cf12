#include "dictionary/StringConverters.h"

#include "dictionary/DictionaryException.h"
#include "dictionary/GrownCapacity.h"
#include "dictionary/SystemConverter.h"
#include "dictionary/Utf8.h"

namespace morvish {

namespace {

constexpr std::size_t kFirstCapacity = 64;

ConverterHooks& HooksOfProcess()
{
    static ConverterHooks hooks = morvish_private::SystemConverterHooks();
    return hooks;
}

void Require(std::uint32_t code)
{
    if (code != 0)
        throw DictionaryException(code);
}

// Asks for the size, makes room, converts.
template <typename Out, typename In, typename SizeHook, typename ConvertHook>
Out Convert(const ConversionContext& context, In text, SizeHook sizeHook, ConvertHook convertHook)
{
    Out result;
    if (text.empty())
        return result;
    std::size_t needed = 0;
    Require(sizeHook(context, text.data(), text.size(), &needed));
    result.resize(morvish_private::GrownCapacity(kFirstCapacity, needed));
    std::size_t written = 0;
    Require(convertHook(context, text.data(), text.size(), result.data(), result.size(), &written));
    if (written > result.size())  // a hook that claims more than it was given room for
        throw DictionaryException(kCodeHuh);
    result.resize(written);
    return result;
}

}  // namespace

const ConverterHooks& CurrentConverterHooks()
{
    return HooksOfProcess();
}

void SetConverterHooks(const ConverterHooks& hooks)
{
    const ConverterHooks system = morvish_private::SystemConverterHooks();
    const auto choose = [](auto given, auto fallback) { return given ? given : fallback; };
    HooksOfProcess() = {
        choose(hooks.wideToMultibyte, system.wideToMultibyte),
        choose(hooks.multibyteToWide, system.multibyteToWide),
        choose(hooks.wideToMultibyteSize, system.wideToMultibyteSize),
        choose(hooks.multibyteToWideSize, system.multibyteToWideSize),
    };
}

std::u16string ConvertToWide(const ConversionContext& context, std::string_view bytes)
{
    std::string repaired;
    if (context.selector == kSelectorUtf8 && morvish_private::RepairUtf8(bytes, repaired))
        bytes = repaired;
    const ConverterHooks& hooks = CurrentConverterHooks();
    return Convert<std::u16string>(context, bytes, hooks.multibyteToWideSize,
                                   hooks.multibyteToWide);
}

std::string ConvertToMultibyte(const ConversionContext& context, std::u16string_view text)
{
    const ConverterHooks& hooks = CurrentConverterHooks();
    return Convert<std::string>(context, text, hooks.wideToMultibyteSize, hooks.wideToMultibyte);
}

}  // namespace morvish
