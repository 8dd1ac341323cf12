#include "framework/kivxmp/src/FlatTable.h"

#include <atomic>
#include <chrono>
#include <cstring>

namespace kivxmp {
namespace {

__extension__ using Product = unsigned __int128;

/// Both halves of a product, so that every bit of the input reaches every bit of the result.
std::uint64_t Mix(std::uint64_t left, std::uint64_t right) noexcept
{
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::uint64_t kOdd1 = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kOdd2 = 0xD1B54A32D192ED03;

}  // namespace

std::uint64_t NewHashSeed() noexcept
{
    static std::atomic<std::uint64_t> calls{0};
    const auto time =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const auto address = reinterpret_cast<std::uintptr_t>(&calls);
    return Mix(time ^ kOdd1, (address + calls.fetch_add(1)) ^ kOdd2);
}

std::uint64_t HashOf(std::string_view text, std::uint64_t seed) noexcept
{
    std::uint64_t hash = seed ^ (text.size() * kOdd1);
    const char* current = text.data();
    std::size_t left = text.size();
    std::uint64_t word = 0;
    for (; left > sizeof(word); left -= sizeof(word), current += sizeof(word)) {
        std::memcpy(&word, current, sizeof(word));
        hash = Mix(hash ^ word, seed ^ kOdd2);
    }
    word = 0;
    if (left != 0) {
        std::memcpy(&word, current, left);
    }
    return Mix(hash ^ word ^ kOdd1, seed ^ kOdd2);
}

}  // namespace kivxmp
