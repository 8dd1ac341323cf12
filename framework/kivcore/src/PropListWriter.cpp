#include <charconv>
#include <cmath>
#include <stdexcept>

#include <kivcore/FileReplacement.h>
#include <kivcore/PropList.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>

#include "framework/kivcore/src/PropListText.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::proplist::utils {

namespace {

template <class Number>
std::string NumberText(Number number)
{
    char buffer[32];
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), number).ptr;
    return {buffer, end};
}

class Writer {
public:
    void Write(const PropList& list)
    {
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<";
        text_.append(kRootName).append(" version=\"").append(kVersion).append("\">\n");
        for (const auto& [name, value] : list.Values()) {
            WriteValue(&name, value, 1);
        }
        text_.append("</").append(kRootName).append(">\n");
    }

    std::string Take() { return std::move(text_); }

private:
    void WriteValue(const std::string* name, const PropValue& value, std::size_t depth)
    {
        if (depth > kMaxNesting) {
            throw std::length_error("property list values are nested too deeply");
        }
        const std::string_view type = kTypeNames[value.Get().index()];
        Indent(depth);
        text_.append("<").append(type);
        if (name) {
            text_ += " name=\"" + xml::Escape(SpellText(string::UTF8to16(*name))) + "\"";
        }
        text_ += ">";
        std::visit([this, depth](const auto& content) { WriteContent(content, depth); },
                   value.Get());
        text_.append("</").append(type).append(">\n");
    }

    void WriteContent(bool value, std::size_t) { text_ += value ? "true" : "false"; }
    void WriteContent(std::int64_t value, std::size_t) { text_ += NumberText(value); }
    void WriteContent(double value, std::size_t)
    {
        // Its sign and payload mean nothing, and not every system spells them alike.
        text_ += std::isnan(value) ? "nan" : NumberText(value);
    }
    void WriteContent(const UString& value, std::size_t) { text_ += xml::Escape(SpellText(value)); }
    void WriteContent(const PropValue::Array& values, std::size_t depth)
    {
        text_ += "\n";
        for (const PropValue& value : values) {
            WriteValue(nullptr, value, depth + 1);
        }
        Indent(depth);
    }
    void WriteContent(const std::map<std::string, PropValue>& values, std::size_t depth)
    {
        text_ += "\n";
        for (const auto& [name, value] : values) {
            WriteValue(&name, value, depth + 1);
        }
        Indent(depth);
    }

    void Indent(std::size_t depth) { text_.append(2 * depth, ' '); }

    std::string text_;
};

}  // namespace

std::string WritePropList(const PropList& list)
{
    Writer writer;
    writer.Write(list);
    return writer.Take();
}

void SavePropList(const filesupport::File& file, const PropList& list)
{
    const std::string text = WritePropList(list);
    if (text.size() > kMaxFileBytes) {
        throw filesupport::FileError(
            filesupport::FileError::Kind::kTooLarge,
            filesupport::ErrorText(file.FullPath(), "the property list is too large"));
    }
    file.Folder().Create();
    filesupport::ReplaceWholeFile(
        file.FullPath(),
        [&text](filesupport::OutputFile& out) { out.Write(text.data(), text.size()); }, {});
}

}  // namespace kivcore::proplist::utils
