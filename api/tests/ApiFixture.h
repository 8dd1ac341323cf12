// What the tests of the life cycle, the dialog and the definitions share: a well-filled start-up
// record and a clean recording framework.

#pragma once

#include <gtest/gtest.h>

#include "api/tests/RecordingFramework.h"
#include "include/kivmetadataapi.h"

class ApiTest : public testing::Test {
protected:
    ApiTest() { recording::Reset(); }

    static MetadataAPIInitParams Params()
    {
        MetadataAPIInitParams params = {};
        params.clientName = "Darkroom";
        params.clientVersion = "2.1";
        params.clientInternalVersion = "2.1.0";
        params.clientBuildNumber = "417";
        params.language = "de_DE";
        params.uiScaleFactor = 1;
        return params;
    }

    /// Brings the framework up and forgets the calls.
    static void BringUp(const MetadataAPIInitParams& params = Params())
    {
        ASSERT_TRUE(MetadataAPIInitialize(&params));
        recording::TakeCalls();
    }
};
