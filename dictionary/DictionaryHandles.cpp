#include "dictionary/DictionaryHandles.h"

#include "dictionary/DictionaryException.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>

namespace morvish {

namespace {

// Most handles live for a moment only: a text is asked for, copied out and released. The few that
// live at a time stand here, the others on the heap. The heap's way would be longer than the
// look-up itself, and in its shadow the processor could not fetch the memory of the next look-up
// yet.
constexpr std::size_t kHandlePlaces = 32;

struct alignas(DictionaryString) HandlePlace {
    std::byte bytes[sizeof(DictionaryString)];
};

constinit HandlePlace handlePlaces[kHandlePlaces] = {};
constinit std::atomic<std::uint32_t> freePlaces = 0xFFFFFFFF;  // a bit for each

static_assert(sizeof(freePlaces) * 8 == kHandlePlaces);

void* TakePlace()
{
    std::uint32_t free = freePlaces.load(std::memory_order_relaxed);
    while (free != 0) {
        const auto place = static_cast<std::size_t>(std::countr_zero(free));
        if (freePlaces.compare_exchange_weak(free, free & (free - 1), std::memory_order_acquire))
            return &handlePlaces[place];
    }
    return ::operator new(sizeof(DictionaryString));
}

void GiveBack(void* place) noexcept
{
    const std::size_t offset =
        reinterpret_cast<std::uintptr_t>(place) - reinterpret_cast<std::uintptr_t>(handlePlaces);
    if (offset < sizeof handlePlaces)
        freePlaces.fetch_or(std::uint32_t{1} << (offset / sizeof(HandlePlace)),
                            std::memory_order_release);
    else
        ::operator delete(place);
}

// A handle for the text that `lookup` gives.
template <typename Lookup>
DictionaryString* NewHandle(Lookup lookup)
{
    void* const place = TakePlace();
    try {
        return new (place) DictionaryString(lookup());
    } catch (...) {
        GiveBack(place);
        throw;
    }
}

}  // namespace

Dictionary* CreateDictionary(Dictionary::Format format)
{
    return new Dictionary(format);
}

Dictionary* CopyDictionary(const Dictionary& other)
{
    return new Dictionary(other);
}

void DestroyDictionary(Dictionary* dictionary)
{
    delete dictionary;
}

void AssignDictionary(Dictionary& target, const Dictionary& source)
{
    target = source;
}

void LoadDictionaryFromStream(Dictionary& dictionary, std::istream* stream)
{
    dictionary.LoadFromStream(stream);
}

bool DictionaryIsValid(const Dictionary& dictionary)
{
    return dictionary.Valid();
}

DictionaryString* LookupString(const Dictionary& dictionary, const char* key,
                               const ConversionContext* context)
{
    return NewHandle([&] { return dictionary.Lookup(key, context); });
}

DictionaryString* LookupString(std::int32_t languageId, const char* key,
                               const ConversionContext* context)
{
    return NewHandle(
        [&] { return DictionaryRegistry::OfProcess().Lookup(languageId, key, context); });
}

DictionaryString* LookupStringByIndex(const Dictionary& dictionary, std::uint32_t index)
{
    return NewHandle([&] { return dictionary.LookupIndex(index); });
}

void ReleaseString(DictionaryString* string)
{
    if (string == nullptr)
        return;
    string->~DictionaryString();
    GiveBack(string);
}

std::size_t StringSizeUnits(const DictionaryString& string)
{
    return string.LengthUnits() + 1;
}

void CopyString(const DictionaryString& string, char16_t* buffer, std::size_t capacityUnits,
                OnTruncation onTruncation)
{
    const std::size_t wanted = StringSizeUnits(string);
    if (capacityUnits > 0) {
        const std::size_t count = std::min(wanted, capacityUnits) - 1;
        *std::copy_n(string.Units(), count, buffer) = 0;
    }
    if (wanted > capacityUnits && onTruncation == OnTruncation::kThrow)
        throw DictionaryException(kCodeBuff);
}

void CopyStringUnits(const DictionaryString& string, char16_t* buffer, std::size_t capacityUnits,
                     OnTruncation onTruncation)
{
    std::copy_n(string.Units(), std::min(string.LengthUnits(), capacityUnits), buffer);
    if (string.LengthUnits() > capacityUnits && onTruncation == OnTruncation::kThrow)
        throw DictionaryException(kCodeBuff);
}

}  // namespace morvish
