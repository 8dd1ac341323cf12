#include <kivcore/LastFailure.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <string>

namespace kivcore {

namespace {

constexpr std::size_t kMaxBytes = 1023;
constexpr std::string_view kUnknown = "unknown exception";

// Plain bytes on purpose: a thread_local with a destructor would keep this library from being
// unloaded while any thread that used it lives.
thread_local char lastText[kMaxBytes + 1];

/// The length to which `text` is cut: at most kMaxBytes, and no character is split.
std::size_t CutLength(std::string_view text)
{
    if (text.size() <= kMaxBytes) {
        return text.size();
    }
    const auto continues = [text](std::size_t index) {
        return (static_cast<unsigned char>(text[index]) & 0xC0U) == 0x80U;
    };
    // A character has at most three bytes behind its first; more of them are broken text, which may
    // be cut anywhere.
    std::size_t length = kMaxBytes;
    for (int step = 0; step < 3 && continues(length); ++step) {
        --length;
    }
    return continues(length) ? kMaxBytes : length;
}

}  // namespace

void SetLastFailureText(std::string_view text) noexcept
{
    const std::size_t length = CutLength(text);
    if (length != 0) {
        std::memmove(lastText, text.data(), length);  // `text` may be the last text itself
    }
    lastText[length] = '\0';
}

void SetLastFailureFromCurrentException() noexcept
{
    const auto set = [](std::string_view text) {
        SetLastFailureText(text.empty() ? kUnknown : text);
    };
    if (std::current_exception() == nullptr) {
        set(kUnknown);
        return;
    }
    try {
        throw;
    } catch (const std::exception& error) {
        set(error.what() != nullptr ? error.what() : "");
    } catch (const std::string& text) {
        set(text);
    } catch (const char* text) {
        set(text != nullptr ? text : "");
    } catch (...) {
        set(kUnknown);
    }
}

}  // namespace kivcore

const char* KivLastFailureText(void)
{
    return kivcore::lastText;
}
