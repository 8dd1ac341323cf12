// What TIFF numbers: tags and types. Sources: TIFF 6.0, its Technical Note 1 (type 13), BigTIFF
// (types 16 to 18), Exif 2.32, the DNG specification.

#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kivxmp::photo::tiff {

inline constexpr std::uint16_t kTagMake = 271;
inline constexpr std::uint16_t kTagStripPlaces = 273;
inline constexpr std::uint16_t kTagStripSizes = 279;
inline constexpr std::uint16_t kTagTilePlaces = 324;
inline constexpr std::uint16_t kTagTileSizes = 325;
inline constexpr std::uint16_t kTagFurther = 330;  // directories of further images
inline constexpr std::uint16_t kTagJpegPlace = 513;
inline constexpr std::uint16_t kTagJpegSize = 514;
inline constexpr std::uint16_t kTagPacket = 700;
inline constexpr std::uint16_t kTagIim = 33723;
inline constexpr std::uint16_t kTagImageResources = 34377;
inline constexpr std::uint16_t kTagExif = 34665;
inline constexpr std::uint16_t kTagGps = 34853;
inline constexpr std::uint16_t kTagMakerNote = 37500;
inline constexpr std::uint16_t kTagDngVersion = 50706;

inline constexpr std::uint16_t kTypeByte = 1;
inline constexpr std::uint16_t kTypeLong = 4;
inline constexpr std::uint16_t kTypeUndefined = 7;
inline constexpr std::uint16_t kLastClassicType = 13;

/// Bytes of one value; 0 for a type that there is none of.
constexpr std::size_t TypeBytes(std::uint64_t type)
{
    constexpr std::uint8_t kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < std::size(kBytes) ? kBytes[type] : 0;
}

/// Whether sizes and places are of that type: SHORT, LONG, IFD, LONG8, IFD8.
constexpr bool IsPlaceType(std::uint64_t type)
{
    return type == 3 || type == kTypeLong || type == 13 || type == 16 || type == 18;
}

}  // namespace kivxmp::photo::tiff
