// The derived properties of one photo, whether its packet holds them or not.

#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/DerivedReader.h"

#include <kivcore/FileStream.h>
#include <kivcore/UString.h>
#include <kivxmp/Derived.h>
#include <kivxmp/XMPMeta.h>

namespace kivxmp {

class DerivedSet {
public:
    /// Adds the packet of another place, which counts before the photo's own data.
    void AddPacket(std::unique_ptr<const __XMPMeta__> packet, DerivedSource source);
    /// Where those packets come from.
    std::vector<DerivedSource> PacketSources() const;
    /// Lets the Exif and IIM data of a photo be read at the first question, if it is then in the
    /// state given here.
    void SetPhoto(const kivcore::UString& path, const kivcore::filesupport::FileIdentity& identity);

    struct Property {
        const Node* node = nullptr;  // null where nobody tells it
        const DerivedSource* source = nullptr;
        const __XMPMeta__* object = nullptr;  // that holds it
    };
    Property Find(std::string_view uri, std::string_view local);
    /// One of each name.
    std::vector<Property> All();

private:
    struct Packet {
        std::unique_ptr<const __XMPMeta__> object;
        std::unique_ptr<const DerivedSource> source;
    };
    void ReadPhoto();

    std::vector<Packet> packets_;
    std::optional<DerivedSink> photo_;
    kivcore::UString photoPath_;  // until it was read
    kivcore::filesupport::FileIdentity photoIdentity_;
};

}  // namespace kivxmp
