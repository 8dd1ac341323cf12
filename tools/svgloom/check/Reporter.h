// Collects the findings of one file, a limited number of them.

#pragma once

#include "tools/svgloom/check/Rules.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace svgloom {

struct ArtworkFinding {
    Rule rule;
    std::size_t offset;  // in the file, in bytes
    std::string message;
};

class Reporter {
public:
    /// More than this many findings of one file are counted only.
    static constexpr std::size_t kMaxFindings = 10000;

    void Report(Rule rule, std::size_t offset, std::string_view first = {},
                std::string_view second = {});

    /// As long as it is quiet, only what ends the reading is reported.
    void SetQuiet(bool isQuiet) { isQuiet_ = isQuiet; }

    /// In the order of their places, those of one place in the order in which they came.
    std::vector<ArtworkFinding> Take();

private:
    std::vector<ArtworkFinding> findings_;
    std::size_t more_ = 0;
    bool isQuiet_ = false;
};

/// Keeps the reporter quiet as long as it stands.
class QuietWhile {
public:
    explicit QuietWhile(Reporter& reporter) : reporter_(reporter) { reporter_.SetQuiet(true); }
    ~QuietWhile() { reporter_.SetQuiet(false); }
    QuietWhile(const QuietWhile&) = delete;
    QuietWhile& operator=(const QuietWhile&) = delete;

private:
    Reporter& reporter_;
};

/// A text of the file for a message: on one line, and cut where it is long.
std::string Shown(std::string_view text);

}  // namespace svgloom
