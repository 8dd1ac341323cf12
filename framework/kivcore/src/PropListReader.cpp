#include <algorithm>
#include <charconv>
#include <iterator>

#include <kivcore/FileReplacement.h>
#include <kivcore/PropList.h>
#include <kivcore/StringConversion.h>

#include "framework/kivcore/src/ExpatParser.h"
#include "framework/kivcore/src/PropListText.h"

namespace kivcore::proplist::utils {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

// Places in PropValue::Variant.
enum class Type : std::size_t { kBool, kInt, kReal, kText, kArray, kList };

/// `text` for a message: its beginning, well-formed.
std::string Quoted(std::string_view text)
{
    constexpr std::size_t kMaxBytes = 40;
    return "\"" + string::UTF16to8(string::UTF8to16(text.substr(0, kMaxBytes))) + "\"";
}

class Reader final : public xml::DocHandler {
public:
    explicit Reader(const xml::ExpatParser& parser) : parser_(parser) {}

    PropList Take() { return std::move(open_.front().values); }

    void StartElement(const std::string& name, const xml::Attributes& attributes) override
    {
        if (open_.empty()) {
            StartRoot(name, attributes);
            return;
        }
        if (!IsContainer(open_.back().type)) {
            parser_.Fail("<" + name + "> inside a single value");
        }
        const auto* const type = std::find(std::begin(kTypeNames), std::end(kTypeNames), name);
        if (type == std::end(kTypeNames)) {
            parser_.Fail("<" + name + "> is no type of a property list");
        }
        Element element{static_cast<Type>(type - std::begin(kTypeNames)), {}, {}, {}};
        if (open_.back().type == Type::kList) {
            element.name = NameIn(attributes);
        }
        open_.push_back(std::move(element));
        text_.clear();
    }

    void EndElement(const std::string&) override
    {
        if (open_.size() == 1) {
            return;  // the root stays, for Take
        }
        PropValue value = Value(open_.back());
        const std::string name = std::move(open_.back().name);
        open_.pop_back();
        if (open_.back().type == Type::kArray) {
            open_.back().array.push_back(std::move(value));
        } else {
            open_.back().values.Set(name, std::move(value));
        }
        text_.clear();
    }

    void Text(std::string_view text) override
    {
        if (!open_.empty() && IsContainer(open_.back().type)) {
            if (text.find_first_not_of(kWhiteSpace) != std::string_view::npos) {
                parser_.Fail("text between values: " + Quoted(text));
            }
        } else {
            text_ += text;
        }
    }

private:
    struct Element {
        Type type;
        std::string name;
        PropValue::Array array;
        PropList values;
    };

    static bool IsContainer(Type type) { return type == Type::kArray || type == Type::kList; }

    void StartRoot(const std::string& name, const xml::Attributes& attributes)
    {
        const std::string* version = xml::FindAttribute(attributes, "version");
        if (name != kRootName || !version) {
            parser_.Fail("this is no property list");
        }
        if (*version != kVersion) {
            parser_.Fail("a property list of the unknown version " + Quoted(*version));
        }
        open_.push_back({Type::kList, {}, {}, {}});
    }

    std::string NameIn(const xml::Attributes& attributes) const
    {
        const std::string* spelled = xml::FindAttribute(attributes, "name");
        if (!spelled) {
            parser_.Fail("a value without a name");
        }
        const std::optional<UString> name = ReadText(*spelled);
        if (!name) {
            parser_.Fail("a broken name: " + Quoted(*spelled));
        }
        std::string result = string::UTF16to8(*name);
        if (open_.back().values.Find(result)) {
            parser_.Fail("a second value of the name " + Quoted(*spelled));
        }
        return result;
    }

    PropValue Value(Element& element) const
    {
        switch (element.type) {
            case Type::kBool:
                return Bool();
            case Type::kInt:
                return Number<std::int64_t>("a whole number of 64 bits");
            case Type::kReal:
                return Number<double>("a number");
            case Type::kText:
                if (std::optional<UString> text = ReadText(text_)) {
                    return std::move(*text);
                }
                parser_.Fail("a broken text: " + Quoted(text_));
            case Type::kArray:
                return std::move(element.array);
            case Type::kList:
                break;
        }
        return element.values;
    }

    std::string_view Trimmed() const
    {
        const std::string_view text = text_;
        const std::size_t first = std::min(text.find_first_not_of(kWhiteSpace), text.size());
        return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
    }

    PropValue Bool() const
    {
        const std::string_view text = Trimmed();
        if (text != "true" && text != "false") {
            parser_.Fail("neither true nor false: " + Quoted(text));
        }
        return text == "true";
    }

    template <class T>
    PropValue Number(const char* wanted) const
    {
        const std::string_view text = Trimmed();
        const char* const end = text.data() + text.size();
        T number{};
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end) {
            parser_.Fail("not " + std::string(wanted) + ": " + Quoted(text));
        }
        return number;
    }

    const xml::ExpatParser& parser_;
    std::vector<Element> open_;  // the innermost last
    std::string text_;           // of the innermost, so far
};

}  // namespace

PropList ReadPropList(std::string_view text, std::string_view sourceName)
{
    if (text.size() > kMaxFileBytes) {
        throw xml::ParseError(std::string(sourceName) + ":1:1: the property list is too large");
    }
    xml::ExpatParser parser(xml::Doctype::kRefused);
    Reader reader(parser);
    parser.Parse(text, sourceName, reader);
    return reader.Take();
}

void LoadPropList(const UString& path, PropList& list, bool merge)
{
    filesupport::RecoverReplacedFile(path);
    PropList read =
        ReadPropList(filesupport::File(path).ReadAll(kMaxFileBytes), string::UTF16to8(path));
    if (merge) {
        for (const auto& [name, value] : list.Values()) {
            if (!read.Find(name)) {
                read.Set(name, value);
            }
        }
    }
    list = std::move(read);
}

}  // namespace kivcore::proplist::utils
