// One small photo of every format that is written, and where a save of it writes.

#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace kivxmp::test {

struct SamplePhoto {
    const char* name;  // of the file
    const char* format;
    std::string (*build)(std::string_view packet);  // "" for none
};

inline constexpr std::size_t kSampleCount = 6;
extern const std::array<SamplePhoto, kSampleCount> kSamplePhotos;

struct SavedSample {
    std::string photo;  // the name of the file that is opened
    std::string bytes;  // its content, with the title "t" where it holds one
    std::string saved;  // the name of the file that a save writes; the last row's is yet to be made
};

/// Those photos with a packet, a sidecar, and a photo whose packet goes into a new sidecar.
extern const std::array<SavedSample, kSampleCount + 2> kSavedSamples;

}  // namespace kivxmp::test
