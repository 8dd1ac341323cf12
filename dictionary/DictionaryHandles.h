// Dictionaries and texts as plain pointers, for callers that hold them across an interface: what is
// made here is released here.

#pragma once

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryRegistry.h"

#include <cstddef>
#include <cstdint>
#include <istream>

namespace morvish {

/// A new empty dictionary; release it with DestroyDictionary().
Dictionary* CreateDictionary(Dictionary::Format format = Dictionary::Format::kText);

/// A new dictionary as a copy of `other` (which copies the binary part only).
Dictionary* CopyDictionary(const Dictionary& other);

/// Null is allowed.
void DestroyDictionary(Dictionary* dictionary);

void AssignDictionary(Dictionary& target, const Dictionary& source);

void LoadDictionaryFromStream(Dictionary& dictionary, std::istream* stream);

bool DictionaryIsValid(const Dictionary& dictionary);

/// Dictionary::Lookup() with a result that lives until ReleaseString().
DictionaryString* LookupString(const Dictionary& dictionary, const char* key,
                               const ConversionContext* context = nullptr);

/// The same in the registry's dictionary for a language.
DictionaryString* LookupString(std::int32_t languageId, const char* key,
                               const ConversionContext* context = nullptr);

/// Dictionary::LookupIndex() with such a result.
DictionaryString* LookupStringByIndex(const Dictionary& dictionary, std::uint32_t index);

/// Null is allowed.
void ReleaseString(DictionaryString* string);

/// The text's length in units plus one, for the terminator.
std::size_t StringSizeUnits(const DictionaryString& string);

enum class OnTruncation { kIgnore, kThrow };

/// Copies as much of the text as fits, and a terminating NUL.
/// @param capacityUnits  with 0 nothing is written
/// kThrow throws DictionaryException "BUFF" if the text and its NUL do not fit; the cut copy stays.
void CopyString(const DictionaryString& string, char16_t* buffer, std::size_t capacityUnits,
                OnTruncation onTruncation);

/// The same without the NUL.
void CopyStringUnits(const DictionaryString& string, char16_t* buffer, std::size_t capacityUnits,
                     OnTruncation onTruncation);

}  // namespace morvish
