#include "host/Options.h"

#include <gtest/gtest.h>

namespace kivhost {
namespace {

TEST(Options, DefaultsAreADialog)
{
    const Options options = ParseOptions({"photo.jpg"});
    EXPECT_EQ(options.mode, Mode::kDialog);
    EXPECT_EQ(options.files, std::vector<std::string>{"photo.jpg"});
    EXPECT_EQ(options.language, "en_US");
    EXPECT_EQ(options.brightnessPercent, 50U);
    EXPECT_EQ(options.scale, 1.0f);
    EXPECT_EQ(options.autoPress, AutoPress::kNone);
}

TEST(Options, EveryOptionIsRead)
{
    const Options options = ParseOptions({"--language",
                                          "de_DE",
                                          "--brightness=20",
                                          "--scale",
                                          "1.5",
                                          "--text",
                                          "Titel",
                                          "--flags",
                                          "3",
                                          "--custom-definitions",
                                          "--set",
                                          "dc:title[@de]=a=b",
                                          "--set=dc:subject=[\"x\"]",
                                          "--auto",
                                          "cancel",
                                          "--screenshot",
                                          "o.png",
                                          "--view",
                                          "iptc",
                                          "photo.jpg"});
    EXPECT_EQ(options.language, "de_DE");
    EXPECT_EQ(options.brightnessPercent, 20U);
    EXPECT_EQ(options.scale, 1.5f);
    EXPECT_EQ(options.text, "Titel");
    EXPECT_TRUE(options.hasText);
    EXPECT_EQ(options.flags, 3);
    EXPECT_TRUE(options.loadsCustomDefinitions);
    ASSERT_EQ(options.sets.size(), 2U);
    EXPECT_EQ(options.sets[0], (std::pair<std::string, std::string>("dc:title[@de]", "a=b")));
    EXPECT_EQ(options.sets[1], (std::pair<std::string, std::string>("dc:subject", "[\"x\"]")));
    EXPECT_EQ(options.autoPress, AutoPress::kCancel);
    EXPECT_EQ(options.screenshot, "o.png");
    EXPECT_EQ(options.view, "iptc");
}

TEST(Options, NamespacesInBracesMayHoldAnEqualsSign)
{
    const Options options = ParseOptions({"--set", "{http://x/?a=b}name=value", "f"});
    ASSERT_EQ(options.sets.size(), 1U);
    EXPECT_EQ(options.sets[0].first, "{http://x/?a=b}name");
    EXPECT_EQ(options.sets[0].second, "value");
}

TEST(Options, FilesMayBeginWithADash)
{
    EXPECT_EQ(ParseOptions({"--dump", "--", "-odd.jpg"}).files,
              std::vector<std::string>{"-odd.jpg"});
    EXPECT_EQ(ParseOptions({"--extract", "-", "a.jpg"}).extractTo, "-");
}

TEST(Options, ManyFilesForDumpAndInsert)
{
    const std::vector<std::string> files = {"a.jpg", "b.xmp"};
    Options options = ParseOptions({"--dump", "a.jpg", "b.xmp"});
    EXPECT_EQ(options.mode, Mode::kDump);
    EXPECT_EQ(options.files, files);
    for (const bool dumps : {false, true}) {
        std::vector<std::string> line = {"--insert", "-", "a.jpg", "b.xmp"};
        line.insert(line.end(), dumps, "--dump");
        options = ParseOptions(line);
        EXPECT_EQ(options.mode, Mode::kInsert);
        EXPECT_EQ(options.insertFrom, "-");
        EXPECT_EQ(options.dumps, dumps);
        EXPECT_EQ(options.files, files);
    }
}

TEST(Options, WhereThePacketIsKept)
{
    Options options = ParseOptions({"a.jpg"});
    EXPECT_EQ(options.open.place, kKivXmpPlaceAuto);
    EXPECT_EQ(options.open.sidecar, kKivXmpSidecarAuto);
    options = ParseOptions({"--place", "photo", "--sidecar-name", "full", "a.jpg"});
    EXPECT_EQ(options.open.place, kKivXmpPlaceEmbedded);
    EXPECT_EQ(options.open.sidecar, kKivXmpSidecarFull);
    options = ParseOptions({"--place=sidecar", "--sidecar-name=short", "a.jpg"});
    EXPECT_EQ(options.open.place, kKivXmpPlaceSidecar);
    EXPECT_EQ(options.open.sidecar, kKivXmpSidecarShort);
}

TEST(Options, WrongLinesSaySo)
{
    struct Row {
        std::vector<std::string> arguments;
        const char* want;
    };
    const Row rows[] = {
        {{}, "no file given"},
        {{"--dump"}, "no file given"},
        {{"a", "b"}, "more than one file given: 'b'"},
        {{"--colour", "a"}, "unknown option '--colour'"},
        {{"a", "--language"}, "--language needs xx_YY"},
        {{"--brightness", "bright", "a"}, "--brightness: 'bright' is not a number it takes"},
        {{"--brightness", "-1", "a"}, "--brightness: '-1' is not a number it takes"},
        {{"--flags", "256", "a"}, "--flags: '256' is not a number it takes"},
        {{"--scale", "1.5x", "a"}, "--scale: '1.5x' is not a number it takes"},
        {{"--set", "dc:title", "a"}, "--set: 'dc:title' is not PATH=VALUE"},
        {{"--set", "=x", "a"}, "--set: '=x' is not PATH=VALUE"},
        {{"--auto", "yes", "a"}, "--auto: 'yes' is neither ok nor cancel"},
        {{"--dump=1", "a"}, "--dump takes no value"},
        {{"--screenshot", "o.png", "a"}, "--screenshot needs --auto"},
        {{"--insert", "p.xmp"}, "no file given"},
        {{"--place", "cloud", "a"}, "--place: 'cloud' is neither photo nor sidecar"},
        {{"--sidecar-name", "", "a"}, "--sidecar-name: '' is neither full nor short"},
        {{"--insert"}, "--insert needs IN.xmp"},
        {{"--extract", "o.xmp", "a", "b"}, "more than one file given: 'b'"},
        {{"--insert", "p.xmp", "--extract", "o.xmp", "a"},
         "--extract and --list-definitions stand alone"},
        {{"--list-definitions", "--dump", "a"}, "--extract and --list-definitions stand alone"},
        {{"--insert", "p.xmp", "--set", "a=b", "a"},
         "--set, --auto and --screenshot are for the dialog, which is not to be opened"},
        {{"--dump", "--auto", "ok", "a"},
         "--set, --auto and --screenshot are for the dialog, which is not to be opened"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.want);
        try {
            ParseOptions(row.arguments);
            FAIL() << "accepted";
        } catch (const UsageError& error) {
            EXPECT_STREQ(error.what(), row.want);
        }
    }
}

TEST(Options, HelpNamesEveryOption)
{
    const std::string help = HelpText();
    for (const char* const name :
         {"--language xx_YY", "--set PATH=VALUE", "--insert IN.xmp", "--list-definitions"}) {
        EXPECT_NE(help.find(name), std::string::npos) << name;
    }
    EXPECT_EQ(ParseOptions({"--help"}).mode, Mode::kHelp);
}

}  // namespace
}  // namespace kivhost
