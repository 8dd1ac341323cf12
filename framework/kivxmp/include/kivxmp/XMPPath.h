// Paths to the nodes of a packet's tree, as texts and as steps:
//
//     path = name *( "/" name | "/?" name | "[" number "]" | "[@" language "]" )
//     name = prefix ":" local | "{" uri "}" local

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/Export.h>

namespace kivxmp {

/// Steps a path may have.
inline constexpr std::size_t kMaxPathSteps = 256;

struct PathStep {
    enum class Kind {
        kField,      ///< property or field: `uri`, `local`, `prefix`
        kQualifier,  ///< likewise
        kItem,       ///< `index`, from 1
        kLanguage,   ///< `language`
    };
    Kind kind = Kind::kField;
    std::string uri;
    std::string local;
    std::string prefix;  ///< as written; empty for "{uri}name"
    std::size_t index = 0;
    std::string language;
};

using Path = std::vector<PathStep>;

/// Gives the URI of a prefix, empty where it is unknown.
using PrefixLookup = std::function<std::string(std::string_view prefix)>;

/// Reads a path. `lookup` is asked for prefixes that are neither well-known nor registered; it may
/// be empty. Throws XMP_Error (kKivXmpBadPath).
KIVXMP_API Path ParsePath(std::string_view text, const PrefixLookup& lookup);

/// Writes a step as it stands in a path behind others ("/dc:title", "[2]"); the first one of a path
/// without its "/". Names get the well-known or registered prefix of their URI; else their own
/// prefix if `lookup` gives their URI for it; else "{uri}name".
KIVXMP_API std::string PrintStep(const PathStep& step, bool isFirst, const PrefixLookup& lookup);

KIVXMP_API std::string PrintPath(const Path& path, const PrefixLookup& lookup);

}  // namespace kivxmp
