// Conversion between bytes in some encoding and UTF-16, through four functions that a program may
// replace.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace morvish {

/// What a lookup is told about the encoding of its key's default text.
struct ConversionContext {
    std::uint32_t selector = 0;
};

inline constexpr std::uint32_t kSelectorNone = 0;  // a lookup widens byte by byte
inline constexpr std::uint32_t kSelectorUtf8 = 1;  // every other one: the system's ANSI code page

/// The converter hooks. Each returns 0, kCodeHuh or kCodeBuff (DictionaryException.h); what it
/// stores is looked at only after a 0. Texts do not end in NUL; lengths of wide text are in UTF-16
/// units. Hooks may throw what their caller can bear.
struct ConverterHooks {
    using WideToMultibyte = std::uint32_t (*)(const ConversionContext& context,
                                              const char16_t* text, std::size_t lengthUnits,
                                              char* buffer, std::size_t capacityBytes,
                                              std::size_t* writtenBytes);
    using MultibyteToWide = std::uint32_t (*)(const ConversionContext& context, const char* text,
                                              std::size_t lengthBytes, char16_t* buffer,
                                              std::size_t capacityUnits, std::size_t* writtenUnits);
    using WideToMultibyteSize = std::uint32_t (*)(const ConversionContext& context,
                                                  const char16_t* text, std::size_t lengthUnits,
                                                  std::size_t* neededBytes);
    using MultibyteToWideSize = std::uint32_t (*)(const ConversionContext& context,
                                                  const char* text, std::size_t lengthBytes,
                                                  std::size_t* neededUnits);

    WideToMultibyte wideToMultibyte = nullptr;
    MultibyteToWide multibyteToWide = nullptr;
    WideToMultibyteSize wideToMultibyteSize = nullptr;
    MultibyteToWideSize multibyteToWideSize = nullptr;
};

/// The hooks in force; none is null. Process-wide, not synchronised.
const ConverterHooks& CurrentConverterHooks();

/// Replaces the hooks of the process. A null member stands for the system's converter, so
/// `SetConverterHooks({})` undoes every replacement.
void SetConverterHooks(const ConverterHooks& hooks);

/// Converts through the hooks. Broken UTF-8 (selector 1) is repaired before a hook sees it: each
/// maximal ill-formed part becomes U+FFFD. Throws DictionaryException with a hook's code.
std::u16string ConvertToWide(const ConversionContext& context, std::string_view bytes);

/// Converts through the hooks. Throws DictionaryException with a hook's code.
std::string ConvertToMultibyte(const ConversionContext& context, std::u16string_view text);

}  // namespace morvish
