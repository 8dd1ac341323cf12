#include "framework/kivxmp/src/TagConverters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "framework/kivxmp/src/TagDates.h"

namespace kivxmp::photo {

namespace {

// More keywords than anybody looks at.
constexpr std::size_t kMaxItems = 1024;

bool IsIim(std::string_view name)
{
    return name.starts_with("Iptc.");
}

bool Set(MappedProperty& property, MappedForm form, std::string text)
{
    if (text.empty()) {
        return false;
    }
    property.form = form;
    property.texts = {std::move(text)};
    return true;
}

bool SetItems(MappedProperty& property, MappedForm form, std::vector<std::string> items)
{
    if (items.empty()) {
        return false;
    }
    items.resize(std::min(items.size(), kMaxItems));
    property.form = form;
    property.texts = std::move(items);
    return true;
}

/// Numbers that stand as bytes are numbers, too.
std::vector<Ratio> NumbersOf(const TagValue& tag)
{
    if (!tag.numbers.empty()) {
        return tag.numbers;
    }
    std::vector<Ratio> numbers;
    for (const char c : std::string_view(tag.bytes).substr(0, 16)) {
        numbers.push_back({static_cast<unsigned char>(c), 1});
    }
    return numbers;
}

/// A whole number.
std::optional<std::int64_t> NumberOf(const TagValue& tag)
{
    const std::vector<Ratio> numbers = NumbersOf(tag);
    if (numbers.empty() || numbers.front().denominator != 1) {
        return std::nullopt;
    }
    return numbers.front().numerator;
}

std::string RatioText(const Ratio& ratio)
{
    return std::to_string(ratio.numerator) + "/" + std::to_string(ratio.denominator);
}

bool IsAboveZero(const Ratio& ratio)
{
    return ratio.denominator != 0 && ratio.numerator != 0 &&
           (ratio.numerator > 0) == (ratio.denominator > 0);
}

/// Shortest and longest focal length, F numbers at each; 0/0 where unknown. Empty for what is none.
std::vector<std::string> LensParts(const TagValue& tag)
{
    constexpr std::size_t kParts = 4;
    std::vector<std::string> parts;
    if (tag.numbers.size() != kParts || !IsAboveZero(tag.numbers.front())) {
        return parts;
    }
    for (const Ratio& ratio : tag.numbers) {
        parts.push_back(RatioText(ratio));
    }
    return parts;
}

/// "48,51.5000N": degrees, minutes with four to eight decimals, and where to.
std::string Coordinate(const std::vector<Ratio>& parts, std::string_view reference,
                       std::string_view letters, int limitDegrees)
{
    if (parts.empty() || reference.empty() ||
        letters.find(reference.front()) == std::string_view::npos) {
        return {};
    }
    constexpr double kMinutesOf[] = {60, 1, 1.0 / 60};
    double minutes = 0;
    for (std::size_t i = 0; i < std::min(parts.size(), std::size(kMinutesOf)); ++i) {
        // Minutes and seconds that are not given are 0/0 in some cameras.
        if (parts[i].denominator == 0 && (i == 0 || parts[i].numerator != 0)) {
            return {};
        }
        if (parts[i].denominator != 0) {
            minutes += kMinutesOf[i] * static_cast<double>(parts[i].numerator) /
                       static_cast<double>(parts[i].denominator);
        }
    }
    constexpr double kUnits = 1e8;
    constexpr std::int64_t kUnitsInMinute = 100'000'000;
    if (!(minutes >= 0) || minutes > limitDegrees * 60.0) {
        return {};
    }
    const auto units = static_cast<std::int64_t>(std::llround(minutes * kUnits));
    const std::int64_t whole = units / kUnitsInMinute;
    std::string decimals = std::to_string(kUnitsInMinute + units % kUnitsInMinute).substr(1);
    constexpr std::size_t kLeastDecimals = 4;
    while (decimals.size() > kLeastDecimals && decimals.back() == '0') {
        decimals.pop_back();
    }
    return std::to_string(whole / 60) + "," + std::to_string(whole % 60) + "." + decimals +
           reference.front();
}

struct DateTags {
    std::string_view date;
    std::string_view fraction;
    std::string_view zone;
};

constexpr DateTags kDateTags[] = {
    {"Exif.Photo.DateTimeOriginal", "Exif.Photo.SubSecTimeOriginal",
     "Exif.Photo.OffsetTimeOriginal"},
    {"Exif.Photo.DateTimeDigitized", "Exif.Photo.SubSecTimeDigitized",
     "Exif.Photo.OffsetTimeDigitized"},
    {"Exif.Image.DateTime", "Exif.Photo.SubSecTime", "Exif.Photo.OffsetTime"},
};

std::string IimText(const Tags& tags, const TagValue& tag)
{
    return TextOfIim(tag.bytes, tags.Encoding());
}

template <class TextOfTag>
std::vector<std::string> AllTexts(const Tags& tags, std::string_view name,
                                  const TextOfTag& textOfTag)
{
    std::vector<std::string> texts;
    for (const TagValue* const tag : tags.FindAll(name)) {
        if (std::string text = textOfTag(*tag); !text.empty()) {
            texts.push_back(std::move(text));
        }
    }
    return texts;
}

std::vector<std::string> AllIimTexts(const Tags& tags, const TagValue& tag)
{
    return AllTexts(tags, tag.name, [&](const TagValue& each) { return IimText(tags, each); });
}

/// Behind the colon number `colon` (from 1) up to the next one.
std::string_view ColonPart(std::string_view text, int colon)
{
    for (; colon > 0; --colon) {
        const std::size_t at = text.find(':');
        if (at == std::string_view::npos) {
            return {};
        }
        text.remove_prefix(at + 1);
    }
    return text.substr(0, text.find(':'));
}

}  // namespace

Tags::Tags(const TagList& exif, const TagList& iim) : exif_(exif), iim_(iim)
{
    encoding_ = IimEncodingOf(Bytes("Iptc.Envelope.CharacterSet"));
}

const std::vector<TagValue>& Tags::ListOf(std::string_view name) const
{
    return IsIim(name) ? iim_.values : exif_.values;
}

const TagValue* Tags::Find(std::string_view name) const
{
    const std::vector<TagValue>& list = ListOf(name);
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const TagValue& tag) { return tag.name == name; });
    return found == list.end() ? nullptr : &*found;
}

std::string_view Tags::Bytes(std::string_view name) const
{
    const TagValue* const tag = Find(name);
    return tag == nullptr ? std::string_view() : tag->bytes;
}

std::vector<const TagValue*> Tags::FindAll(std::string_view name) const
{
    std::vector<const TagValue*> all;
    for (const TagValue& tag : ListOf(name)) {
        if (tag.name == name) {
            all.push_back(&tag);
        }
    }
    return all;
}

bool ConvertText(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kText, TextOf(tag.bytes));
}

bool ConvertDefaultLanguage(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kLanguage, TextOf(tag.bytes));
}

bool ConvertArtists(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kSeq, SplitList(TextOf(tag.bytes)));
}

bool ConvertCopyright(const Tags&, const TagValue& tag, MappedProperty& property)
{
    const std::string_view bytes = tag.bytes;
    const std::size_t end = bytes.find('\0');
    const std::string photographer = TextOf(bytes);
    const std::string editor =
        end == std::string_view::npos ? std::string() : TextOf(bytes.substr(end + 1));
    const bool isBoth = !photographer.empty() && !editor.empty();
    return Set(property, MappedForm::kLanguage, photographer + (isBoth ? "\n" : "") + editor);
}

bool ConvertComment(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kLanguage, TextOfComment(tag.bytes, tags.ExifOrder()));
}

bool ConvertCommentText(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kText, TextOfComment(tag.bytes, tags.ExifOrder()));
}

bool ConvertWindowsLanguage(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kLanguage, TextOfUtf16(tag.bytes, ByteOrder::kLittle));
}

bool ConvertWindowsBag(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kBag,
                    SplitList(TextOfUtf16(tag.bytes, ByteOrder::kLittle)));
}

bool ConvertWindowsSeq(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kSeq,
                    SplitList(TextOfUtf16(tag.bytes, ByteOrder::kLittle)));
}

bool ConvertWhole(const Tags&, const TagValue& tag, MappedProperty& property)
{
    const std::optional<std::int64_t> number = NumberOf(tag);
    return number && Set(property, MappedForm::kText, std::to_string(*number));
}

bool ConvertWholeAboveZero(const Tags&, const TagValue& tag, MappedProperty& property)
{
    const std::optional<std::int64_t> number = NumberOf(tag);
    return number > 0 && Set(property, MappedForm::kText, std::to_string(*number));
}

bool ConvertWholeSeq(const Tags&, const TagValue& tag, MappedProperty& property)
{
    std::vector<std::string> items;
    for (const Ratio& number : NumbersOf(tag)) {
        if (number.denominator == 1 && number.numerator > 0) {
            items.push_back(std::to_string(number.numerator));
        }
    }
    return SetItems(property, MappedForm::kSeq, std::move(items));
}

bool ConvertRatio(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return !tag.numbers.empty() && tag.numbers.front().denominator != 0 &&
           Set(property, MappedForm::kText, RatioText(tag.numbers.front()));
}

bool ConvertRatioAboveZero(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return !tag.numbers.empty() && IsAboveZero(tag.numbers.front()) &&
           ConvertRatio(tags, tag, property);
}

bool ConvertLensSeq(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kSeq, LensParts(tag));
}

bool ConvertLensText(const Tags&, const TagValue& tag, MappedProperty& property)
{
    std::string text;
    for (const std::string& part : LensParts(tag)) {
        text += (text.empty() ? "" : " ") + part;
    }
    return Set(property, MappedForm::kText, std::move(text));
}

bool ConvertPictureSize(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    const TagValue* const kind = tags.Find("Exif.Image.NewSubfileType");
    const std::int64_t flags = kind == nullptr ? 0 : NumberOf(*kind).value_or(0);
    const bool isPreview = (flags & 1) != 0;
    return !isPreview && ConvertWholeAboveZero(tags, tag, property);
}

bool ConvertVersion(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    constexpr std::size_t kDigits = 4;
    return tag.bytes.size() == kDigits &&
           std::all_of(tag.bytes.begin(), tag.bytes.end(),
                       [](char c) { return c >= '0' && c <= '9'; }) &&
           ConvertText(tags, tag, property);
}

bool ConvertGpsVersion(const Tags&, const TagValue& tag, MappedProperty& property)
{
    constexpr std::size_t kNumbers = 4;
    if (tag.bytes.size() != kNumbers) {
        return false;
    }
    std::string text;
    for (const Ratio& number : NumbersOf(tag)) {
        text += (text.empty() ? "" : ".") + std::to_string(number.numerator);
    }
    return Set(property, MappedForm::kText, std::move(text));
}

bool ConvertRating(const Tags&, const TagValue& tag, MappedProperty& property)
{
    constexpr std::int64_t kMost = 5;
    const std::optional<std::int64_t> number = NumberOf(tag);
    return number && *number > 0 && *number <= kMost &&
           Set(property, MappedForm::kText, std::to_string(*number));
}

bool ConvertFlash(const Tags&, const TagValue& tag, MappedProperty& property)
{
    const std::optional<std::int64_t> number = NumberOf(tag);
    if (!number || *number < 0 || *number > 0xFF) {
        return false;
    }
    const auto flag = [&](int bit) {
        return std::string((*number >> bit & 1) != 0 ? "True" : "False");
    };
    const auto two = [&](int bit) { return std::to_string(*number >> bit & 3); };
    property.form = MappedForm::kFields;
    property.fields = {{"Fired", flag(0)},
                       {"Return", two(1)},
                       {"Mode", two(3)},
                       {"Function", flag(5)},
                       {"RedEyeMode", flag(6)}};
    return true;
}

namespace {

bool SetCoordinate(const Tags& tags, const TagValue& tag, std::string_view letters,
                   int limitDegrees, MappedProperty& property)
{
    return Set(property, MappedForm::kText,
               Coordinate(tag.numbers, tags.Bytes(tag.name + "Ref"), letters, limitDegrees));
}

}  // namespace

bool ConvertLatitude(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return SetCoordinate(tags, tag, "NS", 90, property);
}

bool ConvertLongitude(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return SetCoordinate(tags, tag, "EW", 180, property);
}

bool ConvertDate(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    DateTags others;
    for (const DateTags& row : kDateTags) {
        others = row.date == tag.name ? row : others;
    }
    return Set(property, MappedForm::kText,
               ExifDate(tag.bytes, tags.Bytes(others.fraction), tags.Bytes(others.zone)));
}

bool ConvertGpsTime(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    // Cameras before Exif 2.2 tell no date of it.
    constexpr std::string_view kDays[] = {
        "Exif.GPSInfo.GPSDateStamp", "Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeDigitized"};
    std::string text;
    for (const std::string_view day : kDays) {
        text = text.empty() ? GpsDate(tags.Bytes(day), tag.numbers) : text;
    }
    return Set(property, MappedForm::kText, std::move(text));
}

bool ConvertIimText(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kText, IimText(tags, tag));
}

bool ConvertIimLanguage(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kLanguage, IimText(tags, tag));
}

bool ConvertIimBag(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kBag, AllIimTexts(tags, tag));
}

bool ConvertIimSeq(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return SetItems(property, MappedForm::kSeq, AllIimTexts(tags, tag));
}

bool ConvertIimUrgency(const Tags&, const TagValue& tag, MappedProperty& property)
{
    return tag.bytes.size() == 1 && tag.bytes[0] >= '1' && tag.bytes[0] <= '8' &&
           Set(property, MappedForm::kText, tag.bytes);
}

bool ConvertIimSubjects(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    constexpr std::size_t kDigits = 8;
    return SetItems(property, MappedForm::kBag, AllTexts(tags, tag.name, [&](const TagValue& each) {
                        const std::string text = IimText(tags, each);
                        const std::string_view code = ColonPart(text, 1);
                        return code.size() == kDigits ? std::string(code) : std::string();
                    }));
}

bool ConvertIimGenre(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    return Set(property, MappedForm::kText, std::string(ColonPart(IimText(tags, tag), 1)));
}

bool ConvertIimDate(const Tags& tags, const TagValue& tag, MappedProperty& property)
{
    const std::string_view time = tag.name == "Iptc.Application2.DateCreated"
                                      ? "Iptc.Application2.TimeCreated"
                                      : "Iptc.Application2.DigitizationTime";
    return Set(property, MappedForm::kText, IimDate(tag.bytes, tags.Bytes(time)));
}

}  // namespace kivxmp::photo
