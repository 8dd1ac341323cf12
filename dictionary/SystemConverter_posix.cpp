// There is no ANSI code page here; Windows-1252 stands in for it, so that a dictionary key reads as
// it does on a western Windows.

#include "dictionary/SystemConverter.h"

#include "dictionary/DictionaryException.h"
#include "dictionary/Utf8.h"

#include <algorithm>
#include <iterator>

namespace morvish_private {

namespace {

using morvish::ConversionContext;

// The bytes 0x80 to 0x9F. The five that the code page leaves open are the C1 controls of the same
// number, as the Windows converter has them; all other bytes are Latin-1.
constexpr char16_t kWindows1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t FromWindows1252(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 && value <= 0x9F ? kWindows1252[value - 0x80] : value;
}

// @return false if the code page lacks the unit
bool ToWindows1252(char16_t unit, char& byte)
{
    const bool isLatin1 = unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF);
    if (isLatin1) {
        byte = static_cast<char>(unit);
        return true;
    }
    const auto* const found = std::find(std::begin(kWindows1252), std::end(kWindows1252), unit);
    if (found == std::end(kWindows1252))
        return false;
    byte = static_cast<char>(0x80 + (found - std::begin(kWindows1252)));
    return true;
}

bool IsUtf8(const ConversionContext& context)
{
    return context.selector == morvish::kSelectorUtf8;
}

// @return false if `text` cannot be converted
bool Widen(const ConversionContext& context, std::string_view text, std::u16string& wide)
{
    if (IsUtf8(context))
        return ConvertUtf8(text, wide);
    wide.resize(text.size());
    std::transform(text.begin(), text.end(), wide.begin(), FromWindows1252);
    return true;
}

bool Narrow(const ConversionContext& context, std::u16string_view text, std::string& bytes)
{
    if (IsUtf8(context))
        return ConvertUtf16(text, bytes);
    bytes.clear();
    for (const char16_t unit : text) {
        char byte = 0;
        if (!ToWindows1252(unit, byte))
            return false;
        bytes += byte;
    }
    return true;
}

template <typename Text, typename Unit>
std::uint32_t Deliver(const Text& text, Unit* buffer, std::size_t capacity, std::size_t* written)
{
    if (text.size() > capacity)
        return morvish::kCodeBuff;
    std::copy(text.begin(), text.end(), buffer);
    *written = text.size();
    return 0;
}

std::uint32_t WideToMultibyte(const ConversionContext& context, const char16_t* text,
                              std::size_t lengthUnits, char* buffer, std::size_t capacityBytes,
                              std::size_t* writtenBytes)
{
    std::string bytes;
    if (!Narrow(context, {text, lengthUnits}, bytes))
        return morvish::kCodeHuh;
    return Deliver(bytes, buffer, capacityBytes, writtenBytes);
}

std::uint32_t MultibyteToWide(const ConversionContext& context, const char* text,
                              std::size_t lengthBytes, char16_t* buffer, std::size_t capacityUnits,
                              std::size_t* writtenUnits)
{
    std::u16string wide;
    if (!Widen(context, {text, lengthBytes}, wide))
        return morvish::kCodeHuh;
    return Deliver(wide, buffer, capacityUnits, writtenUnits);
}

std::uint32_t WideToMultibyteSize(const ConversionContext& context, const char16_t* text,
                                  std::size_t lengthUnits, std::size_t* neededBytes)
{
    std::string bytes;
    if (!Narrow(context, {text, lengthUnits}, bytes))
        return morvish::kCodeHuh;
    *neededBytes = bytes.size();
    return 0;
}

std::uint32_t MultibyteToWideSize(const ConversionContext& context, const char* text,
                                  std::size_t lengthBytes, std::size_t* neededUnits)
{
    std::u16string wide;
    if (!Widen(context, {text, lengthBytes}, wide))
        return morvish::kCodeHuh;
    *neededUnits = wide.size();
    return 0;
}

}  // namespace

morvish::ConverterHooks SystemConverterHooks()
{
    return {WideToMultibyte, MultibyteToWide, WideToMultibyteSize, MultibyteToWideSize};
}

}  // namespace morvish_private
