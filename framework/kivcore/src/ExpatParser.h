// The XML parser over Expat.

#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include <kivcore/Xml.h>

namespace kivcore::xml {

/// Whether a document may have a document type, and with it entities of its own.
enum class Doctype { kAllowed, kRefused };

class ExpatParser final : public DocParser {
public:
    explicit ExpatParser(Doctype doctype) : doctype_(doctype) {}

    void Parse(std::string_view text, std::string_view sourceName, DocHandler& handler) override;
    std::size_t Line() const override;

    /// For handlers while Parse runs: throws ParseError for the place that is being read.
    [[noreturn]] void Fail(const std::string& reason) const;

private:
    struct Run;

    Doctype doctype_;
    const Run* run_ = nullptr;  // the innermost Parse
};

}  // namespace kivcore::xml
