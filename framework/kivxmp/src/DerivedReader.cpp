#include "framework/kivxmp/src/DerivedReader.h"

#include <utility>

#include <kivxmp/XMPError.h>

namespace kivxmp {

namespace {

std::string KeyOf(std::string_view uri, std::string_view local)
{
    std::string key(uri);
    key += '}';
    key += local;
    return key;
}

PathStep FieldStep(std::string_view uri, std::string_view local)
{
    PathStep step;
    step.uri = uri;
    step.local = local;
    return step;
}

}  // namespace

DerivedSink::DerivedSink() : properties_(__XMPMeta__::Create()) {}

DerivedSink::~DerivedSink() = default;

template <class Edit>
bool DerivedSink::Add(std::string_view uri, std::string_view local, DerivedSource&& source,
                      const Edit& edit)
{
    if (properties_->FindProperty(uri, local) != nullptr) {
        return false;
    }
    const Path path{FieldStep(uri, local)};
    try {
        edit(path);
    } catch (const XMP_Error&) {
        properties_->Remove(path);
        return false;
    }
    sources_.insert_or_assign(KeyOf(uri, local), std::move(source));
    return true;
}

bool DerivedSink::AddText(std::string_view uri, std::string_view local, std::string_view text,
                          DerivedSource source)
{
    return Add(uri, local, std::move(source),
               [&](const Path& path) { properties_->SetText(path, text); });
}

bool DerivedSink::AddList(std::string_view uri, std::string_view local, NodeForm form,
                          std::span<const std::string> items, DerivedSource source)
{
    return Add(uri, local, std::move(source),
               [&](const Path& path) { properties_->SetList(path, form, items); });
}

bool DerivedSink::AddLanguages(std::string_view uri, std::string_view local,
                               std::span<const LanguageText> items, DerivedSource source)
{
    return Add(uri, local, std::move(source),
               [&](const Path& path) { properties_->SetLanguages(path, items); });
}

bool DerivedSink::AddFields(std::string_view uri, std::string_view local,
                            std::span<const std::pair<std::string, std::string>> fields,
                            DerivedSource source)
{
    return Add(uri, local, std::move(source), [&](const Path& path) {
        properties_->Ensure(path, NodeForm::kStruct);
        for (const auto& [name, text] : fields) {
            properties_->SetText(Path{path.front(), FieldStep(uri, name)}, text);
        }
    });
}

const DerivedSource* DerivedSink::FindSource(std::string_view uri, std::string_view local) const
{
    const auto found = sources_.find(KeyOf(uri, local));
    return found == sources_.end() ? nullptr : &found->second;
}

}  // namespace kivxmp
