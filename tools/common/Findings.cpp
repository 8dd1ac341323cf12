#include "tools/common/Findings.h"

#include "tools/common/Files.h"
#include "tools/common/Json.h"

#include <algorithm>

namespace tools {

namespace {

std::string_view NameOf(Severity severity)
{
    switch (severity) {
        case Severity::kError:
            return "error";
        case Severity::kWarning:
            return "warning";
        case Severity::kNote:
            break;
    }
    return "note";
}

std::string Counted(std::size_t count, const std::string& name)
{
    return std::to_string(count) + " " + name + (count == 1 ? "" : "s");
}

}  // namespace

void Findings::Add(Finding finding)
{
    findings_.push_back(std::move(finding));
}

void Findings::PrintAll(bool asJson) const
{
    for (const Finding& finding : findings_) {
        const std::string line = std::to_string(finding.line);
        const std::string column = finding.column != 0 ? std::to_string(finding.column) : "";
        const std::string severity(NameOf(finding.severity));
        if (asJson)
            Print("{\"file\":" + JsonUtf8String(finding.file) + ",\"line\":" + line +
                  (column.empty() ? "" : ",\"column\":" + column) + ",\"severity\":\"" + severity +
                  "\",\"message\":" + JsonUtf8String(finding.message) + ",\"id\":\"" +
                  std::string(finding.id) + "\"}\n");
        else
            Print(finding.file + ":" + line + (column.empty() ? "" : ":" + column) + ": " +
                  severity + ": " + finding.message + " [" + std::string(finding.id) + "]\n");
    }
    if (asJson)
        Print("{\"errors\":" + std::to_string(Errors()) +
              ",\"warnings\":" + std::to_string(Warnings()) + "}\n");
    else
        Print(Counted(Errors(), "error") + ", " + Counted(Warnings(), "warning") + "\n");
}

std::size_t Findings::Count(Severity severity) const
{
    return static_cast<std::size_t>(std::ranges::count(findings_, severity, &Finding::severity));
}

}  // namespace tools
