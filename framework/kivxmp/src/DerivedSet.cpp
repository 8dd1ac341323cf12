#include "framework/kivxmp/src/DerivedSet.h"

#include <exception>
#include <new>
#include <set>
#include <string>
#include <utility>

namespace kivxmp {

using kivcore::UString;
using kivcore::filesupport::FileIdentity;
using kivcore::filesupport::InputFile;

namespace {

/// RDF that XMP does not allow means nothing outside of its own packet.
bool Derives(const Node& property)
{
    return property.Form() != NodeForm::kRaw;
}

}  // namespace

void DerivedSet::AddPacket(std::unique_ptr<const __XMPMeta__> packet, DerivedSource source)
{
    packets_.push_back({std::move(packet), std::make_unique<DerivedSource>(std::move(source))});
}

std::vector<DerivedSource> DerivedSet::PacketSources() const
{
    std::vector<DerivedSource> sources;
    for (const Packet& packet : packets_) {
        sources.push_back(*packet.source);
    }
    return sources;
}

void DerivedSet::SetPhoto(const UString& path, const FileIdentity& identity)
{
    // What was read stays: a save changes nothing in it.
    if (!photo_) {
        photoPath_ = path;
        photoIdentity_ = identity;
    }
}

void DerivedSet::ReadPhoto()
{
    if (photo_ || photoPath_.empty()) {
        return;
    }
    photo_.emplace();
    try {
        InputFile file(photoPath_);
        if (file.Identity() == photoIdentity_) {
            photo::FileSource source(file);
            ReadDerived(source, *photo_);
        }
    } catch (const std::bad_alloc&) {
        photo_.reset();
        throw;
    } catch (const std::exception&) {
        // What was read until then counts.
    }
}

DerivedSet::Property DerivedSet::Find(std::string_view uri, std::string_view local)
{
    for (const Packet& packet : packets_) {
        const Node* const node = packet.object->FindProperty(uri, local);
        if (node != nullptr && Derives(*node)) {
            return {node, packet.source.get(), packet.object.get()};
        }
    }
    ReadPhoto();
    if (photo_) {
        if (const Node* const node = photo_->Properties().FindProperty(uri, local)) {
            return {node, photo_->FindSource(uri, local), &photo_->Properties()};
        }
    }
    return {};
}

std::vector<DerivedSet::Property> DerivedSet::All()
{
    ReadPhoto();
    std::vector<Property> all;
    std::set<std::pair<std::string_view, std::string_view>> seen;
    const auto isNew = [&seen](const Node& node) {
        return seen.emplace(node.NamespaceUri(), node.LocalName()).second;
    };
    for (const Packet& packet : packets_) {
        for (const Node* const node : packet.object->Properties()) {
            if (Derives(*node) && isNew(*node)) {
                all.push_back({node, packet.source.get(), packet.object.get()});
            }
        }
    }
    if (photo_) {
        for (const Node* const node : photo_->Properties().Properties()) {
            if (isNew(*node)) {
                all.push_back({node, photo_->FindSource(node->NamespaceUri(), node->LocalName()),
                               &photo_->Properties()});
            }
        }
    }
    return all;
}

}  // namespace kivxmp
