// What a metadata dialog edits: an XMP object behind a small interface. Values are those of the
// packet; where it lacks a property, those that the photo tells elsewhere (<kivxmp/Derived.h>,
// which also names their source).

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <kivmetadata/Export.h>
#include <kivxmp/XMPMeta.h>

namespace kivmetadata {

/// What is known of one path.
enum class PathStatus { kMissing, kPresent, kReadOnly };

/// Access to the metadata of one object. Virtual operations stand in a fixed order.
class KIVMETADATA_API MetaDataProvider {
public:
    MetaDataProvider() = default;
    MetaDataProvider(const MetaDataProvider&) = delete;
    MetaDataProvider& operator=(const MetaDataProvider&) = delete;

    virtual ~MetaDataProvider();
    /// Whether the property at `path` ("dc:title[@de]") is there, be it derived, and may change.
    /// Throws XMP_Error for what is no path.
    virtual PathStatus QueryPathStatus(const std::string& path) const = 0;
    /// Whether changes may be written at all.
    virtual bool CanWriteChanges() const = 0;
    /// Paths of all top-level properties of the namespace; of all namespaces for an empty one.
    /// Those of the packet first, then the derived ones.
    virtual std::vector<std::string> GetAllPathsForDynamicSchema(
        const std::string& namespaceUri) const = 0;
    /// The serialized packet, for looking at.
    virtual std::string DebugSerializedXMP() const = 0;
    /// One line that tells what this is.
    virtual std::string DebugDescription() const = 0;
    /// The XMP object, not owned by the caller; null where there is none.
    virtual __XMPMeta__* MetaDataAccess() const = 0;
    /// Called after changes were written.
    virtual void ChangesWritten() = 0;
    /// Makes `changed` the content of the XMP object, in one step. Throws XMP_Error; the object is
    /// then as it was.
    virtual void DoWriteChanges(const __XMPMeta__& changed) = 0;
};

/// A provider over an XMP object that lives elsewhere.
class KIVMETADATA_API TypicalProviderImpl : public MetaDataProvider {
public:
    ~TypicalProviderImpl() override;
    PathStatus QueryPathStatus(const std::string& path) const override;
    bool CanWriteChanges() const override;
    std::vector<std::string> GetAllPathsForDynamicSchema(
        const std::string& namespaceUri) const override;
    std::string DebugSerializedXMP() const override;
    std::string DebugDescription() const override;
    __XMPMeta__* MetaDataAccess() const override;
    void ChangesWritten() override;
    void DoWriteChanges(const __XMPMeta__& changed) override;

protected:
    /// `meta` is not owned and must outlive the provider; may be null.
    explicit TypicalProviderImpl(__XMPMeta__* meta);

private:
    __XMPMeta__* meta_;
};

}  // namespace kivmetadata
