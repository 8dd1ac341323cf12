#include <kivmetadata/Provider.h>

#include <kivxmp/Derived.h>

namespace kivmetadata {

MetaDataProvider::~MetaDataProvider() = default;

TypicalProviderImpl::TypicalProviderImpl(__XMPMeta__* meta) : meta_(meta) {}

TypicalProviderImpl::~TypicalProviderImpl() = default;

PathStatus TypicalProviderImpl::QueryPathStatus(const std::string& path) const
{
    if (meta_ == nullptr) {
        return PathStatus::kMissing;
    }
    const kivxmp::Node* const node = kivxmp::FindWithDerived(*meta_, path);
    if (node == nullptr) {
        return PathStatus::kMissing;
    }
    return node->Form() == kivxmp::NodeForm::kRaw ? PathStatus::kReadOnly : PathStatus::kPresent;
}

bool TypicalProviderImpl::CanWriteChanges() const
{
    return meta_ != nullptr;
}

std::vector<std::string> TypicalProviderImpl::GetAllPathsForDynamicSchema(
    const std::string& namespaceUri) const
{
    std::vector<std::string> paths;
    if (meta_ == nullptr) {
        return paths;
    }
    const auto add = [&](const __XMPMeta__::Visit& visit) {
        if (visit.depth == 0 && !visit.isQualifier &&
            (namespaceUri.empty() || visit.node.NamespaceUri() == namespaceUri)) {
            paths.push_back(visit.path);
        }
        return true;
    };
    meta_->Walk(add);
    kivxmp::DerivedProperties(*meta_)->Walk(add);
    return paths;
}

std::string TypicalProviderImpl::DebugSerializedXMP() const
{
    return meta_ == nullptr ? std::string() : meta_->Serialize();
}

std::string TypicalProviderImpl::DebugDescription() const
{
    if (meta_ == nullptr) {
        return "no XMP object";
    }
    return "XMP object of " + std::to_string(meta_->PropertyCount()) + " properties";
}

__XMPMeta__* TypicalProviderImpl::MetaDataAccess() const
{
    return meta_;
}

void TypicalProviderImpl::ChangesWritten() {}

void TypicalProviderImpl::DoWriteChanges(const __XMPMeta__& changed)
{
    if (meta_ == nullptr) {
        throw XMP_Error(kKivXmpBadArgument, "There is no XMP object to write to");
    }
    const auto copy = changed.Clone();
    copy->SetOrigin(meta_->GetOrigin());
    meta_->Swap(*copy);
}

}  // namespace kivmetadata
