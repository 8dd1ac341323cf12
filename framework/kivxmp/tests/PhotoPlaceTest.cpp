// Which packet counts where a photo has several places for one, and what is derived from the
// others.

#include "framework/kivxmp/src/PhotoPlace.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <utility>

#include <kivcore/Dir.h>
#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::filesupport::PathToUTF8;
using test::Jpeg;
using test::Png;
using test::Tiff;
using test::Webp;
using ::testing::HasSubstr;

/// A packet with dc:title and one property more, both of that value.
std::string Packet(const std::string& value, const std::string& property)
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
           "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
           "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'"
           " xmlns:xmp='http://ns.adobe.com/xap/1.0/'><dc:title><rdf:Alt>"
           "<rdf:li xml:lang='x-default'>" +
           value + "</rdf:li></rdf:Alt></dc:title><" + property + ">" + value + "</" + property +
           "></rdf:Description></rdf:RDF></x:xmpmeta>";
}

const std::string kInside = Packet("inside", "xmp:Label");
const std::string kFullPacket = Packet("full", "dc:format");
const std::string kShortPacket = Packet("short", "dc:source");

std::string Dng(const std::string& packet)
{
    return Tiff().Image().Xmp(packet).Entry(50706, 1, 4, "\1\4\0\0"s).Bytes();
}

class PhotoPlaceTest : public test::PhotoFolderTest {
protected:
    /// "NAME: property=value ...", derived ones with their source behind them.
    std::string Seen(const std::string& name, const OpenOptions& options = {})
    {
        const auto meta = Open(name, options);
        std::string line = PacketName(*meta) + ":";
        for (const char* const path : {"dc:title", "xmp:Label", "dc:format", "dc:source"}) {
            if (const auto text = TextOf(FindWithDerived(*meta, path))) {
                const std::string_view property(path);
                line += " ";
                line += property.substr(property.find(':') + 1);
                line += "=" + *text;
            }
            if (const DerivedSource* const source = FindDerivedSource(*meta, path)) {
                line += source->from == DerivedFrom::kSidecar    ? "(sidecar "
                        : source->from == DerivedFrom::kEmbedded ? "(embedded "
                                                                 : "(? ";
                line += source->detail + ")";
            }
        }
        return line;
    }

    std::string PacketName(const __XMPMeta__& meta) const
    {
        return PathToUTF8(GetPhotoInfo(meta).packetPath).substr(folder_.Of("").string().size());
    }

    std::string Note(const std::string& name, const OpenOptions& options = {})
    {
        std::string note = GetPhotoInfo(*Open(name, options)).note;
        const std::string folder = folder_.Of("").string();
        for (std::size_t at; (at = note.find(folder)) != std::string::npos;) {
            note.erase(at, folder.size());
        }
        return note;
    }
};

/// Sidecars are NAME.EXT.xmp and NAME.xmp.
enum class Beside { kNone, kFull, kShort, kBoth };

struct PlaceCase {
    const char* photo;
    const std::string& bytes;
    Beside beside;
    OpenOptions options;
    const char* seen;
    std::string note;
};

TEST_F(PhotoPlaceTest, Rules)
{
    using enum Beside;
    constexpr OpenOptions kAny{};
    constexpr OpenOptions kInSidecar{.place = PacketPlace::kSidecar};
    constexpr OpenOptions kInPhoto{.place = PacketPlace::kEmbedded};
    constexpr OpenOptions kByShortName{.sidecar = SidecarName::kShort};
    const std::string jpeg = Jpeg().Xmp(kInside).Scan().Bytes();
    const std::string bareJpeg = Jpeg().Scan().Bytes();
    const std::string png = Png().Xmp(kInside).Image().Bytes();
    const std::string webp = Webp().Extended(4).Image().Xmp(kInside).Bytes();
    const std::string tiff = Tiff().Image().Xmp(kInside).Bytes();
    const std::string bareTiff = Tiff().Image().Bytes();
    const std::string big = Tiff({.bigEndian = true, .isBig = true}).Image().Xmp(kInside).Bytes();
    const std::string dng = Dng(kInside);
    const std::string gif = "GIF89athe rest is not looked at";
    const std::string odd = "content that nobody knows";
    const std::string counts =
        "the metadata in the photo counts, and what only the sidecar has is derived: ";
    const std::string raw =
        "the sidecar counts, and what only the metadata in the photo has is derived";
    const std::string unread = "packets embedded in GIF files are not read yet; the sidecar counts";
    const PlaceCase rows[] = {
        // Formats that we write.
        {"p.jpg", jpeg, kNone, kAny, "p.jpg: title=inside Label=inside", ""},
        {"p.jpg", jpeg, kFull, kAny,
         "p.jpg: title=inside Label=inside format=full(sidecar p.jpg.xmp)", counts + "p.jpg.xmp"},
        {"p.jpg", jpeg, kShort, kAny,
         "p.jpg: title=inside Label=inside source=short(sidecar p.xmp)", counts + "p.xmp"},
        {"p.jpg", jpeg, kBoth, kAny,
         "p.jpg: title=inside Label=inside format=full(sidecar p.jpg.xmp)", counts + "p.jpg.xmp"},
        {"p.jpg", jpeg, kBoth, kByShortName,
         "p.jpg: title=inside Label=inside source=short(sidecar p.xmp)", counts + "p.xmp"},
        {"p.jpg", jpeg, kFull, kInPhoto,
         "p.jpg: title=inside Label=inside format=full(sidecar p.jpg.xmp)", counts + "p.jpg.xmp"},
        {"p.jpg", jpeg, kFull, kInSidecar,
         "p.jpg.xmp: title=full Label=inside(embedded p.jpg) format=full", raw},
        {"p.jpg", jpeg, kNone, kInSidecar,
         "p.jpg.xmp: title=inside(embedded p.jpg) Label=inside(embedded p.jpg)", raw},
        {"p.png", png, kFull, kAny,
         "p.png: title=inside Label=inside format=full(sidecar p.png.xmp)", counts + "p.png.xmp"},
        {"p.webp", webp, kFull, kAny,
         "p.webp: title=inside Label=inside format=full(sidecar p.webp.xmp)",
         counts + "p.webp.xmp"},
        {"p.tif", tiff, kFull, kAny,
         "p.tif: title=inside Label=inside format=full(sidecar p.tif.xmp)", counts + "p.tif.xmp"},
        {"p.dng", dng, kFull, kAny,
         "p.dng: title=inside Label=inside format=full(sidecar p.dng.xmp)", counts + "p.dng.xmp"},
        // A photo without a packet has everything from its sidecar.
        {"p.jpg", bareJpeg, kFull, kAny,
         "p.jpg: title=full(sidecar p.jpg.xmp) format=full(sidecar p.jpg.xmp)",
         counts + "p.jpg.xmp"},
        {"p.jpg", bareJpeg, kFull, kInSidecar, "p.jpg.xmp: title=full format=full", ""},
        // All others.
        {"p.nef", tiff, kNone, kAny,
         "p.nef.xmp: title=inside(embedded p.nef) Label=inside(embedded p.nef)", raw},
        {"p.nef", tiff, kFull, kAny,
         "p.nef.xmp: title=full Label=inside(embedded p.nef) format=full", raw},
        {"p.nef", tiff, kShort, kAny,
         "p.xmp: title=short Label=inside(embedded p.nef) source=short", raw},
        {"p.nef", tiff, kBoth, kAny,
         "p.nef.xmp: title=full Label=inside(embedded p.nef) format=full", raw},
        {"p.btf", big, kFull, kAny,
         "p.btf.xmp: title=full Label=inside(embedded p.btf) format=full", raw},
        {"p.nef", bareTiff, kFull, kAny, "p.nef.xmp: title=full format=full", ""},
        {"p.gif", gif, kShort, kAny, "p.xmp: title=short source=short", unread},
        // Of content that nobody knows only the sidecar is read.
        {"p.bin", odd, kFull, kAny, "p.bin.xmp: title=full format=full", ""},
        // A sidecar that is opened itself is no photo.
        {"q.xmp", kShortPacket, kFull, kAny, "q.xmp: title=short source=short", ""},
    };
    for (const PlaceCase& row : rows) {
        const std::string name = row.photo;
        SCOPED_TRACE(name + " -> " + row.seen);
        folder_.Write(name, row.bytes);
        if (row.beside == kFull || row.beside == kBoth) {
            folder_.Write(name + ".xmp", kFullPacket);
        }
        if (row.beside == kShort || row.beside == kBoth) {
            folder_.Write("p.xmp", kShortPacket);
        }
        EXPECT_EQ(Seen(name, row.options), row.seen);
        EXPECT_EQ(Note(name, row.options), row.note);
        for (const std::string& file : folder_.Names()) {
            std::filesystem::remove(folder_.Of(file));
        }
    }
}

struct BrokenCase {
    const char* name;
    std::string bytes;
    const char* reason;
};

TEST_F(PhotoPlaceTest, ABrokenSidecarKeepsNoPhotoFromBeingShown)
{
    std::string deep = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>";
    for (int i = 0; i < 300; ++i) {
        deep += "<a>";
    }
    const BrokenCase rows[] = {
        {"cut", kFullPacket.substr(0, 300), "unclosed token"},
        {"no XML", "no packet", "syntax error"},
        {"no XMP", "<?xml version='1.0'?><other/>", "no rdf:RDF element"},
        {"too deep", deep, "256"},
        {"zeros", std::string(1000, '\0'), "nothing but white space"},
        {"odd UTF-16", "\xFF\xFE<", "not well-formed UTF-16"},
    };
    const std::string jpeg = Jpeg().Xmp(kInside).Scan().Bytes();
    const std::string raw = Tiff().Image().Xmp(kInside).Bytes();
    for (const BrokenCase& row : rows) {
        SCOPED_TRACE(row.name);
        // Beside a packet that counts.
        folder_.Write("p.jpg", jpeg);
        folder_.Write("p.jpg.xmp", row.bytes);
        EXPECT_EQ(Seen("p.jpg"), "p.jpg: title=inside Label=inside");
        EXPECT_THAT(Note("p.jpg"), ::testing::StartsWith("the sidecar p.jpg.xmp cannot be read: "));
        EXPECT_THAT(Note("p.jpg"), HasSubstr(row.reason));
        Retitle("p.jpg", "edited");
        EXPECT_EQ(Title("p.jpg"), "edited");
        EXPECT_EQ(folder_.Read("p.jpg.xmp"), row.bytes);

        // In the place that counts.
        folder_.Write("p.nef", raw);
        folder_.Write("p.nef.xmp", row.bytes);
        EXPECT_EQ(Seen("p.nef"),
                  "p.nef.xmp: title=inside(embedded p.nef) Label=inside(embedded p.nef)");
        EXPECT_THAT(Note("p.nef"), HasSubstr("the sidecar p.nef.xmp cannot be read: "));
        const auto meta = Open("p.nef");
        const PhotoInfo info = GetPhotoInfo(*meta);
        EXPECT_FALSE(info.canSave);
        EXPECT_FALSE(info.packetFound);
        EXPECT_THAT(info.reason,
                    ::testing::StartsWith("its sidecar cannot be read, and stays as it is: "));
        EXPECT_THAT(info.reason, HasSubstr(row.reason));
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        meta->SetText("xmp:Label", "edited");
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "38 p.nef.xmp: " + info.reason);
        EXPECT_EQ(folder_.Read("p.nef.xmp"), row.bytes);
        EXPECT_TRUE(folder_.Read("p.nef") == raw);
        // Opened by its own name it has nothing to fall back on.
        EXPECT_NE(Failure([&] { Open("p.nef.xmp"); }), "");
    }
}

TEST_F(PhotoPlaceTest, ASidecarThatIsTooLargeIsNotRead)
{
    for (const char* const name : {"p.jpg", "p.nef"}) {
        const bool isRaw = name == "p.nef"s;
        folder_.Write(
            name, isRaw ? Tiff().Image().Xmp(kInside).Bytes() : Jpeg().Xmp(kInside).Scan().Bytes());
        const std::string sidecar = name + ".xmp"s;
        folder_.Write(sidecar, kFullPacket);
        std::filesystem::resize_file(folder_.Of(sidecar), 65u << 20);
        EXPECT_THAT(Seen(name), HasSubstr("title=inside"));
        EXPECT_THAT(Note(name), HasSubstr("it is larger than any metadata packet"));
        EXPECT_EQ(GetPhotoInfo(*Open(name)).canSave, !isRaw);
    }
}

// It is no sidecar, and is not replaced by one.
TEST_F(PhotoPlaceTest, AFolderNamedLikeASidecar)
{
    folder_.Write("p.jpg", Jpeg().Xmp(kInside).Scan().Bytes());
    folder_.Write("p.gif", "GIF89a");
    std::filesystem::create_directory(folder_.Of("p.jpg.xmp"));
    std::filesystem::create_directory(folder_.Of("p.gif.xmp"));
    EXPECT_EQ(Seen("p.jpg"), "p.jpg: title=inside Label=inside");
    EXPECT_EQ(Seen("p.gif"), "p.gif.xmp:");
    EXPECT_THAT(Failure([&] { Retitle("p.gif", "edited"); }),
                ::testing::StartsWith("34 p.gif.xmp"));
    EXPECT_THAT(folder_.Names(),
                ::testing::ElementsAre("p.gif", "p.gif.xmp", "p.jpg", "p.jpg.xmp"));
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Of("p.gif.xmp")));
    folder_.Write("p.xmp", kShortPacket);
    EXPECT_EQ(Seen("p.gif"), "p.xmp: title=short source=short");
}

TEST_F(PhotoPlaceTest, AnEmptySidecarHasNothing)
{
    folder_.Write("p.jpg", Jpeg().Xmp(kInside).Scan().Bytes());
    folder_.Write("p.jpg.xmp", "");
    EXPECT_EQ(Seen("p.jpg"), "p.jpg: title=inside Label=inside");
    folder_.Write("p.nef", Tiff().Image().Xmp(kInside).Bytes());
    folder_.Write("p.nef.xmp", "");
    EXPECT_EQ(Seen("p.nef"),
              "p.nef.xmp: title=inside(embedded p.nef) Label=inside(embedded p.nef)");
    Retitle("p.nef", "beside");
    EXPECT_EQ(Seen("p.nef"), "p.nef.xmp: title=beside Label=inside(embedded p.nef)");
}

TEST_F(PhotoPlaceTest, ABrokenPacketInAPhotoWhoseSidecarCounts)
{
    const std::pair<std::string, const char*> rows[] = {
        {Tiff().Image().Xmp("no packet").Bytes(), "syntax error"},
        {Tiff().Image().Xmp(kInside).Bytes().substr(0, 60), "cut off"},
    };
    folder_.Write("p.nef.xmp", kFullPacket);
    for (const auto& [bytes, reason] : rows) {
        SCOPED_TRACE(reason);
        folder_.Write("p.nef", bytes);
        EXPECT_EQ(Seen("p.nef"), "p.nef.xmp: title=full format=full");
        EXPECT_THAT(Note("p.nef"),
                    ::testing::StartsWith("metadata embedded in the photo cannot be read: "));
        EXPECT_THAT(Note("p.nef"), HasSubstr(reason));
        EXPECT_TRUE(GetPhotoInfo(*Open("p.nef")).canSave);
    }
}

// Only what was changed goes into the sidecar; the rest stays derived.
TEST_F(PhotoPlaceTest, AnEditOfARawFileMakesASidecarOfTheEditAlone)
{
    const std::string raw = Tiff().Image().Xmp(kInside).Bytes();
    folder_.Write("p.nef", raw);
    const auto meta = Open("p.nef");
    meta->SetText("dc:title[@de]", "innen");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_TRUE(folder_.Read("p.nef") == raw);
    EXPECT_EQ(Seen("p.nef"), "p.nef.xmp: title=inside Label=inside(embedded p.nef)");
    EXPECT_EQ(Open("p.nef.xmp")->PropertyCount(), 1u);
    EXPECT_EQ(TextOf(Open("p.nef.xmp")->Find("dc:title[@de]")), "innen");
    // The object that was saved knows what was derived before.
    EXPECT_EQ(TextOf(FindDerived(*meta, "xmp:Label")), "inside");
    EXPECT_EQ(FindDerived(*meta, "dc:title"), nullptr);
    meta->SetText("xmp:Label", "inside");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
}

}  // namespace
}  // namespace kivxmp
