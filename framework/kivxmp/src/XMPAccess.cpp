#include <kivxmp/XMPAccess.h>

namespace kivxmp {
namespace {

constexpr std::string_view kDefaultLanguage = "x-default";

/// Reads the text of a node by one of the parsers.
template <class T, class Parser>
std::optional<T> ValueOf(const Node* node, const Parser& parse)
{
    const std::optional<std::string> text = TextOf(node);
    return text ? parse(*text) : std::optional<T>();
}

}  // namespace

std::optional<std::string> TextOf(const Node* node)
{
    if (node == nullptr) {
        return std::nullopt;
    }
    const std::vector<Node>& items = node->Children();
    if (node->IsArray() && !items.empty() &&
        (node->Form() == NodeForm::kAlt || items.size() == 1)) {
        const Node* const preferred = node->FindLanguage(kDefaultLanguage);
        node = preferred != nullptr ? preferred : &items.front();
    }
    return node->IsText() ? std::optional<std::string>(node->Value()) : std::nullopt;
}

std::optional<std::vector<LanguageText>> LanguagesOf(const Node* node)
{
    if (node == nullptr) {
        return std::nullopt;
    }
    std::vector<LanguageText> texts;
    if (node->IsText()) {
        const std::string_view own = node->Language();
        texts.push_back(
            {std::string(own.empty() ? kDefaultLanguage : own), std::string(node->Value())});
        return texts;
    }
    if (!node->IsArray()) {
        return std::nullopt;
    }
    for (const Node& item : node->Children()) {
        if (!item.IsText()) {
            return std::nullopt;
        }
        texts.push_back({std::string(item.Language()), std::string(item.Value())});
    }
    return texts;
}

std::optional<std::vector<std::string>> ListOf(const Node* node)
{
    if (node == nullptr) {
        return std::nullopt;
    }
    std::vector<std::string> texts;
    if (node->IsText()) {
        texts.emplace_back(node->Value());
        return texts;
    }
    if (!node->IsArray()) {
        return std::nullopt;
    }
    for (const Node& item : node->Children()) {
        if (!item.IsText()) {
            return std::nullopt;
        }
        texts.emplace_back(item.Value());
    }
    return texts;
}

std::optional<Date> DateOf(const Node* node)
{
    return ValueOf<Date>(node, ParseDate);
}

std::optional<std::int64_t> IntegerOf(const Node* node)
{
    return ValueOf<std::int64_t>(node, ParseInteger);
}

std::optional<double> RealOf(const Node* node)
{
    return ValueOf<double>(node, ParseReal);
}

std::optional<Rational> RationalOf(const Node* node)
{
    return ValueOf<Rational>(node, ParseRational);
}

std::optional<bool> BooleanOf(const Node* node)
{
    return ValueOf<bool>(node, ParseBoolean);
}

}  // namespace kivxmp
