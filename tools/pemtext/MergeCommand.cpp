#include "tools/pemtext/Catalog.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/TextForm.h"

#include <cstdio>
#include <string>

namespace pemtext {

namespace {

// Marks what is new: no program shows what stands behind "#{comment}".
constexpr std::u16string_view kUntranslated = u"#{comment} untranslated";

}  // namespace

int RunMerge(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    const Catalog reference(arguments.Files()[0]);
    const Catalog translation(arguments.Files()[1]);
    const bool keepsObsolete = arguments.Has("--keep-obsolete");
    std::size_t added = 0;
    std::size_t obsolete = 0;
    WriteOutput(output, [&](std::ostream& out) {
        for (const CatalogEntry& entry : reference.Entries()) {
            const CatalogEntry* const translated = translation.Find(entry.key);
            if (translated == nullptr) {
                ++added;
                out << RawTextLine(entry.key, entry.rawValue + std::u16string(kUntranslated));
            } else {
                out << RawTextLine(entry.key, translated->rawValue);
            }
        }
        for (const CatalogEntry& entry : translation.Entries()) {
            if (reference.Find(entry.key) != nullptr)
                continue;
            ++obsolete;
            if (keepsObsolete)
                out << RawTextLine(entry.key, entry.rawValue);
        }
    });
    const std::string summary = translation.File() + ": " + std::to_string(added) + " new, " +
                                std::to_string(obsolete) + " obsolete texts " +
                                (keepsObsolete ? "kept" : "dropped") + "\n";
    std::fwrite(summary.data(), 1, summary.size(), stderr);
    return kDone;
}

}  // namespace pemtext
