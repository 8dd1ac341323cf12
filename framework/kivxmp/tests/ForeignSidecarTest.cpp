// Sidecars as other programs write them: what we do not know, and what nobody edited, stays.

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

using test::Tiff;

/// As darktable writes them: no wrapper, attributes line by line, the history as items of
/// attributes, empty lists.
constexpr char kDarktable[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/" x:xmptk="XMP Core 4.4.0-Exiv2">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about=""
    xmlns:exif="http://ns.adobe.com/exif/1.0/"
    xmlns:xmp="http://ns.adobe.com/xap/1.0/"
    xmlns:xmpMM="http://ns.adobe.com/xap/1.0/mm/"
    xmlns:darktable="http://darktable.sf.net/"
   exif:DateTimeOriginal="2021:05:01 12:00:00.000"
   xmp:Rating="3"
   xmpMM:DerivedFrom="DSC_0001.NEF"
   darktable:import_timestamp="63755460000000000"
   darktable:xmp_version="5"
   darktable:raw_params="0"
   darktable:auto_presets_applied="1"
   darktable:history_end="2">
   <darktable:masks_history>
    <rdf:Seq/>
   </darktable:masks_history>
   <darktable:history>
    <rdf:Seq>
     <rdf:li
      darktable:num="0"
      darktable:operation="rawprepare"
      darktable:enabled="1"
      darktable:params="00000000000000000000000000ff3f00"
      darktable:multi_name=""/>
     <rdf:li
      darktable:num="1"
      darktable:operation="exposure"
      darktable:enabled="0"
      darktable:params="gz02eJxjYGBgAGIWBgaGEyD5"
      darktable:multi_name="&quot;soft&quot; &amp; late"/>
    </rdf:Seq>
   </darktable:history>
  </rdf:Description>
 </rdf:RDF>
</x:xmpmeta>
)";

/// As raw developers of the attribute style write them: everything in one description, settings as
/// attributes, a history of structures, CR LF, a wrapper around it.
std::string DeveloperSidecar()
{
    constexpr std::string_view kText = R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/">
	<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
		<rdf:Description rdf:about=""
			xmlns:xmp="http://ns.adobe.com/xap/1.0/"
			xmlns:xmpMM="http://ns.adobe.com/xap/1.0/mm/"
			xmlns:stEvt="http://ns.adobe.com/xap/1.0/sType/ResourceEvent#"
			xmlns:dc="http://purl.org/dc/elements/1.1/"
			xmlns:crs="http://ns.adobe.com/camera-raw-settings/1.0/"
			xmp:ModifyDate='2022-02-02T20:22:02.22+01:00'
			xmp:Rating="3"
			crs:Version="15.0"
			crs:Temperature="5550"
			crs:HasSettings="True">
			<xmpMM:History>
				<rdf:Seq>
					<rdf:li
						stEvt:action="saved"
						stEvt:changed="/metadata"/>
				</rdf:Seq>
			</xmpMM:History>
			<!-- the curve, from black to white -->
			<crs:ToneCurve><rdf:Seq><rdf:li>0, 0</rdf:li><rdf:li>255, 255</rdf:li></rdf:Seq></crs:ToneCurve>
			<dc:subject>
				<rdf:Bag>
					<rdf:li>Berg&#x65;</rdf:li>
				</rdf:Bag>
			</dc:subject>
		</rdf:Description>
	</rdf:RDF>
</x:xmpmeta>
<?xpacket end="w"?>)";
    std::string text;
    for (const char c : kText) {
        text += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return text;
}

/// As digiKam writes them: the same keywords in the forms of several programs, XML within a text.
constexpr char kDigikam[] = R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/" x:xmptk="XMP Core 4.4.0-Exiv2">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about=""
    xmlns:digiKam="http://www.digikam.org/ns/1.0/"
    xmlns:MicrosoftPhoto="http://ns.microsoft.com/photo/1.0/"
    xmlns:acdsee="http://ns.acdsee.com/iptc/1.0/"
    xmlns:xmp="http://ns.adobe.com/xap/1.0/"
    xmlns:dc="http://purl.org/dc/elements/1.1/"
    xmlns:tiff="http://ns.adobe.com/tiff/1.0/"
   digiKam:PickLabel="0"
   digiKam:ColorLabel="4"
   MicrosoftPhoto:Rating="50"
   acdsee:categories="&lt;Categories&gt;&lt;Category Assigned=&quot;1&quot;&gt;Trip&lt;/Category&gt;&lt;/Categories&gt;"
   xmp:Rating="3"
   tiff:Software="digiKam-7.2.0">
   <digiKam:TagsList>
    <rdf:Seq>
     <rdf:li>Trip/Norway</rdf:li>
    </rdf:Seq>
   </digiKam:TagsList>
   <digiKam:CaptionsAuthorNames>
    <rdf:Alt>
     <rdf:li xml:lang="x-default"/>
    </rdf:Alt>
   </digiKam:CaptionsAuthorNames>
   <dc:subject>
    <rdf:Bag>
     <rdf:li>Norway</rdf:li>
    </rdf:Bag>
   </dc:subject>
  </rdf:Description>
 </rdf:RDF>
</x:xmpmeta>
<?xpacket end="w"?>)";

class ForeignSidecarTest : public test::PhotoFolderTest {
protected:
    ForeignSidecarTest() { folder_.Write("p.nef", Tiff().Image().Bytes()); }
};

/// `text` with `from`, which stands there once, replaced.
std::string With(std::string text, std::string_view from, std::string_view to)
{
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    EXPECT_EQ(text.find(from, at + 1), std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

/// Without the padding that a packet in a wrapper gets when it outgrew its length.
std::string WithoutPadding(std::string text)
{
    const std::size_t end = text.rfind("<?xpacket end=");
    if (end != std::string::npos) {
        const std::size_t begin = text.find_last_not_of(" \r\n", end - 1) + 1;
        text.erase(begin, end - begin);
    }
    return text;
}

using Replacements = std::vector<std::pair<std::string, std::string>>;

struct KeepCase {
    const char* name;
    std::string sidecar;
    std::function<void(__XMPMeta__&)> edit;
    Replacements want;  // each stands there once
};

TEST_F(ForeignSidecarTest, OnlyTheEditedPropertyIsWrittenAnew)
{
    const std::string developer = DeveloperSidecar();
    // A changed attribute becomes the first element.
    const auto rate = [](__XMPMeta__& meta) { meta.SetText("xmp:Rating", "4"); };
    const Replacements rated = {
        {"\n   xmp:Rating=\"3\"", ""},
        {"\">\n   <d", "\">\n   <xmp:Rating>4</xmp:Rating>\n   <d"},
    };
    const Replacements ratedDeveloper = {
        {"\r\n\t\t\txmp:Rating=\"3\"", ""},
        {"<xmpMM:History>", "<xmp:Rating>4</xmp:Rating>\r\n\t\t\t<xmpMM:History>"},
    };
    const auto unrate = [](__XMPMeta__& meta) { meta.Remove("xmp:Rating"); };
    // A new property goes behind all others.
    const auto label = [](__XMPMeta__& meta) { meta.SetText("xmp:Label", "red"); };
    const auto subject = [](__XMPMeta__& meta) { meta.SetText("dc:subject[1]", "Oslo"); };
    const KeepCase rows[] = {
        {"darktable: change", kDarktable, rate, rated},
        {"darktable: remove", kDarktable, unrate, {{"\n   xmp:Rating=\"3\"", ""}}},
        {"darktable: add",
         kDarktable,
         label,
         {{"\n  </rdf:Description>", "\n   <xmp:Label>red</xmp:Label>\n  </rdf:Description>"}}},
        {"developer: change", developer, rate, ratedDeveloper},
        {"developer: remove", developer, unrate, {{"\r\n\t\t\txmp:Rating=\"3\"", ""}}},
        {"developer: add",
         developer,
         label,
         {{"\r\n\t\t</rdf:Description>",
           "\r\n\t\t\t<xmp:Label>red</xmp:Label>\r\n\t\t</rdf:Description>"}}},
        {"developer: item", developer, subject, {{"Berg&#x65;", "Oslo"}}},
        {"digiKam: change", kDigikam, rate, rated},
        {"digiKam: remove", kDigikam, unrate, {{"\n   xmp:Rating=\"3\"", ""}}},
        {"digiKam: add",
         kDigikam,
         label,
         {{"\n  </rdf:Description>", "\n   <xmp:Label>red</xmp:Label>\n  </rdf:Description>"}}},
        {"digiKam: item", kDigikam, subject, {{"<rdf:li>Norway<", "<rdf:li>Oslo<"}}},
    };
    for (const KeepCase& row : rows) {
        SCOPED_TRACE(row.name);
        folder_.Write("p.nef.xmp", row.sidecar);
        const auto meta = Open("p.nef");
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        row.edit(*meta);
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        std::string want = row.sidecar;
        for (const auto& [from, to] : row.want) {
            want = With(want, from, to);
        }
        EXPECT_EQ(WithoutPadding(folder_.Read("p.nef.xmp")), WithoutPadding(want));
    }
}

TEST_F(ForeignSidecarTest, ChangedByTheOtherProgramMeanwhile)
{
    for (const std::string& sidecar :
         {std::string(kDarktable), DeveloperSidecar(), std::string(kDigikam)}) {
        folder_.Write("p.nef.xmp", sidecar);
        const auto meta = Open("p.nef");
        meta->SetText("xmp:Rating", "5");
        const std::string theirs = With(sidecar, "xmp:Rating=\"3\"", "xmp:Rating=\"1\" ");
        folder_.Write("p.nef.xmp", theirs);
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }),
                  "36 p.nef.xmp: was changed since it was read; nothing was written");
        EXPECT_EQ(folder_.Read("p.nef.xmp"), theirs);
        // Gone is changed, too: what was removed on purpose does not come back.
        std::filesystem::remove(folder_.Of("p.nef.xmp"));
        EXPECT_THAT(Failure([&] { SavePhoto(*meta); }), ::testing::StartsWith("32 p.nef.xmp: "));
        EXPECT_THAT(folder_.Names(), ::testing::ElementsAre("p.nef"));
    }
}

// What the raw file's own packet tells stays there until it is edited.
TEST_F(ForeignSidecarTest, OfADerivedPropertyOnlyTheEditedOneIsAdded)
{
    folder_.Write("p.nef", Tiff().Image().Xmp(kDigikam).Bytes());
    folder_.Write("p.nef.xmp", kDarktable);
    const auto meta = Open("p.nef");
    meta->InsertItem("dc:subject", 2, NodeForm::kSimple, "Oslo");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const std::string added =
        "   <dc:subject>\n    <rdf:Bag>\n     <rdf:li>Norway</rdf:li>\n     <rdf:li>Oslo</rdf:li>\n"
        "    </rdf:Bag>\n   </dc:subject>\n";
    std::string want = With(kDarktable, "  </rdf:Description>", added + "  </rdf:Description>");
    want = With(want, "history_end=\"2\"",
                "history_end=\"2\"\n   xmlns:dc=\"http://purl.org/dc/elements/1.1/\"");
    EXPECT_EQ(folder_.Read("p.nef.xmp"), want);
    EXPECT_EQ(TextOf(FindDerived(*Open("p.nef"), "tiff:Software")), "digiKam-7.2.0");
    EXPECT_EQ(TextOf(Open("p.nef")->Find("xmp:Rating")), "3");
}

}  // namespace
}  // namespace kivxmp
