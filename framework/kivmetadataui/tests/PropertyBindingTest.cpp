#include "framework/kivmetadataui/src/PropertyBinding.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>
#include <kivxmp/XMPAccess.h>

namespace kivmetadataui {
namespace {

using kivmetadata::ValueType;
using samples::Utf8;

using Edit = std::function<void(Field& field)>;

Edit Text(const char16_t* text)
{
    return [text](Field& field) { samples::TypeInto(field, text); };
}

Edit Language(const char* tag, const char16_t* text)
{
    return [=](Field& field) { static_cast<LanguageField&>(field).SetTextOf(tag, text); };
}

Edit Add(const char16_t* text)
{
    return [=](Field& field) { static_cast<ListField&>(field).Add(text); };
}

Edit Remove(std::size_t index)
{
    return [=](Field& field) { static_cast<ListField&>(field).Remove(index); };
}

/// Both texts, one after the other.
Edit ThereAndBack(Edit there, Edit back)
{
    return [=](Field& field) {
        there(field);
        field.EndEdit();
        EXPECT_TRUE(field.IsChanged());
        back(field);
        field.EndEdit();
    };
}

kivxmp::Path PathOf(const __XMPMeta__& meta, const std::string& path)
{
    return meta.ParsePath(path);
}

PropertyBinding Bind(const __XMPMeta__& meta, const std::string& path, ValueType type)
{
    return MakeBinding(meta, PathOf(meta, path), samples::MakeProperty(path, type));
}

struct WriteCase {
    const char* story;
    const char* path;
    ValueType type;
    const char* before;  // the property in the packet; empty for none
    Edit edit;
    const char* after;  // the property's JSON afterwards
};

std::vector<WriteCase> WriteCases()
{
    return {
        {"a text", "photoshop:City", ValueType::kText, "<photoshop:City>Bonn</photoshop:City>",
         Text(u"Köln"), "\"Köln\""},
        {"a new text", "photoshop:City", ValueType::kText, "", Text(u"Köln"), "\"Köln\""},
        {"an emptied text goes", "photoshop:City", ValueType::kText,
         "<photoshop:City>Bonn</photoshop:City>", Text(u""), "null"},
        {"a long text", "photoshop:City", ValueType::kLongText, "", Text(u"a\nb"), "\"a\\nb\""},
        {"a URI stays a URI", "dc:source", ValueType::kText,
         "<dc:source rdf:resource='http://a.b/'/>", Text(u"http://c.d/"), "\"http://c.d/\""},
        {"one language", "dc:title", ValueType::kLanguageAlternative,
         "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
         "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>",
         Language("de", u"Ostsee"), "{\"x-default\":\"Sea\",\"de\":\"Ostsee\"}"},
        {"a new language", "dc:title", ValueType::kLanguageAlternative,
         "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li></rdf:Alt></dc:title>",
         Language("fr", u"Mer"), "{\"x-default\":\"Sea\",\"fr\":\"Mer\"}"},
        {"a first language", "dc:title", ValueType::kLanguageAlternative, "", Text(u"Sea"),
         "{\"x-default\":\"Sea\"}"},
        {"the last language goes", "dc:title", ValueType::kLanguageAlternative,
         "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li></rdf:Alt></dc:title>",
         Text(u""), "null"},
        {"an entry more", "dc:subject", ValueType::kBag,
         "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>", Add(u"sky"),
         "[\"sea\",\"sky\"]"},
        {"an entry less", "dc:subject", ValueType::kBag,
         "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>",
         Remove(0), "[\"sky\"]"},
        {"no entry", "dc:subject", ValueType::kBag,
         "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>", Remove(0), "null"},
        {"a sequence where a bag is defined", "dc:subject", ValueType::kBag,
         "<dc:subject><rdf:Seq><rdf:li>sea</rdf:li></rdf:Seq></dc:subject>", Add(u"sky"),
         "[\"sea\",\"sky\"]"},
        {"a new list", "dc:creator", ValueType::kSequence, "", Add(u"Ann\nBob"),
         "[\"Ann\",\"Bob\"]"},
        {"a date", "xmp:CreateDate", ValueType::kDate,
         "<xmp:CreateDate>2024-05-17T14:30:05.250+02:00</xmp:CreateDate>",
         Text(u"2024-05-18 9:00 UTC"), "\"2024-05-18T09:00Z\""},
        {"less of a date", "xmp:CreateDate", ValueType::kDate,
         "<xmp:CreateDate>2024-05-17</xmp:CreateDate>", Text(u"2024-05"), "\"2024-05\""},
        {"an integer", "tiff:Orientation", ValueType::kInteger, "", Text(u"+3"), "\"3\""},
        {"a decimal", "exif:GPSImgDirection", ValueType::kNumber, "", Text(u"1,50"), "\"1.50\""},
        {"a fraction", "exif:FNumber", ValueType::kRational, "<exif:FNumber>28/10</exif:FNumber>",
         Text(u"3,5"), "\"7/2\""},
        {"a choice", "photoshop:Urgency", ValueType::kChoice, "", Text(u"4"), "\"4\""},
        {"stars", "xmp:Rating", ValueType::kRating, "<xmp:Rating>2</xmp:Rating>",
         [](Field& field) { static_cast<RatingField&>(field).SetStars(5); }, "\"5\""},
        {"yes", "xmpRights:Marked", ValueType::kBoolean, "",
         [](Field& field) { static_cast<YesNoField&>(field).SetValue(true); }, "\"True\""},
        {"not set", "xmpRights:Marked", ValueType::kBoolean, "<dc:source>x</dc:source>",
         [](Field& field) { static_cast<YesNoField&>(field).SetValue(std::nullopt); }, "null"},
    };
}

TEST(PropertyBinding, Writes)
{
    for (const WriteCase& row : WriteCases()) {
        SCOPED_TRACE(row.story);
        const std::string rest = "<!-- colour --><xmp:Label  >Red &amp; more</xmp:Label  >";
        const auto meta = samples::Parse(rest + "\n   " + row.before);
        const PropertyBinding binding = Bind(*meta, row.path, row.type);
        EXPECT_FALSE(binding.field->IsReadOnly());
        row.edit(*binding.field);
        binding.field->EndEdit();
        EXPECT_FALSE(binding.field->HasError()) << Utf8(binding.field->Error());
        const auto changed = meta->Clone();
        WriteField(binding, *changed);
        EXPECT_EQ(kivxmp::ToJson(*changed, changed->Find(row.path)), row.after);
        // The rest keeps its very bytes.
        EXPECT_NE(changed->Serialize().find(rest), std::string::npos);
    }
}

// Everything but the value and the padding that makes room for it.
TEST(PropertyBinding, ChangesNothingElse)
{
    const std::string before = "<photoshop:City>Bonn</photoshop:City>";
    const std::string after = "<photoshop:City>Köln</photoshop:City>";
    const std::string others =
        "<xmp:Label\n>Red</xmp:Label><dc:source rdf:resource='http://a.b/'/>\n";
    const auto meta = samples::Parse(others + before);
    const PropertyBinding binding = Bind(*meta, "photoshop:City", ValueType::kText);
    Text(u"Köln")(*binding.field);
    const auto changed = meta->Clone();
    WriteField(binding, *changed);
    std::string want = samples::Packet(others + after);
    want.erase(want.find("    \n<?xpacket"), 1);  // one byte of padding less
    EXPECT_EQ(changed->Serialize(), want);
}

// The URI form is kept by itself: JSON does not show it.
TEST(PropertyBinding, KeepsForms)
{
    const auto meta = samples::Parse(
        "<dc:source rdf:resource='http://a.b/'/>"
        "<dc:subject><rdf:Seq><rdf:li>sea</rdf:li></rdf:Seq></dc:subject>");
    const PropertyBinding source = Bind(*meta, "dc:source", ValueType::kText);
    const PropertyBinding subject = Bind(*meta, "dc:subject", ValueType::kBag);
    const PropertyBinding statement = Bind(*meta, "xmpRights:WebStatement", ValueType::kUri);
    Text(u"http://c.d/")(*source.field);
    Add(u"sky")(*subject.field);
    Text(u"http://e.f/")(*statement.field);
    const auto changed = meta->Clone();
    for (const PropertyBinding* const binding : {&source, &subject, &statement}) {
        WriteField(*binding, *changed);
    }
    EXPECT_EQ(changed->Find("dc:source")->Form(), kivxmp::NodeForm::kUri);
    EXPECT_EQ(changed->Find("dc:subject")->Form(), kivxmp::NodeForm::kSeq);
    EXPECT_EQ(changed->Find("xmpRights:WebStatement")->Form(), kivxmp::NodeForm::kUri);
}

struct BackCase {
    const char* path;
    ValueType type;
    const char* property;
    Edit there;
    Edit back;
};

std::vector<BackCase> BackCases()
{
    return {
        {"photoshop:City", ValueType::kText, "<photoshop:City>Bonn</photoshop:City>", Text(u"Köln"),
         Text(u"Bonn")},
        // An empty property is not removed by looking at it.
        {"photoshop:City", ValueType::kText, "<photoshop:City></photoshop:City>", Text(u"Köln"),
         Text(u"")},
        {"dc:title", ValueType::kLanguageAlternative,
         "<dc:title><rdf:Alt><rdf:li xml:lang='de'>Meer</rdf:li>"
         "<rdf:li xml:lang='fr'>Mer</rdf:li></rdf:Alt></dc:title>",
         Text(u""), Text(u"Meer")},
        {"dc:subject", ValueType::kBag,
         "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>",
         Remove(0), Add(u"sea")},
        {"xmp:CreateDate", ValueType::kDate,
         "<xmp:CreateDate>2024-05-17T14:30:05.250+02:00</xmp:CreateDate>", Text(u"2024"),
         Text(u"2024/5/17 14:30:05.250+2")},
        {"xmp:CreateDate", ValueType::kDate, "<xmp:CreateDate>last summer</xmp:CreateDate>",
         Text(u"2024"), Text(u"last summer")},
        {"exif:FNumber", ValueType::kRational, "<exif:FNumber>28/10</exif:FNumber>", Text(u"3"),
         Text(u"2,8")},
        {"tiff:Orientation", ValueType::kInteger, "<dc:source>x</dc:source>", Text(u"3"),
         Text(u"")},
    };
}

TEST(PropertyBinding, ThereAndBackIsByteForByte)
{
    for (const BackCase& row : BackCases()) {
        SCOPED_TRACE(row.property);
        const auto meta = samples::Parse(row.property);
        const PropertyBinding binding = Bind(*meta, row.path, row.type);
        ThereAndBack(row.there, row.back)(*binding.field);
        EXPECT_FALSE(binding.field->IsChanged());
        const auto changed = meta->Clone();
        WriteField(binding, *changed);
        EXPECT_FALSE(changed->IsChanged());
        EXPECT_EQ(changed->Serialize(), samples::Packet(row.property));
    }
}

struct LockCase {
    const char* path;
    ValueType type;
    const char* property;
    const char* shown;
    const char* explanation;
};

constexpr char kList[] = "<dc:x><rdf:Bag><rdf:li>a</rdf:li><rdf:li>b</rdf:li></rdf:Bag></dc:x>";
constexpr char kAlternatives[] =
    "<dc:x><rdf:Alt><rdf:li xml:lang='x-default'>a</rdf:li></rdf:Alt></dc:x>";
constexpr char kStructure[] = "<dc:x rdf:parseType='Resource'><dc:y>a</dc:y></dc:x>";

constexpr LockCase kLockCases[] = {
    {"dc:x", ValueType::kText, kList, "a; b",
     "The file holds a list here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kDate, kAlternatives, "x-default: a",
     "The file holds alternatives here. They are shown as they are and stay so."},
    {"dc:x", ValueType::kText, kStructure, "y: a",
     "The file holds a structure here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kLanguageAlternative, "<dc:x>a</dc:x>", "a",
     "The file holds a single text here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kLanguageAlternative, kList, "a; b",
     "The file holds a list here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kLanguageAlternative, "<dc:x><rdf:Alt><rdf:li>a</rdf:li></rdf:Alt></dc:x>",
     "a", "The file holds alternatives here. They are shown as they are and stay so."},
    {"dc:x", ValueType::kBag, "<dc:x>a</dc:x>", "a",
     "The file holds a single text here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kSequence, kAlternatives, "x-default: a",
     "The file holds alternatives here. They are shown as they are and stay so."},
    {"dc:x", ValueType::kBag,
     "<dc:x><rdf:Bag><rdf:li rdf:parseType='Resource'><dc:y>a</dc:y></rdf:li></rdf:Bag></dc:x>",
     "y: a", "The file holds a list here. It is shown as it is and stays so."},
    {"dc:x", ValueType::kRating, "<dc:x>4.5</dc:x>", "4.5",
     "“4.5” is no rating from 0 to 5. It is shown as it is and stays so."},
    {"dc:x", ValueType::kBoolean, "<dc:x>maybe</dc:x>", "maybe",
     "“maybe” is neither yes nor no. It is shown as it is and stays so."},
};

TEST(PropertyBinding, LocksWhatItCannotEdit)
{
    for (const LockCase& row : kLockCases) {
        SCOPED_TRACE(row.property);
        const auto meta = samples::Parse(row.property);
        const PropertyBinding binding = Bind(*meta, row.path, row.type);
        EXPECT_EQ(binding.field->Kind(), FieldKind::kDisplay);
        EXPECT_TRUE(binding.field->IsReadOnly());
        EXPECT_EQ(Utf8(binding.field->DisplayText()), row.shown);
        EXPECT_EQ(Utf8(binding.field->Explanation()), row.explanation);
    }
}

TEST(PropertyBinding, CameraValuesAreFormatted)
{
    const auto meta = samples::Parse("<exif:ExposureTime>1/250</exif:ExposureTime>");
    auto definition = samples::MakeProperty("ExposureTime", ValueType::kRational);
    definition->isReadOnly = true;
    const PropertyBinding binding =
        MakeBinding(*meta, PathOf(*meta, "exif:ExposureTime"), definition);
    EXPECT_EQ(binding.field->DisplayText(), u"1/250 s");
    EXPECT_TRUE(binding.field->Explanation().empty());
}

TEST(PropertyBinding, TakesWordsFromTheDefinition)
{
    const auto meta = samples::Parse("");
    auto definition = samples::MakeProperty("City", ValueType::kText);
    definition->label = u"City";
    definition->description = u"Where it was taken";
    definition->placeholder = u"Name of the city";
    const PropertyBinding binding = MakeBinding(*meta, PathOf(*meta, "photoshop:City"), definition);
    EXPECT_EQ(binding.field->Path(), "photoshop:City");
    EXPECT_EQ(binding.field->Hint(), u"Where it was taken");
    EXPECT_EQ(binding.field->Placeholder(), u"Name of the city");
    EXPECT_FALSE(binding.field->IsReadOnly());
}

TEST(PropertyBinding, LongAlternatives)
{
    const auto meta = samples::Parse(
        "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>a\nb</rdf:li></rdf:Alt></dc:title>");
    const auto isMultiline = [&meta](const std::string& name) {
        const PropertyBinding binding =
            MakeBinding(*meta, PathOf(*meta, "dc:" + name),
                        samples::MakeProperty(name, ValueType::kLanguageAlternative));
        return static_cast<const LanguageField&>(*binding.field).IsMultiline();
    };
    EXPECT_TRUE(isMultiline("description"));
    EXPECT_TRUE(isMultiline("title")) << "it has two lines in the packet";
    EXPECT_FALSE(isMultiline("subtitle"));
}

}  // namespace
}  // namespace kivmetadataui
