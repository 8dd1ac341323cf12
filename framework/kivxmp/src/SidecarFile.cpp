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
            packets_.push_back({0, sizeBytes});
        }
        if (sizeBytes > kPacketBytesLimit) {
            refusal_.emplace(PhotoError::Kind::kRefused, "it is larger than any metadata packet");
        }
    }

    const std::vector<ByteRange>& Packets() const noexcept override { return packets_; }
    const std::optional<PhotoError>& Refusal() const noexcept override { return refusal_; }
    std::size_t PacketLimitBytes() const noexcept override { return kPacketBytesLimit; }

    SavePlan Plan(const PacketParts& packet) const override
    {
        if (packet.main.size() > kPacketBytesLimit) {
            throw PhotoError(PhotoError::Kind::kRefused,
                             "the metadata takes " + std::to_string(packet.main.size()) +
                                 " bytes; the limit is " + std::to_string(kPacketBytesLimit));
        }
        const ByteRange all = packets_.empty() ? ByteRange{} : packets_.front();
        return {{all, packet.main}};
    }

    std::vector<ByteRange> Changeable() const override { return packets_; }

private:
    std::vector<ByteRange> packets_;
    std::optional<PhotoError> refusal_;
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
