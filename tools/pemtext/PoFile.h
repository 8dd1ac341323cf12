// gettext's PO files, through gettext's own library where the build has it.

#pragma once

#include <string>
#include <vector>

namespace pemtext {

struct PoMessage {
    std::string key;          // its msgctxt
    std::string text;         // msgid, UTF-8
    std::string translation;  // msgstr, UTF-8; empty if there is none
};

/// The messages that count: with a translation, neither fuzzy nor obsolete. Throws Failure, which
/// names the file, and in builds without PO support.
std::vector<PoMessage> ReadPo(const std::string& file);

/// The bytes of a PO file. Throws Failure in builds without PO support.
/// @param language  for the header; may be empty
std::string FormatPo(const std::vector<PoMessage>& messages, const std::string& language);

}  // namespace pemtext
