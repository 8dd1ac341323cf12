// The one exception type of the dictionary engine: a four-character code and a readable text.

#pragma once

#include <cstdint>
#include <stdexcept>

namespace morvish {

/// "huh?": a conversion failed for another reason than lack of space.
inline constexpr std::uint32_t kCodeHuh = 0x6875683F;

/// "BUFF": the output buffer is too small.
inline constexpr std::uint32_t kCodeBuff = 0x42554646;

class DictionaryException : public std::runtime_error {
public:
    /// `code` is kCodeHuh, kCodeBuff, or whatever a replaced converter hook returned.
    explicit DictionaryException(std::uint32_t code)
        : std::runtime_error(code == kCodeBuff ? "dictionary: buffer too small (BUFF)"
                                               : "dictionary: text conversion failed (huh?)"),
          code_(code)
    {
    }

    std::uint32_t Code() const { return code_; }

private:
    std::uint32_t code_;
};

}  // namespace morvish
