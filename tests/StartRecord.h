// What test hosts tell about themselves at start-up.

#pragma once

#include "include/kivmetadataapi.h"

namespace kivtests {

/// A complete record; the texts are not copied.
inline MetadataAPIInitParams StartRecord(const char* name = "Darkroom",
                                         const char* language = "en_US", float scale = 0)
{
    MetadataAPIInitParams record = {};
    record.clientName = name;
    record.clientVersion = "2.1";
    record.clientInternalVersion = "2.1.0";
    record.clientBuildNumber = "417";
    record.language = language;
    record.uiScaleFactor = scale;
    return record;
}

}  // namespace kivtests
