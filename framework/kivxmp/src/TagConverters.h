// How the value of a tag becomes the value of a property. One function for each kind of value; the
// table of tags and properties says which.

#pragma once

#include <string_view>
#include <vector>

#include "framework/kivxmp/src/TagMapping.h"
#include "framework/kivxmp/src/TagText.h"
#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

/// All tags of a photo. Looks at both lists, which must outlive it.
class Tags {
public:
    Tags(const TagList& exif, const TagList& iim);

    /// The first one of that name, or null.
    const TagValue* Find(std::string_view name) const;
    /// Its bytes, or nothing.
    std::string_view Bytes(std::string_view name) const;
    /// All of one name, in their order.
    std::vector<const TagValue*> FindAll(std::string_view name) const;

    ByteOrder ExifOrder() const { return exif_.order; }
    /// Of IIM data.
    IimEncoding Encoding() const { return encoding_; }

private:
    const std::vector<TagValue>& ListOf(std::string_view name) const;

    const TagList& exif_;
    const TagList& iim_;
    IimEncoding encoding_;
};

/// Sets form and value. False for a value that tells nothing.
using Converter = bool (*)(const Tags& tags, const TagValue& tag, MappedProperty& property);

// Texts of Exif.
bool ConvertText(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertDefaultLanguage(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertArtists(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// The photographer's and the editor's, separated by a zero.
bool ConvertCopyright(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// Texts that name their encoding.
bool ConvertComment(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertCommentText(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// Texts of Windows, UTF-16.
bool ConvertWindowsLanguage(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertWindowsBag(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertWindowsSeq(const Tags& tags, const TagValue& tag, MappedProperty& property);

// Numbers.
bool ConvertWhole(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// 0 says that nobody knows.
bool ConvertWholeAboveZero(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertWholeSeq(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertRatio(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertRatioAboveZero(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// Focal lengths and F numbers of a lens, as a sequence and in one text.
bool ConvertLensSeq(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertLensText(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// Of the picture; in the first directory of a raw file that is the one of its preview.
bool ConvertPictureSize(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// Four digits, and four numbers with dots.
bool ConvertVersion(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertGpsVersion(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertRating(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertFlash(const Tags& tags, const TagValue& tag, MappedProperty& property);

// Places and dates.
bool ConvertLatitude(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertLongitude(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertDate(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertGpsTime(const Tags& tags, const TagValue& tag, MappedProperty& property);

// IIM.
bool ConvertIimText(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertIimLanguage(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertIimBag(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertIimSeq(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// One digit from 1 to 8.
bool ConvertIimUrgency(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// The eight digits of "IPTC:15054000:sport:soccer:".
bool ConvertIimSubjects(const Tags& tags, const TagValue& tag, MappedProperty& property);
/// What follows the number in "035:Interview".
bool ConvertIimGenre(const Tags& tags, const TagValue& tag, MappedProperty& property);
bool ConvertIimDate(const Tags& tags, const TagValue& tag, MappedProperty& property);

}  // namespace kivxmp::photo
