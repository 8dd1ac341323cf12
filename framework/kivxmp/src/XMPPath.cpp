#include <kivxmp/XMPPath.h>

#include <algorithm>
#include <charconv>

#include "framework/kivxmp/src/Encoding.h"

#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNamespaces.h>

namespace kivxmp {
namespace {

class PathReader {
public:
    PathReader(std::string_view text, const PrefixLookup& lookup) : text_(text), lookup_(lookup) {}

    Path Read()
    {
        if (!IsXmlText(text_)) {
            Fail("it has bytes that are no text");
        }
        Path path;
        path.push_back(ReadName(PathStep::Kind::kField));
        while (at_ != text_.size()) {
            if (path.size() == kMaxPathSteps) {
                Fail("it has more than 256 steps");
            }
            path.push_back(ReadStep());
        }
        return path;
    }

private:
    PathStep ReadStep()
    {
        if (Skip("/?")) {
            return ReadName(PathStep::Kind::kQualifier);
        }
        if (Skip("/")) {
            return ReadName(PathStep::Kind::kField);
        }
        PathStep step;
        if (Skip("[@")) {
            step.kind = PathStep::Kind::kLanguage;
            step.language = ReadUntil(']');
            if (step.language.empty()) {
                Fail("a language is missing");
            }
            return step;
        }
        if (!Skip("[")) {
            Fail("\"/\" or \"[\" is missing behind a step");
        }
        step.kind = PathStep::Kind::kItem;
        const std::string digits = ReadUntil(']');
        const char* const end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, step.index);
        if (error != std::errc() || stop != end || step.index == 0) {
            Fail("\"" + digits + "\" is no item number; they count from 1");
        }
        return step;
    }

    PathStep ReadName(PathStep::Kind kind)
    {
        PathStep step;
        step.kind = kind;
        if (Skip("{")) {
            step.uri = ReadUntil('}');
        } else {
            step.prefix = ReadWord();
            if (!Skip(":")) {
                Fail("\"" + step.prefix + "\" has no namespace");
            }
            step.uri = NamespaceOfPrefix(step.prefix);
            if (step.uri.empty() && lookup_) {
                step.uri = lookup_(step.prefix);
            }
            if (step.uri.empty()) {
                Fail("the prefix \"" + step.prefix + "\" is unknown");
            }
        }
        step.local = ReadWord();
        if (step.local.empty()) {
            Fail("a name is missing");
        }
        return step;
    }

    std::string ReadWord()
    {
        const std::size_t end = std::min(text_.find_first_of("/[]{}:@? \t\r\n", at_), text_.size());
        return Take(end);
    }

    std::string ReadUntil(char closing)
    {
        const std::size_t end = text_.find(closing, at_);
        if (end == std::string_view::npos) {
            Fail(std::string("\"") + closing + "\" is missing");
        }
        std::string taken = Take(end);
        ++at_;
        return taken;
    }

    std::string Take(std::size_t end)
    {
        std::string taken(text_.substr(at_, end - at_));
        at_ = end;
        return taken;
    }

    bool Skip(std::string_view token)
    {
        if (text_.substr(at_, token.size()) != token) {
            return false;
        }
        at_ += token.size();
        return true;
    }

    [[noreturn]] void Fail(const std::string& reason) const
    {
        throw XMP_Error(kKivXmpBadPath,
                        "\"" + std::string(text_) + "\" is no property path: " + reason);
    }

    std::string_view text_;
    const PrefixLookup& lookup_;
    std::size_t at_ = 0;
};

std::string PrintName(const PathStep& step, const PrefixLookup& lookup)
{
    std::string prefix = PrefixOfNamespace(step.uri);
    if (prefix.empty() && !step.prefix.empty() && NamespaceOfPrefix(step.prefix).empty() &&
        lookup && lookup(step.prefix) == step.uri) {
        prefix = step.prefix;
    }
    return prefix.empty() ? "{" + step.uri + "}" + step.local : prefix + ":" + step.local;
}

}  // namespace

Path ParsePath(std::string_view text, const PrefixLookup& lookup)
{
    return PathReader(text, lookup).Read();
}

std::string PrintStep(const PathStep& step, bool isFirst, const PrefixLookup& lookup)
{
    switch (step.kind) {
        case PathStep::Kind::kField:
            return (isFirst ? "" : "/") + PrintName(step, lookup);
        case PathStep::Kind::kQualifier:
            return "/?" + PrintName(step, lookup);
        case PathStep::Kind::kItem:
            return "[" + std::to_string(step.index) + "]";
        case PathStep::Kind::kLanguage:
            return "[@" + step.language + "]";
    }
    return {};
}

std::string PrintPath(const Path& path, const PrefixLookup& lookup)
{
    std::string text;
    for (const PathStep& step : path) {
        text += PrintStep(step, text.empty(), lookup);
    }
    return text;
}

}  // namespace kivxmp
