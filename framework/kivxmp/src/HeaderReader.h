// Reads the headers of a file's parts through one small window, so that a step from header to
// header costs no call of the system each.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "framework/kivxmp/src/ByteSource.h"

namespace kivxmp::photo {

class HeaderReader {
public:
    explicit HeaderReader(ByteSource& source) : source_(source), size_(source.SizeBytes()) {}

    std::uint64_t SizeBytes() const { return size_; }

    /// The byte at `position`, or nothing behind the end.
    std::optional<unsigned char> Byte(std::uint64_t position)
    {
        if (position < windowBegin_ || position - windowBegin_ >= windowBytes_) {
            if (position >= size_) {
                return std::nullopt;
            }
            windowBegin_ = position;
            windowBytes_ = source_.ReadAt(position, window_.data(), window_.size());
            if (windowBytes_ == 0) {
                return std::nullopt;
            }
        }
        return static_cast<unsigned char>(
            window_[static_cast<std::size_t>(position - windowBegin_)]);
    }

    /// Up to `bytes` bytes at `position`; fewer at the end.
    std::string Bytes(std::uint64_t position, std::uint64_t bytes)
    {
        std::string result;
        for (std::uint64_t i = 0; i < bytes; ++i) {
            const std::optional<unsigned char> byte = Byte(position + i);
            if (!byte) {
                break;
            }
            result.push_back(static_cast<char>(*byte));
        }
        return result;
    }

private:
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
