// Which prefix stands for which namespace: a table of the well-known ones, and what the process
// registers besides. Called from the thread that works with XMP objects.

#pragma once

#include <string>
#include <string_view>

#include <kivxmp/Export.h>

namespace kivxmp {

/// URI of a well-known or registered prefix ("dc"); empty where it is unknown.
KIVXMP_API std::string NamespaceOfPrefix(std::string_view prefix);

/// Prefix of a well-known or registered URI; empty where it is unknown.
KIVXMP_API std::string PrefixOfNamespace(std::string_view uri);

/// Makes `prefix` known for `uri` and returns the prefix in force: the one the URI has already, or
/// where `prefix` stands for another URI one made from it ("ex_1"). Lasts until
/// ForgetRegisteredNamespaces. Throws XMP_Error (kKivXmpBadValue) if `prefix` is no XML name
/// without colon, is "xml" or "xmlns", or `uri` is empty or cannot stand in XML.
KIVXMP_API std::string RegisterNamespace(std::string_view prefix, std::string_view uri);

/// Back to the table of the well-known ones.
KIVXMP_API void ForgetRegisteredNamespaces() noexcept;

}  // namespace kivxmp
