#include "framework/kivui/src/ThemeDocument.h"

#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <kivcore/Xml.h>

namespace kivui::ui {
namespace {

class ThemeDocuments : public testing::Test {
protected:
    ThemeDocuments()
    {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    ~ThemeDocuments() override { kivcore::xml::ResetParserFactory(); }

    static std::string Document(const std::string& rows)
    {
        return "<!DOCTYPE colorthemes [\n"
               "<!ENTITY ink \"#102030\">\n"
               "<!ENTITY veil \"#ffffff80\">\n"
               "<!ENTITY step \"0 &#35;000000 | 50 &#35;333333\">\n"
               "]>\n"
               "<colorthemes version=\"5\">\n" +
               rows + "\n</colorthemes>\n";
    }

    // "percent #rrggbbaa" of each frame, or the message.
    static std::string Read(const std::string& text)
    {
        try {
            std::string found;
            for (const KeyFrames& frames : ReadThemeDocument(text, "T").colors) {
                found += "[";
                for (const KeyFrame& frame : frames) {
                    found += Line(frame);
                }
                found += "]";
            }
            return found;
        } catch (const kivcore::xml::ParseError& error) {
            return error.what();
        }
    }

private:
    static std::string Line(const KeyFrame& frame)
    {
        constexpr char kDigits[] = "0123456789abcdef";
        std::string text = "(" + std::to_string(static_cast<int>(frame.percent * 10)) + " #";
        for (const float part :
             {frame.color.red, frame.color.green, frame.color.blue, frame.color.alpha}) {
            const long byte = std::lround(part * 255.0f);
            text += kDigits[byte / 16];
            text += kDigits[byte % 16];
        }
        return text + ")";
    }
};

struct DocumentCase {
    const char* rows;
    const char* want;  // percents times ten
};

constexpr DocumentCase kRowCases[] = {
    {"", ""},
    {R"(<color index="0" keys="0 #000000 | 100 #FFffFF"/>)", "[(0 #000000ff)(1000 #ffffffff)]"},
    {R"(<color index="2" name="x" keys="0 #00000080"/>)", "[][][(0 #00000080)]"},
    // Entities of the document's own DTD, whole rows of frames among them.
    {R"(<color index="0" keys="0 &ink; | 25 &veil;"/>)", "[(0 #102030ff)(250 #ffffff80)]"},
    {R"(<color index="0" keys="&step; | 100 &ink;"/>)",
     "[(0 #000000ff)(500 #333333ff)(1000 #102030ff)]"},
    // White space is free, also none about the bar; parts of a percent count.
    {"<color index=\"0\" keys=\" 12.5\n\t#000000|99 #111111 \"/>",
     "[(125 #000000ff)(990 #111111ff)]"},
    // A hard step, and a single frame.
    {R"(<color index="0" keys="50 #000000 | 50 #ffffff"/>)", "[(500 #000000ff)(500 #ffffffff)]"},
    // Broken rows; the first one stands in line 7.
    {R"(<color keys="0 #000000"/>)", R"(T:7: attribute "index" is missing)"},
    {R"(<color index="0"/>)", R"(T:7: attribute "keys" is missing)"},
    {R"(<color index="4096" keys="0 #000000"/>)", R"(T:7: index "4096" is no number below 4096)"},
    {R"(<color index="-1" keys="0 #000000"/>)", R"(T:7: index "-1" is no number below 4096)"},
    {R"(<color index="1x" keys="0 #000000"/>)", R"(T:7: index "1x" is no number below 4096)"},
    {"<color index=\"0\" keys=\"0 #000000\"/>\n<color index=\"0\" keys=\"0 #000000\"/>",
     "T:8: color 0 stands twice"},
    {R"(<color index="0" keys="50 #000000 | 49 #ffffff"/>)",
     R"(T:7: key frame "49 #ffffff" goes back in brightness)"},
    {R"(<shade index="0"/>)", R"(T:7: element "shade" does not belong here)"},
    {R"(<fontsize index="0" size="12"><x/></fontsize>)",
     R"(T:7: element "x" does not belong here)"},
    {"words", "T:7: text does not belong here"},
    {R"(<fontsize index="64" size="12"/>)", R"(T:7: index "64" is no number below 64)"},
    {R"(<fontsize index="0"/>)", R"(T:7: attribute "size" is missing)"},
    {R"(<fontsize index="0" size="0"/>)", R"(T:7: font size "0" is not above 0 and at most 96)"},
    {R"(<fontsize index="0" size="nan"/>)",
     R"(T:7: font size "nan" is not above 0 and at most 96)"},
    {R"(<fontsize index="0" size="97"/>)", R"(T:7: font size "97" is not above 0 and at most 96)"},
};

TEST_F(ThemeDocuments, Rows)
{
    for (const DocumentCase& row : kRowCases) {
        SCOPED_TRACE(row.rows);
        EXPECT_EQ(Read(Document(row.rows)), row.want);
    }
}

constexpr const char* kBrokenFrames[] = {
    "",          "|",           "0",         "0 ",         "#000000",       "0 000000",
    "0 #00000",  "0 #0000000",  "0 #00000g", "0 #+10000",  "0 #000000 x",   "-1 #000000",
    "101 #0000", "nan #000000", "inf #0000", "0 #000000|", "1e400 #000000", "0x1 #000000",
};

TEST_F(ThemeDocuments, BrokenFramesAreNamed)
{
    for (const char* const keys : kBrokenFrames) {
        SCOPED_TRACE(keys);
        const std::string message =
            Read(Document("<color index=\"0\" keys=\"" + std::string(keys) + "\"/>"));
        EXPECT_EQ(message.substr(0, 16), "T:7: key frame \"") << message;
    }
}

TEST_F(ThemeDocuments, FramesOfAColorAreLimited)
{
    std::string keys = "0 #000000";
    for (std::size_t i = 1; i < kMaxKeyFrames; ++i) {
        keys += "|1 #000000";
    }
    EXPECT_EQ(Read(Document("<color index=\"0\" keys=\"" + keys + "\"/>")).front(), '[');
    EXPECT_EQ(Read(Document("<color index=\"0\" keys=\"" + keys + "|1 #000000\"/>")),
              "T:7: more than 64 key frames");
}

TEST_F(ThemeDocuments, OtherDocumentsAreRefused)
{
    EXPECT_EQ(Read("<other version='5'/>"), R"(T:1: the document is "other", not "colorthemes")");
    EXPECT_EQ(Read("<colorthemes/>"), R"(T:1: attribute "version" is missing)");
    EXPECT_EQ(Read("<colorthemes version='1'/>"), R"(T:1: version "1" is not known)");
    EXPECT_EQ(Read("<colorthemes version='6'/>"), R"(T:1: version "6" is not known)");
    EXPECT_EQ(Read("<colorthemes version='2'/>"), "");
    EXPECT_EQ(Read("").substr(0, 4), "T:1:");
    EXPECT_EQ(Read("<colorthemes version='5'>\n<color").substr(0, 4), "T:2:");
}

TEST_F(ThemeDocuments, EveryCutIsRefused)
{
    const std::string whole = Document(R"(<color index="0" keys="0 &ink;"/>)");
    const std::size_t end = whole.find("</colorthemes>") + std::string("</colorthemes>").size();
    for (std::size_t length = 0; length < end; ++length) {
        // A block of exactly this size.
        const std::string cut(whole.data(), length);
        EXPECT_EQ(Read(cut).substr(0, 2), "T:") << length;
    }
    EXPECT_EQ(Read(whole.substr(0, end)), "[(0 #102030ff)]");
}

TEST_F(ThemeDocuments, MultiplyingEntitiesEndInAnError)
{
    std::string text = "<!DOCTYPE colorthemes [<!ENTITY a0 \"0 #000000 |\">";
    for (int i = 1; i < 12; ++i) {
        const std::string last = "&a" + std::to_string(i - 1) + ";";
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) {
            text += last;
        }
        text += "\">";
    }
    text += "]><colorthemes version='5'><color index='0' keys='&a11;'/></colorthemes>";
    EXPECT_EQ(Read(text).substr(0, 2), "T:");
    EXPECT_EQ(Read("<!DOCTYPE colorthemes [<!ENTITY e SYSTEM 'e.xml'>]>"
                   "<colorthemes version='5'>&e;</colorthemes>")
                  .substr(0, 2),
              "T:");
}

constexpr KeyFrame kRamp[] = {
    {20, {0, 0, 0, 1}}, {40, {1, 0.5f, 0, 0}}, {40, {0, 0, 1, 1}}, {80, {0, 1, 0, 1}}};

struct RampCase {
    float percent;
    ColorRGBA want;
};

constexpr RampCase kRampCases[] = {
    {0, {0, 0, 0, 1}},   // before the first frame
    {20, {0, 0, 0, 1}},  // at it
    {30, {0.5f, 0.25f, 0, 0.5f}},
    {35, {0.75f, 0.375f, 0, 0.25f}},
    {40, {0, 0, 1, 1}},  // the later one of a hard step
    {50, {0, 0.25f, 0.75f, 1}},
    {80, {0, 1, 0, 1}},
    {100, {0, 1, 0, 1}},  // behind the last
};

TEST(ColorAt, Cases)
{
    for (const RampCase& row : kRampCases) {
        SCOPED_TRACE(row.percent);
        const ColorRGBA color = ColorAt(kRamp, row.percent);
        EXPECT_FLOAT_EQ(color.red, row.want.red);
        EXPECT_FLOAT_EQ(color.green, row.want.green);
        EXPECT_FLOAT_EQ(color.blue, row.want.blue);
        EXPECT_FLOAT_EQ(color.alpha, row.want.alpha);
    }
    EXPECT_EQ(ColorAt({}, 50), (ColorRGBA{0, 0, 0, 0}));
    const KeyFrame single[] = {{50, {1, 0, 0, 1}}};
    EXPECT_EQ(ColorAt(single, 0), (ColorRGBA{1, 0, 0, 1}));
    EXPECT_EQ(ColorAt(single, 100), (ColorRGBA{1, 0, 0, 1}));
}

}  // namespace
}  // namespace kivui::ui
