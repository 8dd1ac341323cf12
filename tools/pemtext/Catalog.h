// A dictionary as its translator sees it: each entry with the line that defines it and its value as
// it is written.

#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pemtext {

struct CatalogEntry {
    std::string key;
    std::u16string rawValue;  // as it is written; for an image the same as `value`
    std::u16string value;     // as it is shown
    std::size_t line;         // 1 for an image
};

/// Stands behind a reference's text that waits for its translation. No program shows it.
inline constexpr std::u16string_view kUntranslatedMark = u"#{comment} untranslated";

/// True for a text that is marked so. An image has lost its marks.
bool IsUntranslated(const CatalogEntry& entry);

/// The entries that count, in the order of their lines: of a key that comes again the last one.
class Catalog {
public:
    /// Throws Failure if the file cannot be read, or is an image that does not load or has no keys.
    explicit Catalog(const std::string& file);

    const std::string& File() const { return file_; }
    const std::vector<CatalogEntry>& Entries() const { return entries_; }

    /// @return null if there is no such key
    const CatalogEntry* Find(const std::string& key) const;

private:
    void ReadImage(const std::string& content);
    void ReadText(const std::string& content);

    std::string file_;
    std::vector<CatalogEntry> entries_;
    std::map<std::string, std::size_t> indices_;
};

}  // namespace pemtext
