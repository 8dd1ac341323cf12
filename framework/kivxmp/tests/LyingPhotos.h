// Photos that tell of packets, parts and directories of gigabytes. The files are as long as they
// say, and take no room on the disk: behind their beginning they have nothing but zeros.

#pragma once

#include <string>
#include <vector>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivxmp::test {

struct LyingPhoto {
    const char* about;
    std::string name;
};

/// Makes the files, to be opened.
std::vector<LyingPhoto> MakeLyingPhotos(const kivcore::testing::TestFolder& folder);

}  // namespace kivxmp::test
