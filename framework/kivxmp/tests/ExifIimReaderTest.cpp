#include "framework/kivxmp/src/ExifIimReader.h"

#include <gtest/gtest.h>

#include <kivcore/Trace.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/TagMapping.h"
#include "framework/kivxmp/tests/ExifBuilder.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::ExifStream;
using test::Iim;

/// "Exif.Image.Make=Kivo|Exif.Photo.FNumber=28/10,", by name, zeros as points.
std::string Print(TagList tags)
{
    std::string text;
    std::stable_sort(
        tags.values.begin(), tags.values.end(),
        [](const TagValue& left, const TagValue& right) { return left.name < right.name; });
    for (const TagValue& tag : tags.values) {
        text += (text.empty() ? "" : "|") + tag.name + "=";
        for (const char c : tag.bytes) {
            text += c == '\0' ? '.' : c;
        }
        for (const Ratio& number : tag.numbers) {
            text += std::to_string(number.numerator) +
                    (number.denominator == 1 ? "" : "/" + std::to_string(number.denominator)) + ",";
        }
    }
    return text;
}

bool IsAny(std::string_view)
{
    return true;
}

TEST(ExifIimReader, Exif)
{
    for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
        ExifStream stream(order);
        stream.Ascii(ExifStream::kImage, 271, "Kivo")
            .Short(ExifStream::kImage, 274, {6})
            .Byte(ExifStream::kImage, 40091, "H\0i\0\0\0"sv)
            .Ratio(ExifStream::kPhoto, 33434, {{1, 4294967295}})
            .Short(ExifStream::kPhoto, 34855, {100, 65535})
            .Undefined(ExifStream::kPhoto, 36864, "0232")
            .Entry(ExifStream::kPhoto, 37380, 10, 1,
                   NumberBytes(0xFFFFFFFF, 4, order) + NumberBytes(3, 4, order))
            .Undefined(ExifStream::kPhoto, 37510, "UNICODE\0\0H\0i"sv)
            .Byte(ExifStream::kGps, 5, "\1")
            .Ratio(ExifStream::kGps, 2, {{48, 1}, {51, 1}, {0, 1}});
        const TagList tags = ReadExifTags(stream.Bytes(), IsMappedTag);
        EXPECT_EQ(tags.order, order);
        EXPECT_EQ(Print(tags),
                  "Exif.GPSInfo.GPSAltitudeRef=\1|Exif.GPSInfo.GPSLatitude=48,51,0,|Exif.Image."
                  "Make=Kivo.|"
                  "Exif.Image.Orientation=6,|Exif.Image.XPTitle=H.i...|Exif.Photo.ExifVersion=0232|"
                  "Exif.Photo.ExposureBiasValue=-1/3,|Exif.Photo.ExposureTime=1/4294967295,|"
                  "Exif.Photo.ISOSpeedRatings=100,65535,|Exif.Photo.UserComment=UNICODE..H.i");
    }
}

TEST(ExifIimReader, OnlyWhatIsWanted)
{
    const std::string stream = ExifStream()
                                   .Ascii(ExifStream::kImage, 271, "Kivo")
                                   .Ascii(ExifStream::kImage, 316, "host")
                                   .Ascii(ExifStream::kImage, 270, std::string(70000, 'x'))
                                   .Bytes();
    EXPECT_EQ(Print(ReadExifTags(stream, IsMappedTag)), "Exif.Image.Make=Kivo.");
    EXPECT_EQ(Print(ReadExifTags(stream, IsAny)),
              "Exif.Image.HostComputer=host.|Exif.Image.Make=Kivo.");
}

TEST(ExifIimReader, Iim)
{
    const std::string iim = Iim()
                                .Utf8()
                                .Add(2, 5, "Harbour")
                                .Add(2, 25, "sea")
                                .Add(2, 25, "sky")
                                .Add(2, 55, "20240503")
                                .Add(2, 60, "123456+0200")
                                .Add(2, 62, "20240500")
                                .Add(2, 63, "123456")
                                .Bytes();
    EXPECT_EQ(Print(ReadIimTags(iim, IsMappedTag)),
              "Iptc.Application2.DateCreated=20240503|Iptc.Application2.DigitizationDate=20240500|"
              "Iptc.Application2.DigitizationTime=123456|Iptc.Application2.Keywords=sea|"
              "Iptc.Application2.Keywords=sky|Iptc.Application2.ObjectName=Harbour|"
              "Iptc.Application2.TimeCreated=123456+0200|Iptc.Envelope.CharacterSet=\x1B%G");
}

TEST(ExifIimReader, NoData)
{
    for (const std::string_view bytes : {""sv, "II*\0"sv, "no TIFF stream at all"sv,
                                         "II*\0\xFF\xFF\xFF\xFF"sv, "\x1C"sv, "\x1C\x02"sv}) {
        EXPECT_EQ(Print(ReadExifTags(bytes, IsAny)), "");
        EXPECT_EQ(Print(ReadIimTags(bytes, IsAny)), "");
    }
}

TEST(ExifIimReader, DamageGivesFewerTagsAndNoOutput)
{
    const std::string whole = ExifStream()
                                  .Ascii(ExifStream::kImage, 271, "Kivo")
                                  .Ratio(ExifStream::kPhoto, 33437, {{28, 10}})
                                  .Ratio(ExifStream::kGps, 2, {{48, 1}, {51, 1}, {0, 1}})
                                  .Bytes();
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    std::size_t most = 0;
    for (std::size_t bytes = 0; bytes <= whole.size(); ++bytes) {
        const std::string cut(whole, 0, bytes);
        const std::size_t count = ReadExifTags(cut, IsAny).values.size();
        most = count > most ? count : most;
        for (const int bit : {0, 3, 7}) {
            std::string flipped = whole;
            if (bytes < flipped.size()) {
                flipped[bytes] = static_cast<char>(flipped[bytes] ^ (1 << bit));
            }
            ReadExifTags(flipped, IsAny);
        }
    }
    EXPECT_GE(most, 3u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ExifIimReader, TracesWhatItCannotRead)
{
    std::string traced;
    const int sink = kivcore::debug::AddTraceSink(
        [&](int, const char*, std::string_view text) { traced += std::string(text) + "\n"; });
    kivcore::debug::SetTraceLevel("kivxmp", 1);
    ReadExifTags("no TIFF stream at all", IsAny);
    kivcore::debug::SetTraceLevel("kivxmp", -1);
    kivcore::debug::RemoveTraceSink(sink);
    EXPECT_TRUE(traced.starts_with("Exif data cannot be read: ")) << traced;
}

}  // namespace
}  // namespace kivxmp::photo
