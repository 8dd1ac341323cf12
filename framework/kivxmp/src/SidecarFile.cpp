#include "framework/kivxmp/src/SidecarFile.h"

#include <kivcore/Dir.h>

namespace kivxmp::photo {

using kivcore::UString;
using kivcore::UStringView;

namespace {

class SidecarFormat final : public PhotoFormat {
public:
    explicit SidecarFormat(std::uint64_t sizeBytes)
    {
        if (sizeBytes > 0) {
            NotePacket({0, sizeBytes});
        }
        if (sizeBytes > kPacketBytesLimit) {
            Refuse(PhotoError::Kind::kRefused, "it is larger than any metadata packet");
        }
    }

    std::vector<ByteRange> Changeable() const override { return Packets(); }

private:
    SavePlan PlanPlace(const PacketParts& packet) const override
    {
        return {{Packets().empty() ? ByteRange{} : Packets().front(), packet.main}};
    }
};

/// Where the last component's extension begins, with its dot; the end where it has none. A dot that
/// begins the name is no extension's.
std::size_t ExtensionAt(UStringView path)
{
    const std::size_t nameAt =
        path.size() - kivcore::filesupport::File(UString(path)).Name().size();
    const std::size_t dot = path.rfind(u'.');
    return dot == UStringView::npos || dot <= nameAt ? path.size() : dot;
}

}  // namespace

std::unique_ptr<PhotoFormat> MakeSidecarFormat(std::uint64_t sizeBytes)
{
    return std::make_unique<SidecarFormat>(sizeBytes);
}

UString LowerExtension(UStringView path)
{
    UString extension;
    const std::size_t at = ExtensionAt(path);
    if (at < path.size()) {
        extension = path.substr(at + 1);
    }
    for (char16_t& unit : extension) {
        if (unit >= u'A' && unit <= u'Z') {
            unit = static_cast<char16_t>(unit - u'A' + u'a');
        }
    }
    return extension;
}

bool IsSidecarName(UStringView path)
{
    return LowerExtension(path) == u"xmp";
}

UString FullSidecarName(UStringView photoPath)
{
    UString name(photoPath);
    name += u".xmp";
    return name;
}

UString ShortSidecarName(UStringView photoPath)
{
    UString name(photoPath.substr(0, ExtensionAt(photoPath)));
    name += u".xmp";
    return name;
}

}  // namespace kivxmp::photo
