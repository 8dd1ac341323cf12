#include "tools/pemtext/Catalog.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/TextForm.h"

#include <string>

namespace pemtext {

int RunMerge(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    const Catalog reference(arguments.Files()[0]);
    const Catalog translation(arguments.Files()[1]);
    const bool keepsObsolete = arguments.Has("--keep-obsolete");
    std::size_t added = 0;
    std::size_t waiting = 0;
    std::size_t obsolete = 0;
    WriteOutput(output, [&](std::ostream& out) {
        for (const CatalogEntry& entry : reference.Entries()) {
            const CatalogEntry* const translated = translation.Find(entry.key);
            if (translated == nullptr || IsUntranslated(*translated)) {
                ++(translated == nullptr ? added : waiting);
                out << RawTextLine(entry.key, entry.rawValue + std::u16string(kUntranslatedMark));
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
                                (keepsObsolete ? "kept" : "dropped") + ", " +
                                std::to_string(waiting) + " still untranslated\n";
    Tell(summary);
    return kDone;
}

}  // namespace pemtext
