// All entries of a dictionary, sorted by the bytes of their keys.

#pragma once

#include "dictionary/Dictionary.h"

#include <string_view>
#include <vector>

namespace pemtext {

class EntryList {
public:
    struct Entry {
        std::string_view key;
        std::u16string_view value;
    };

    /// The views are into `dictionary`, which must not change meanwhile.
    explicit EntryList(const morvish::Dictionary& dictionary);

    const std::vector<Entry>& Keyed() const { return keyed_; }

    /// The values of entries without keys, by number.
    const std::vector<std::u16string_view>& Bare() const { return bare_; }

private:
    std::vector<Entry> keyed_;
    std::vector<std::u16string_view> bare_;
};

}  // namespace pemtext
