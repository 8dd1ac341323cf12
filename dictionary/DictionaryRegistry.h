// One dictionary per numeric language identifier.

#pragma once

#include "dictionary/Dictionary.h"

#include <cstdint>
#include <istream>
#include <mutex>
#include <vector>

namespace morvish {

class DictionaryRegistry {
public:
    /// Makes the dictionary for a new identifier, on the heap; may return null.
    using Factory = Dictionary* (*)();

    explicit DictionaryRegistry(Factory factory = nullptr) : factory_(factory) {}
    DictionaryRegistry(const DictionaryRegistry&) = delete;
    DictionaryRegistry& operator=(const DictionaryRegistry&) = delete;

    /// Destroys every dictionary that it handed out.
    ~DictionaryRegistry();

    /// The registry of the process, which is never destroyed.
    static DictionaryRegistry& OfProcess();

    /// The dictionary of a language, made empty at the first call. It belongs to the registry. May
    /// be called from any thread; what is done with the dictionary may not. Null only if the
    /// factory gives null.
    Dictionary* GetOrCreate(std::int32_t languageId);

    /// Loads a stream into the dictionary of a language.
    void LoadFromStream(std::int32_t languageId, std::istream* stream);

    /// Dictionary::Lookup() in the dictionary of a language.
    DictionaryString Lookup(std::int32_t languageId, const char* key,
                            const ConversionContext* context = nullptr);

    /// Makes the dictionary of a language the fallback dictionary of the process.
    void SetFallback(std::int32_t languageId);

private:
    Factory factory_;
    std::mutex mutex_;
    // Parallel; the last slot of an identifier counts.
    std::vector<std::int32_t> identifiers_;
    std::vector<Dictionary*> dictionaries_;
};

}  // namespace morvish
