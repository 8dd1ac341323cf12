// The system's code pages: its ANSI code page, whichever the user's Windows has, and UTF-8.

#include "dictionary/SystemConverter_win.h"

#include "dictionary/DictionaryException.h"
#include "dictionary/SystemConverter.h"

#include <windows.h>

#include <limits>

namespace morvish_private {

namespace {

using morvish::ConversionContext;

static_assert(sizeof(wchar_t) == sizeof(char16_t));

constexpr std::size_t kLongestText = std::numeric_limits<int>::max();

// The number of the ANSI code page itself, not CP_ACP: a Windows may be set to UTF-8, which takes
// other flags.
UINT CodePageOf(const ConversionContext& context)
{
    return context.selector == morvish::kSelectorUtf8 ? CP_UTF8 : GetACP();
}

int LengthFor(std::size_t length)
{
    return static_cast<int>(length < kLongestText ? length : kLongestText);
}

std::uint32_t CodeOfLastError()
{
    return GetLastError() == ERROR_INSUFFICIENT_BUFFER ? morvish::kCodeBuff : morvish::kCodeHuh;
}

// Without a buffer the system is asked for the size. Its count of 0 is a failure, so empty texts
// and buffers without room never reach it.
std::uint32_t Narrow(const ConversionContext& context, const char16_t* text,
                     std::size_t lengthUnits, char* buffer, std::size_t capacityBytes,
                     std::size_t* writtenBytes)
{
    if (lengthUnits > kLongestText)
        return morvish::kCodeHuh;
    if (lengthUnits == 0) {
        *writtenBytes = 0;
        return 0;
    }
    const UINT codePage = CodePageOf(context);
    const bool isUtf8 = codePage == CP_UTF8;
    BOOL lacksCharacter = FALSE;  // UTF-8 has all of them, and does not take the question
    const int count = WideCharToMultiByte(
        codePage, isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS,
        reinterpret_cast<const wchar_t*>(text), static_cast<int>(lengthUnits), buffer,
        LengthFor(capacityBytes), nullptr, isUtf8 ? nullptr : &lacksCharacter);
    if (count <= 0)
        return CodeOfLastError();
    if (lacksCharacter != FALSE)
        return morvish::kCodeHuh;
    *writtenBytes = static_cast<std::size_t>(count);
    return 0;
}

std::uint32_t Widen(const ConversionContext& context, const char* text, std::size_t lengthBytes,
                    char16_t* buffer, std::size_t capacityUnits, std::size_t* writtenUnits)
{
    if (lengthBytes > kLongestText)
        return morvish::kCodeHuh;
    if (lengthBytes == 0) {
        *writtenUnits = 0;
        return 0;
    }
    const UINT codePage = CodePageOf(context);
    if (IsCutInCharacter(codePage, {text, lengthBytes}))
        return morvish::kCodeHuh;
    const int count =
        MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text, static_cast<int>(lengthBytes),
                            reinterpret_cast<wchar_t*>(buffer), LengthFor(capacityUnits));
    if (count <= 0)
        return CodeOfLastError();
    *writtenUnits = static_cast<std::size_t>(count);
    return 0;
}

std::uint32_t WideToMultibyteSize(const ConversionContext& context, const char16_t* text,
                                  std::size_t lengthUnits, std::size_t* neededBytes)
{
    return Narrow(context, text, lengthUnits, nullptr, 0, neededBytes);
}

std::uint32_t MultibyteToWideSize(const ConversionContext& context, const char* text,
                                  std::size_t lengthBytes, std::size_t* neededUnits)
{
    return Widen(context, text, lengthBytes, nullptr, 0, neededUnits);
}

std::uint32_t WideToMultibyte(const ConversionContext& context, const char16_t* text,
                              std::size_t lengthUnits, char* buffer, std::size_t capacityBytes,
                              std::size_t* writtenBytes)
{
    if (capacityBytes > 0)
        return Narrow(context, text, lengthUnits, buffer, capacityBytes, writtenBytes);
    std::size_t needed = 0;
    const std::uint32_t code = WideToMultibyteSize(context, text, lengthUnits, &needed);
    if (code != 0 || needed > 0)
        return code != 0 ? code : morvish::kCodeBuff;
    *writtenBytes = 0;
    return 0;
}

std::uint32_t MultibyteToWide(const ConversionContext& context, const char* text,
                              std::size_t lengthBytes, char16_t* buffer, std::size_t capacityUnits,
                              std::size_t* writtenUnits)
{
    if (capacityUnits > 0)
        return Widen(context, text, lengthBytes, buffer, capacityUnits, writtenUnits);
    std::size_t needed = 0;
    const std::uint32_t code = MultibyteToWideSize(context, text, lengthBytes, &needed);
    if (code != 0 || needed > 0)
        return code != 0 ? code : morvish::kCodeBuff;
    *writtenUnits = 0;
    return 0;
}

}  // namespace

bool IsCutInCharacter(unsigned codePage, std::string_view text)
{
    std::size_t position = 0;
    while (position < text.size()) {
        const auto byte = static_cast<BYTE>(text[position]);
        position += IsDBCSLeadByteEx(codePage, byte) != 0 ? 2U : 1U;
    }
    return position > text.size();
}

morvish::ConverterHooks SystemConverterHooks()
{
    return {WideToMultibyte, MultibyteToWide, WideToMultibyteSize, MultibyteToWideSize};
}

}  // namespace morvish_private
