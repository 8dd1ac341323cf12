#include "dictionary/DictionaryRegistry.h"

#include <cstddef>

namespace morvish {

DictionaryRegistry::~DictionaryRegistry()
{
    for (const Dictionary* dictionary : dictionaries_)
        delete dictionary;
}

DictionaryRegistry& DictionaryRegistry::OfProcess()
{
    static DictionaryRegistry& registry = *new DictionaryRegistry;
    return registry;
}

Dictionary* DictionaryRegistry::GetOrCreate(std::int32_t languageId)
{
    const std::lock_guard lock(mutex_);
    Dictionary* found = nullptr;
    for (std::size_t i = 0; i < identifiers_.size(); ++i) {
        if (identifiers_[i] == languageId)
            found = dictionaries_[i];
    }
    if (found != nullptr)
        return found;
    // Room first, so that the two lists cannot get out of step.
    identifiers_.reserve(identifiers_.size() + 1);
    dictionaries_.reserve(dictionaries_.size() + 1);
    Dictionary* const created = factory_ != nullptr ? factory_() : new Dictionary;
    identifiers_.push_back(languageId);
    dictionaries_.push_back(created);
    return created;
}

void DictionaryRegistry::LoadFromStream(std::int32_t languageId, std::istream* stream)
{
    if (Dictionary* const dictionary = GetOrCreate(languageId))
        dictionary->LoadFromStream(stream);
}

DictionaryString DictionaryRegistry::Lookup(std::int32_t languageId, const char* key,
                                            const ConversionContext* context)
{
    const Dictionary* const dictionary = GetOrCreate(languageId);
    return dictionary != nullptr ? dictionary->Lookup(key, context) : DictionaryString();
}

void DictionaryRegistry::SetFallback(std::int32_t languageId)
{
    Dictionary::SetFallback(GetOrCreate(languageId));
}

}  // namespace morvish
