// What a photo's Exif and IIM data tell, as properties.

#include "framework/kivxmp/src/DerivedReader.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ExifIimReader.h"
#include "framework/kivxmp/src/IimBlock.h"
#include "framework/kivxmp/src/MetadataBlocks.h"
#include "framework/kivxmp/src/PhotoFormat.h"
#include "framework/kivxmp/src/TagMapping.h"

#include <kivxmp/XMPNamespaces.h>

namespace kivxmp {

namespace {

void Add(const photo::MappedProperty& property, DerivedSink& sink)
{
    const std::string uri = NamespaceOfPrefix(property.prefix);
    const std::string_view name = property.name;
    DerivedSource source{property.isIim ? DerivedFrom::kIim : DerivedFrom::kExif,
                         std::string(property.tag)};
    switch (property.form) {
        case photo::MappedForm::kText:
            sink.AddText(uri, name, property.texts.front(), std::move(source));
            break;
        case photo::MappedForm::kLanguage: {
            const LanguageText text[] = {{"x-default", property.texts.front()}};
            sink.AddLanguages(uri, name, text, std::move(source));
            break;
        }
        case photo::MappedForm::kBag:
            sink.AddList(uri, name, NodeForm::kBag, property.texts, std::move(source));
            break;
        case photo::MappedForm::kSeq:
            sink.AddList(uri, name, NodeForm::kSeq, property.texts, std::move(source));
            break;
        case photo::MappedForm::kFields:
            sink.AddFields(uri, name, property.fields, std::move(source));
            break;
    }
}

}  // namespace

void ReadDerived(photo::ByteSource& photo, DerivedSink& sink)
{
    const photo::FormatRow* const row = photo::RecogniseFormat(photo);
    if (row == nullptr || row->read == nullptr) {
        return;
    }
    const std::unique_ptr<photo::PhotoFormat> format = row->read(photo);
    const photo::MetadataBlocks blocks = photo::ReadMetadataBlocks(*format, photo);
    const photo::TagList exif = photo::ReadExifTags(blocks.exif, photo::IsMappedTag);
    const photo::TagList iim = photo::ReadIimTags(photo::SoundIim(blocks.iim), photo::IsMappedTag);
    for (const photo::MappedProperty& property : photo::MapTags(exif, iim)) {
        Add(property, sink);
    }
}

}  // namespace kivxmp
