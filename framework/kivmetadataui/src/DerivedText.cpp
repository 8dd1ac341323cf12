#include "framework/kivmetadataui/src/DerivedText.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivmetadataui/src/Texts.h"

#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPError.h>

namespace kivmetadataui {

using kivcore::UString;
using kivxmp::DerivedFrom;
using kivxmp::DerivedSource;

namespace {

struct SourceRow {
    DerivedFrom from;
    std::string_view mark;
    std::string_view detail;  // ^0 is the source's own
};

constexpr SourceRow kSourceRows[] = {
    {DerivedFrom::kExif, "$$$/Kiv/Dialog/Source/Exif=Exif",
     "$$$/Kiv/Dialog/Source/ExifDetail=From the camera’s Exif data: ^0"},
    {DerivedFrom::kIim, "$$$/Kiv/Dialog/Source/Iptc=IPTC",
     "$$$/Kiv/Dialog/Source/IptcDetail=From the IPTC record: ^0"},
    {DerivedFrom::kSidecar, "$$$/Kiv/Dialog/Source/Sidecar=Sidecar",
     "$$$/Kiv/Dialog/Source/SidecarDetail=From the sidecar ^0"},
    {DerivedFrom::kEmbedded, "$$$/Kiv/Dialog/Source/Photo=Photo",
     "$$$/Kiv/Dialog/Source/PhotoDetail=From the photo’s own packet"},
};

struct NoteRow {
    DerivedFrom from;
    std::string_view nothing;
    std::string_view one;
    std::string_view many;
    std::string_view detail;
};

constexpr NoteRow kNoteRows[] = {
    {DerivedFrom::kSidecar, "$$$/Kiv/Dialog/Note/SidecarNothing=The sidecar ^0 adds nothing",
     "$$$/Kiv/Dialog/Note/SidecarOne=The sidecar ^0 adds 1 property",
     "$$$/Kiv/Dialog/Note/SidecarMany=The sidecar ^0 adds ^1 properties",
     "$$$/Kiv/Dialog/Note/SidecarDetail=The metadata in the photo counts. What only the sidecar "
     "has "
     "is shown and marked, and is saved in the photo where it is changed."},
    {DerivedFrom::kEmbedded, "", "$$$/Kiv/Dialog/Note/PhotoOne=The photo itself adds 1 property",
     "$$$/Kiv/Dialog/Note/PhotoMany=The photo itself adds ^1 properties",
     "$$$/Kiv/Dialog/Note/PhotoDetail=The sidecar counts. What only the photo’s own packet has is "
     "shown and marked, and is saved in the sidecar where it is changed."},
};

template <class Row>
const Row* RowOf(const Row* begin, const Row* end, DerivedFrom from)
{
    const Row* const row =
        std::find_if(begin, end, [from](const Row& r) { return r.from == from; });
    return row == end ? nullptr : row;
}

std::size_t CountFrom(const __XMPMeta__& meta, DerivedFrom from)
{
    const auto derived = kivxmp::DerivedProperties(meta);
    const auto nodes = derived->Properties();
    return static_cast<std::size_t>(
        std::count_if(nodes.begin(), nodes.end(), [&](const kivxmp::Node* node) {
            kivxmp::PathStep step;
            step.uri = node->NamespaceUri();
            step.local = node->LocalName();
            const DerivedSource* const source = kivxmp::FindDerivedSource(meta, {step});
            return source != nullptr && source->from == from;
        }));
}

/// What kivxmp itself has to say; in its own words.
UString NoteOfFile(const __XMPMeta__& meta)
{
    try {
        return Widen(kivxmp::GetPhotoInfo(meta).note);
    } catch (const XMP_Error&) {
        return {};  // of no file
    }
}

}  // namespace

FieldSource SourceText(const DerivedSource& source)
{
    const SourceRow* const row = RowOf(std::begin(kSourceRows), std::end(kSourceRows), source.from);
    if (row == nullptr) {
        return {};
    }
    return {DialogText(row->mark), DialogText(row->detail, {Widen(source.detail)}), false};
}

FieldSource SourceAt(const __XMPMeta__& meta, const kivxmp::Path& path)
{
    const DerivedSource* const source = kivxmp::FindDerivedSource(meta, path);
    if (source == nullptr) {
        return {};
    }
    FieldSource text = SourceText(*source);
    text.isWhole = path.size() == 1;
    return text;
}

PhotoNote NoteOf(const __XMPMeta__& meta)
{
    PhotoNote note;
    const std::vector<DerivedSource> packets = kivxmp::DerivedPackets(meta);
    for (const DerivedSource& packet : packets) {
        const NoteRow* const row = RowOf(std::begin(kNoteRows), std::end(kNoteRows), packet.from);
        const std::size_t count = row == nullptr ? 0 : CountFrom(meta, packet.from);
        const std::string_view key =
            row == nullptr ? "" : (count == 0 ? row->nothing : (count == 1 ? row->one : row->many));
        if (!key.empty()) {
            note.text = DialogText(key, {Widen(packet.detail), NumberText(count)});
            note.detail = DialogText(row->detail);
            return note;
        }
    }
    note.detail = packets.empty() ? NoteOfFile(meta) : UString();
    if (!note.detail.empty()) {
        note.text = DialogText("$$$/Kiv/Dialog/Note/OfPhoto=There is a note on this photo");
    }
    return note;
}

}  // namespace kivmetadataui
