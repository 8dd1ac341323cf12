#include "dictionary/DictionaryHandles.h"

#include "dictionary/DictionaryException.h"

#include <algorithm>

namespace morvish {

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
    return new DictionaryString(dictionary.Lookup(key, context));
}

DictionaryString* LookupString(std::int32_t languageId, const char* key,
                               const ConversionContext* context)
{
    return new DictionaryString(DictionaryRegistry::OfProcess().Lookup(languageId, key, context));
}

DictionaryString* LookupStringByIndex(const Dictionary& dictionary, std::uint32_t index)
{
    return new DictionaryString(dictionary.LookupIndex(index));
}

void ReleaseString(DictionaryString* string)
{
    delete string;
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
