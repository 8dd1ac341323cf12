#include "framework/kivxmp/src/PngText.h"

#include <zlib.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kKeywords[] = {"Raw profile type exif\0"sv, "Raw profile type APP1\0"sv,
                                          "Raw profile type iptc\0"sv};

/// -1 for what is none.
int HexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    if (lower >= 'a' && lower <= 'f') {
        return lower - 'a' + 10;
    }
    return -1;
}

}  // namespace

std::optional<std::string> UnpackText(std::string_view packed, std::size_t limitBytes)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        throw std::bad_alloc();
    }
    std::string text;
    int status = Z_OK;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    try {
        while (status == Z_OK && text.size() <= limitBytes) {
            constexpr std::size_t kStep = 64 * 1024;
            const std::size_t filled = text.size();
            text.resize(filled + kStep);
            stream.next_out = reinterpret_cast<Bytef*>(text.data() + filled);
            stream.avail_out = kStep;
            status = inflate(&stream, Z_NO_FLUSH);
            text.resize(text.size() - stream.avail_out);
        }
    } catch (...) {
        inflateEnd(&stream);
        throw;
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END || text.size() > limitBytes) {
        return std::nullopt;
    }
    return text;
}

bool IsProfileKeyword(std::string_view head)
{
    return std::any_of(std::begin(kKeywords), std::end(kKeywords),
                       [&](std::string_view keyword) { return head.starts_with(keyword); });
}

std::string ReadProfile(std::string_view content, bool isPacked, std::size_t limitBytes)
{
    content.remove_prefix(std::min(kProfileKeywordBytes, content.size()));
    std::optional<std::string> unpacked;
    if (isPacked) {
        constexpr std::size_t kMethodBytes = 1;
        content.remove_prefix(std::min(kMethodBytes, content.size()));
        // Two digits and some ends of lines for each byte.
        unpacked = UnpackText(content, 3 * limitBytes);
        content = unpacked ? *unpacked : std::string_view();
    }
    // An empty line, the profile's name, its length, the digits in lines.
    for (int lines = 0; lines < 3; ++lines) {
        const std::size_t end = content.find('\n');
        if (end == std::string_view::npos) {
            return {};
        }
        content.remove_prefix(end + 1);
    }
    std::string bytes;
    int high = -1;
    for (const char c : content) {
        const int digit = HexDigit(c);
        if (digit < 0) {
            continue;
        }
        if (high >= 0) {
            bytes += static_cast<char>(high * 16 + digit);
        }
        high = high >= 0 ? -1 : digit;
    }
    return bytes.size() <= limitBytes ? bytes : std::string();
}

}  // namespace kivxmp::photo
