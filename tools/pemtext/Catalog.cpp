#include "tools/pemtext/Catalog.h"

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryLine.h"
#include "dictionary/ValuePasses.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/EntryList.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/SourceLines.h"

#include <utility>

namespace pemtext {

bool IsUntranslated(const CatalogEntry& entry)
{
    return entry.rawValue.ends_with(kUntranslatedMark);
}

Catalog::Catalog(const std::string& file) : file_(file)
{
    const std::string content = ReadInput(file);
    if (IsImage(content))
        ReadImage(content);
    else
        ReadText(content);
    for (std::size_t i = 0; i < entries_.size(); ++i)
        indices_[entries_[i].key] = i;
}

void Catalog::ReadImage(const std::string& content)
{
    morvish::Dictionary dictionary;
    dictionary.LoadFromMemory(content.data(), content.size());
    if (!dictionary.Valid())
        throw Failure(file_ + ": is a broken image");
    const EntryList entries(dictionary);
    if (!entries.Bare().empty())
        throw Failure(file_ + ": is an image without keys");
    for (const EntryList::Entry& entry : entries.Keyed())
        entries_.push_back(
            {std::string(entry.key), std::u16string(entry.value), std::u16string(entry.value), 1});
}

void Catalog::ReadText(const std::string& content)
{
    std::vector<CatalogEntry> all;
    std::map<std::string, std::size_t> last;
    for (const SourceLine& line : SplitText(content).lines) {
        const morvish_private::LineParts parts = morvish_private::SplitLine(line.text);
        if (!parts.valid)
            continue;
        CatalogEntry entry = {{}, std::u16string(parts.value), {}, line.number};
        morvish_private::NarrowKey(parts.key, entry.key);
        entry.value = morvish_private::EscapeValue(parts.value.data(), parts.value.size());
        last[entry.key] = all.size();
        all.push_back(std::move(entry));
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (last[all[i].key] == i)
            entries_.push_back(std::move(all[i]));
    }
}

const CatalogEntry* Catalog::Find(const std::string& key) const
{
    const auto found = indices_.find(key);
    return found != indices_.end() ? &entries_[found->second] : nullptr;
}

}  // namespace pemtext
