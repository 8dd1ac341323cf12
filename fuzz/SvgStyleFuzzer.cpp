// Reads the input as a style sheet and as declarations. What a class sets must be what its rule
// declares, although the two are kept apart.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "svgloom/src/Declarations.h"
#include "svgloom/src/StyleSheet.h"

namespace {

using SVGLoom::StyleSheet;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckError(const std::invalid_argument& error)
{
    const std::string_view text = error.what();
    Require(text == "value not found" || text == "empty CSS selector");
}

void CheckClass(const StyleSheet& sheet, const StyleSheet::Rule& rule)
{
    const auto properties = sheet.FindClass(rule.selector.name);
    std::size_t declared = 0;
    for (const SVGLoom::Declaration& each : rule.declarations) {
        declared += SVGLoom::IsProperty(SVGLoom::FindAttribute(each.name)) ? 1 : 0;
    }
    Require(properties.size() == declared);
    for (std::size_t i = 0; i < properties.size(); ++i) {
        Require(i == 0 || properties[i - 1].property < properties[i].property);
        bool found = false;
        for (const SVGLoom::Declaration& each : rule.declarations) {
            found = found || (each.name == SVGLoom::TextOf(properties[i].property) &&
                              each.value == properties[i].text);
        }
        Require(found);
    }
}

void CheckSheet(const StyleSheet& sheet)
{
    const SVGLoom::Selector* before = nullptr;
    const std::vector<StyleSheet::Rule> rules = sheet.Rules();
    Require(rules.empty() == sheet.empty());
    for (const StyleSheet::Rule& rule : rules) {
        Require(before == nullptr || *before < rule.selector);
        before = &rule.selector;
        for (std::size_t i = 1; i < rule.declarations.size(); ++i) {
            Require(rule.declarations[i - 1].name < rule.declarations[i].name);
        }
        if (rule.selector.kind == SVGLoom::SelectorKind::kClass)
            CheckClass(sheet, rule);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        StyleSheet sheet;
        sheet.Add(text.substr(0, size / 2));
        CheckSheet(sheet);
        sheet.Add(text);
        CheckSheet(sheet);
    } catch (const std::invalid_argument& error) {
        CheckError(error);
    }
    try {
        SVGLoom::ParseDeclarations(text);
    } catch (const std::invalid_argument& error) {
        CheckError(error);
    }
    return 0;
}
