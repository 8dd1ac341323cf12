// Dates of Exif and IIM data as dates of a packet (ISO 8601, as much of it as is known). All give
// an empty text where no date is told: blanks, zeros, what no calendar has.

#pragma once

#include <string>
#include <string_view>

#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

/// "2024:05:03 12:34:56" with Exif's fraction "123" and zone "+02:00", both of which may be empty
/// or no such thing, to "2024-05-03T12:34:56.123+02:00". Parts that are blank from some place on
/// are unknown.
std::string ExifDate(std::string_view date, std::string_view fraction, std::string_view zone);

/// "20240503" (00 for an unknown month or day), and "123456+0200" or without a zone; the time may
/// be empty.
std::string IimDate(std::string_view date, std::string_view time);

/// Hours, minutes and seconds in Greenwich of the day "2024:05:03".
std::string GpsDate(std::string_view day, const std::vector<Ratio>& time);

}  // namespace kivxmp::photo
