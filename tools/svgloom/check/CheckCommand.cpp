#include "tools/common/Files.h"
#include "tools/common/Findings.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/check/ArtworkCheck.h"
#include "tools/svgloom/check/SourceText.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace svgloom {

namespace {

tools::Severity SeverityOf(Rule rule)
{
    return RowOf(rule).severity == RuleSeverity::kError ? tools::Severity::kError
                                                        : tools::Severity::kWarning;
}

/// The rules that are not to be told.
class Ignored {
public:
    explicit Ignored(const std::vector<std::string>& ids)
    {
        for (const std::string& id : ids) {
            const RuleRow* const row = FindRule(id);
            if (row == nullptr) {
                throw tools::UsageError("no finding has the id \"" + id + "\"");
            }
            rules_.push_back(row->rule);
        }
    }
    bool Has(Rule rule) const { return std::ranges::find(rules_, rule) != rules_.end(); }

private:
    std::vector<Rule> rules_;
};

void CheckFile(const std::string& file, const Ignored& ignored, tools::Findings& findings)
{
    const std::string name = tools::NameOf(file);
    const auto add = [&](Rule rule, const LinePlaces::Place& place, const std::string& message) {
        if (!ignored.Has(rule)) {
            findings.Add(
                {name, place.line, SeverityOf(rule), message, RowOf(rule).id, place.column});
        }
    };
    std::string text;
    try {
        text = tools::ReadInput(file);
    } catch (const tools::Failure& failure) {
        // The line names the file already.
        std::string_view what = failure.what();
        const std::string prefix = name + ": ";
        what.remove_prefix(what.starts_with(prefix) ? prefix.size() : 0);
        add(Rule::kFile, {}, MessageOf(Rule::kFile, what, {}));
        return;
    }
    LinePlaces places(text);
    for (const ArtworkFinding& finding : CheckArtwork(text)) {
        add(finding.rule, places.Advance(finding.offset), finding.message);
    }
}

}  // namespace

int RunCheck(const tools::Arguments& arguments)
{
    constexpr std::string_view kFormats[] = {"text", "json"};
    const bool asJson = arguments.Choice("--format", kFormats) == "json";
    const Ignored ignored(arguments.Values("--ignore"));
    tools::Findings findings;
    for (const std::string& file : arguments.Files()) {
        CheckFile(file, ignored, findings);
    }
    findings.PrintAll(asJson);
    const bool isBad =
        findings.Errors() > 0 || (arguments.Has("--strict") && findings.Warnings() > 0);
    return isBad ? tools::kBad : tools::kDone;
}

}  // namespace svgloom
