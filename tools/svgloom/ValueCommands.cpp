// One value parser each, on one text or on a file of them.

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/StyleSheet.h"
#include "tools/common/Files.h"
#include "tools/common/Json.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/JsonValues.h"

#include <kivcore/StringConversion.h>

#include <exception>
#include <functional>
#include <string>

namespace svgloom {

namespace {

using SVGLoom::ParseResult;
using SVGLoom::SVGStringParser;
using tools::Arguments;
using tools::JsonUtf8String;

using Reader = std::function<std::string(std::string_view text)>;

// Prints what `read` makes of a text. What the engine throws is its line then.
// @return false if it threw
bool PrintResult(const Reader& read, std::string_view text, const std::string& place)
{
    std::string line;
    bool isDone = true;
    try {
        line = read(text);
    } catch (const std::exception& error) {
        tools::Tell("svgloom: " + place + ": " + error.what() + "\n");
        line = JsonError(error.what());
        isDone = false;
    }
    tools::Print(line + "\n");
    return isDone;
}

enum class Operand { kText, kFile };

int RunReader(const Arguments& arguments, Operand operand, const Reader& read)
{
    bool allDone = true;
    if (const std::optional<std::string> file = arguments.Value("--lines")) {
        if (!arguments.Files().empty())
            throw tools::UsageError("--lines stands in the place of what is read");
        for (const tools::JsonLine& line : tools::ReadJsonLines(*file)) {
            const std::string text =
                kivcore::string::UTF16to8({line.text.data(), line.text.size()});
            allDone &=
                PrintResult(read, text, tools::NameOf(*file) + ":" + std::to_string(line.number));
        }
    } else if (arguments.Files().empty()) {
        throw tools::UsageError(operand == Operand::kText ? "the text is missing"
                                                          : "a file is missing");
    } else {
        const std::string& word = arguments.Files()[0];
        allDone = operand == Operand::kText
                      ? PrintResult(read, word, "the text")
                      : PrintResult(read, tools::ReadInput(word), tools::NameOf(word));
    }
    return allDone ? tools::kDone : tools::kBad;
}

std::string ReadPath(std::string_view text)
{
    SVGLoom::ScrivelSVGPath path;
    SVGStringParser::ParsePath(text, path);
    return JsonPath(path);
}

std::string ReadTransform(std::string_view text)
{
    SVGLoom::ScrivelSVGTransform transform(1, 0, 0, 1, 0, 0);
    const char* current = text.data();
    const bool isRead =
        SVGStringParser::ParseTransform(current, text.data() + text.size(), transform);
    return std::string("{\"ok\":") + (isRead ? "true" : "false") +
           ",\"m\":" + JsonMatrix(transform) + "}";
}

std::string ReadColor(std::string_view text, bool allowsCurrentColor)
{
    SVGLoom::ColorValue value;
    ParseResult result = ParseResult::kInvalid;  // where the parser leaves it alone
    const char* current = text.data();
    const char* const end = text.data() + text.size();
    const bool isRead =
        SVGStringParser::ParseColor(current, end, value, allowsCurrentColor, result);
    std::string line = "{\"result\":" + std::to_string(static_cast<unsigned>(result)) + ",";
    if (isRead)
        line += JsonColorMembers(value) + ",";
    return line + "\"rest\":" + JsonUtf8String({current, static_cast<std::size_t>(end - current)}) +
           "}";
}

std::string TextOf(const SVGLoom::Selector& selector)
{
    constexpr std::string_view kMarks[] = {"", ".", "#", ""};
    return std::string(kMarks[static_cast<std::size_t>(selector.kind)]) +
           std::string(selector.name);
}

std::string ReadCss(std::string_view text)
{
    SVGLoom::StyleSheet sheet;
    sheet.Add(text);
    std::string line = "{";
    for (const SVGLoom::StyleSheet::Rule& rule : sheet.Rules()) {
        line += (line.size() > 1 ? "," : "") + JsonUtf8String(TextOf(rule.selector)) + ":{";
        bool isFirst = true;
        for (const SVGLoom::Declaration& declaration : rule.declarations) {
            line += (isFirst ? "" : ",") + JsonUtf8String(declaration.name) + ":" +
                    JsonUtf8String(declaration.value);
            isFirst = false;
        }
        line += "}";
    }
    return line + "}";
}

}  // namespace

int RunPath(const Arguments& arguments)
{
    return RunReader(arguments, Operand::kText, ReadPath);
}

int RunTransform(const Arguments& arguments)
{
    return RunReader(arguments, Operand::kText, ReadTransform);
}

int RunColor(const Arguments& arguments)
{
    return RunReader(arguments, Operand::kText,
                     [allows = arguments.Has("--current-color")](std::string_view text) {
                         return ReadColor(text, allows);
                     });
}

int RunCss(const Arguments& arguments)
{
    return RunReader(arguments, Operand::kFile, ReadCss);
}

}  // namespace svgloom
