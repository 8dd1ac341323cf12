// The properties that a photo's Exif and IIM data tell. Which library reads them is known behind
// this header only; a build without one reads nothing.

#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "framework/kivxmp/src/ByteSource.h"

#include <kivxmp/Derived.h>
#include <kivxmp/XMPMeta.h>

namespace kivxmp {

/// Takes what a reader finds. Of several sources for one property the first one to be added counts,
/// so a reader adds them in their order of precedence. The Add functions return false where the
/// property is there already, or the value cannot stand in a packet (as a text with control
/// characters); what was added before stays.
class DerivedSink {
public:
    DerivedSink();
    ~DerivedSink();

    bool AddText(std::string_view uri, std::string_view local, std::string_view text,
                 DerivedSource source);
    /// A list of texts: kBag, kSeq or kAlt.
    bool AddList(std::string_view uri, std::string_view local, NodeForm form,
                 std::span<const std::string> items, DerivedSource source);
    /// Alternatives by language.
    bool AddLanguages(std::string_view uri, std::string_view local,
                      std::span<const LanguageText> items, DerivedSource source);
    /// A structure of texts, by the local names of its fields, which are in the property's own
    /// namespace.
    bool AddFields(std::string_view uri, std::string_view local,
                   std::span<const std::pair<std::string, std::string>> fields,
                   DerivedSource source);

    /// What was added, for the reader itself.
    const __XMPMeta__& Properties() const noexcept { return *properties_; }
    /// Null for a property that was not added.
    const DerivedSource* FindSource(std::string_view uri, std::string_view local) const;

private:
    template <class Edit>
    bool Add(std::string_view uri, std::string_view local, DerivedSource&& source,
             const Edit& edit);

    std::unique_ptr<__XMPMeta__> properties_;
    std::map<std::string, DerivedSource, std::less<>> sources_;  // by "uri}local"
};

/// Reads the Exif and IIM data of the photo in `photo` and gives `sink` what they tell, Exif first.
/// Adds nothing where there is none, or where it cannot be read. Never called for sidecars. May
/// throw FileError, PhotoError and std::bad_alloc; everything else is the reader's own.
void ReadDerived(photo::ByteSource& photo, DerivedSink& sink);

}  // namespace kivxmp
