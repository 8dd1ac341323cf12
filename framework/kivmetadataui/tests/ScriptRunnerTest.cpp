#include "framework/kivmetadataui/src/ScriptRunner.h"

#include <memory>
#include <stdexcept>
#include <string>

#include "framework/kivmetadataui/tests/FakeToolkit.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

constexpr char kSample[] =
    "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>"
    "<exif:FNumber>28/10</exif:FNumber>";

kivmetadata::ViewDefinitions SampleViews()
{
    return {samples::MakeView("basic", {"dc:title", "dc:subject", "photoshop:City",
                                        "photoshop:Urgency", "exif:FNumber"}),
            samples::MakeView("more", {"xmp:Rating", "xmp:CreateDate"})};
}

/// Runs the whole script; the log of what was done, and the failure in brackets.
std::string RunScript(const DialogDriver& driver)
{
    const auto meta = samples::Parse(kSample);
    DialogModel model(*meta, SampleViews(), kivmetadata::SchemaDefinitions(samples::Schemas()), {});
    std::string log;
    FakeSurface surface(model, log);
    ScriptRunner runner(model, driver.Steps());
    try {
        while (runner.RunStep(surface)) {
            log += "-\n";
        }
        EXPECT_TRUE(runner.IsOver());
    } catch (const std::runtime_error& error) {
        log += std::string("[") + error.what() + "]\n";
    }
    return log;
}

TEST(ScriptRunner, DoesEachKindOfStep)
{
    DriverKeyPress find;
    find.character = U'f';
    find.control = true;
    const DialogDriver driver = DialogDriver()
                                    .ChooseView("more")
                                    .WaitUntilPainted()
                                    .PressKey(find)
                                    .TypeText("sea")
                                    .Screenshot("out.png")
                                    .PressOk()
                                    .PressCancel();
    EXPECT_EQ(RunScript(driver),
              "view 1\n-\n-\nkey 0 control\n-\nkeys sea\n-\nscreenshot out.png\n-\npress ok\n-\n"
              "press cancel\n-\n");
}

struct TypeCase {
    const char* path;
    const char* value;
    const char* want;
};

constexpr TypeCase kTypeCases[] = {
    {"photoshop:City", "Köln", "type photoshop:City: Köln\n-\n"},
    {"{http://ns.adobe.com/photoshop/1.0/}City", "Rome", "type photoshop:City: Rome\n-\n"},
    {"dc:title", "Sea", "type dc:title @x-default: Sea\n-\n"},
    {"dc:title[@de]", "Meer", "type dc:title @de: Meer\n-\n"},
    {"dc:subject[1]", "sun", "type dc:subject item 0: sun\n-\n"},
    {"dc:subject[2]", "", "remove dc:subject 1\n-\n"},
    {"dc:subject[3]", "sun", "type dc:subject new: sun\n-\n"},
    {"dc:subject", "[\"sea\", \"sun\"]", "remove dc:subject 1\ntype dc:subject new: sun\n-\n"},
    {"dc:subject", "[\"sea\",\"sky\"]", "-\n"},
    {"dc:subject", "", "remove dc:subject 1\nremove dc:subject 0\n-\n"},
    {"photoshop:Urgency", "5", "choose photoshop:Urgency 1\n-\n"},
    {"photoshop:Urgency", "Low", "choose photoshop:Urgency 2\n-\n"},
    {"photoshop:Urgency", "", "choose photoshop:Urgency none\n-\n"},
    // The view is opened first, and painted before anything is typed.
    {"xmp:Rating", "4", "view 1\n-\nchoose xmp:Rating 4\n-\n"},
    {"xmp:Rating", "", "view 1\n-\nchoose xmp:Rating none\n-\n"},
    {"xmp:CreateDate", "2024", "view 1\n-\ntype xmp:CreateDate: 2024\n-\n"},
    // What cannot be done fails by name.
    {"dc:nothing", "x", "[There is no field for “dc:nothing”.]\n"},
    {"no path", "x", "[There is no field for “no path”.]\n"},
    {"dc:title[2]", "x", "[There is no field for “dc:title[2]”.]\n"},
    {"dc:title[@d e]", "x", "[There is no field for “dc:title[@d e]”.]\n"},
    {"dc:subject[@de]", "x", "[There is no field for “dc:subject[@de]”.]\n"},
    {"dc:subject[0]", "x", "[There is no field for “dc:subject[0]”.]\n"},
    {"dc:subject[9999999]", "x", "[There is no field for “dc:subject[9999999]”.]\n"},
    {"dc:subject[9]", "x", "[There is no entry “dc:subject[9]”.]\n"},
    {"dc:subject", "sea", "[The value of “dc:subject” has to be a JSON array of texts.]\n"},
    {"photoshop:Urgency", "7", "[“7” is no choice of “photoshop:Urgency”.]\n"},
    {"xmp:Rating", "6", "view 1\n-\n[“xmp:Rating” takes 0 to 5 or nothing.]\n"},
    {"exif:FNumber", "2", "[The field for “exif:FNumber” cannot be edited.]\n"},
};

TEST(ScriptRunner, TypesValues)
{
    for (const TypeCase& row : kTypeCases) {
        SCOPED_TRACE(std::string(row.path) + " = " + row.value);
        EXPECT_EQ(RunScript(DialogDriver().TypeValue(row.path, row.value)), row.want);
    }
}

TEST(ScriptRunner, OtherFailuresName)
{
    EXPECT_EQ(RunScript(DialogDriver().ChooseView("nowhere")), "[There is no view “nowhere”.]\n");
    EXPECT_EQ(RunScript(DialogDriver().Screenshot("")), "screenshot \n[no file name]\n");
}

// A surface that does not open the view must not be asked forever.
TEST(ScriptRunner, AViewThatStaysShut)
{
    class Stubborn : public FakeSurface {
    public:
        using FakeSurface::FakeSurface;
        void ChooseView(std::size_t) override {}
    };
    const auto meta = samples::Parse(kSample);
    DialogModel model(*meta, SampleViews(), kivmetadata::SchemaDefinitions(samples::Schemas()), {});
    std::string log;
    Stubborn surface(model, log);
    ScriptRunner runner(model, DialogDriver().TypeValue("xmp:Rating", "4").Steps());
    EXPECT_TRUE(runner.RunStep(surface));
    EXPECT_THROW(runner.RunStep(surface), std::runtime_error);
}

TEST(ScriptRunner, AnEmptyScriptIsOver)
{
    EXPECT_EQ(RunScript(DialogDriver()), "");
}

}  // namespace
}  // namespace kivmetadataui
