#include "tools/pemtext/Catalog.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Common.h"
#include "tools/pemtext/Files.h"

#include <string>

namespace pemtext {

namespace {

struct Coverage {
    std::size_t texts = 0;  // of the base that are there and not marked
    std::size_t missing = 0;
    std::size_t untranslated = 0;
    std::size_t extra = 0;
    std::size_t equal = 0;  // to the base, and so perhaps not translated
};

Coverage Compare(const Catalog& base, const Catalog& catalog)
{
    Coverage coverage;
    for (const CatalogEntry& entry : base.Entries()) {
        const CatalogEntry* const found = catalog.Find(entry.key);
        if (found == nullptr) {
            ++coverage.missing;
            continue;
        }
        if (IsUntranslated(*found)) {
            ++coverage.untranslated;
            continue;
        }
        ++coverage.texts;
        if (found->value == entry.value)
            ++coverage.equal;
    }
    for (const CatalogEntry& entry : catalog.Entries()) {
        if (base.Find(entry.key) == nullptr)
            ++coverage.extra;
    }
    return coverage;
}

// In tenths of a percent, rounded down: only what is complete is called 100.0 %.
std::string Percent(std::size_t part, std::size_t whole)
{
    const std::size_t tenths = whole == 0 ? 1000 : part * 1000 / whole;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

}  // namespace

int RunStats(const Arguments& arguments)
{
    constexpr std::string_view kFormats[] = {"text", "json"};
    const bool asJson = arguments.Choice("--format", kFormats) == "json";
    const Catalog base(arguments.Files().front());
    for (std::size_t i = 1; i < arguments.Files().size(); ++i) {
        const Catalog catalog(arguments.Files()[i]);
        const Coverage coverage = Compare(base, catalog);
        const std::string percent = Percent(coverage.texts, base.Entries().size());
        const std::string texts = std::to_string(coverage.texts);
        const std::string whole = std::to_string(base.Entries().size());
        const std::string missing = std::to_string(coverage.missing);
        const std::string untranslated = std::to_string(coverage.untranslated);
        const std::string extra = std::to_string(coverage.extra);
        const std::string equal = std::to_string(coverage.equal);
        if (asJson)
            Print("{\"file\":" + JsonUtf8String(catalog.File()) + ",\"base\":" + whole +
                  ",\"texts\":" + texts + ",\"percent\":" + percent + ",\"missing\":" + missing +
                  ",\"untranslated\":" + untranslated + ",\"extra\":" + extra +
                  ",\"equal\":" + equal + "}\n");
        else
            Print(catalog.File() + ": " + texts + " of " + whole + " texts (" + percent + " %), " +
                  missing + " missing, " + untranslated + " untranslated, " + extra + " extra, " +
                  equal + " equal to the base\n");
    }
    return kDone;
}

}  // namespace pemtext
