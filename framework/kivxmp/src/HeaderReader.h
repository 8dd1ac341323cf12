// Reads the headers of a file's parts through one small window, so that a step from header to
// header costs no call of the system each.

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/ByteSource.h"

namespace kivxmp::photo {

class HeaderReader {
public:
    explicit HeaderReader(ByteSource& source) : source_(source), size_(source.SizeBytes()) {}

    std::uint64_t SizeBytes() const { return size_; }

    /// The byte at `position`, or nothing behind the end.
    std::optional<unsigned char> Byte(std::uint64_t position)
    {
        const std::string_view rest = From(position);
        return rest.empty() ? std::nullopt
                            : std::optional(static_cast<unsigned char>(rest.front()));
    }

    /// Up to `bytes` bytes at `position`; fewer at the end.
    std::string Bytes(std::uint64_t position, std::uint64_t bytes)
    {
        std::string result;
        while (result.size() < bytes) {
            const std::string_view rest = From(position + result.size());
            if (rest.empty()) {
                break;
            }
            result += rest.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(
                                         rest.size(), bytes - result.size())));
        }
        return result;
    }

private:
    /// What the window holds from `position` on: nothing behind the end only.
    std::string_view From(std::uint64_t position)
    {
        if (position < windowBegin_ || position - windowBegin_ >= windowBytes_) {
            if (position >= size_) {
                return {};
            }
            windowBegin_ = position;
            windowBytes_ = source_.ReadAt(position, window_.data(), window_.size());
        }
        return std::string_view(window_.data(), windowBytes_)
            .substr(static_cast<std::size_t>(position - windowBegin_));
    }

    ByteSource& source_;
    std::uint64_t size_;
    std::array<char, 2048> window_{};
    std::uint64_t windowBegin_ = 0;
    std::size_t windowBytes_ = 0;
};

/// " at byte N", for what is wrong there.
inline std::string AtByte(std::uint64_t position)
{
    return " at byte " + std::to_string(position);
}

}  // namespace kivxmp::photo
