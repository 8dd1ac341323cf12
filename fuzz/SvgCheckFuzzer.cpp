// Checks the input as artwork. Findings stand in order inside the input, and what makes the engine
// give up is told.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string_view>

#include "svgloom/src/DocumentCreator.h"
#include "tools/svgloom/check/ArtworkCheck.h"
#include "tools/svgloom/check/EngineObjects.h"

namespace {

using svgloom::ArtworkFinding;
using svgloom::Rule;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

bool EngineThrows(std::string_view text)
{
    try {
        SVGLoom::CreateDocument(text, std::make_shared<svgloom::CheckedRenderer>());
        return false;
    } catch (const std::exception&) {
        return true;
    }
}

bool EndsReading(Rule rule)
{
    return rule == Rule::kClipPathShort || rule == Rule::kGradientHrefEmpty ||
           rule == Rule::kDeclarationNoColon || rule == Rule::kSelectorEmpty;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::size_t offset = 0;
    bool tellsTheEnd = false;
    bool isWhole = true;
    for (const ArtworkFinding& each : svgloom::CheckArtwork(text)) {
        Require(each.offset >= offset && each.offset <= size);
        Require(!each.message.empty());
        offset = each.offset;
        tellsTheEnd = tellsTheEnd || EndsReading(each.rule);
        isWhole = isWhole && each.rule != Rule::kMoreFindings;
    }
    Require(!isWhole || tellsTheEnd || !EngineThrows(text));
    return 0;
}
