// Tests of the library over the real framework. Each test loads the library anew, so that its
// counter, its scale and its trace sites are as in a fresh process; the framework, which the test
// program is linked to, stays, and must be empty when a test is over.

#pragma once

#include <gtest/gtest.h>

#include <string>

#include "framework/kivcore/tests/Environment.h"
#include "framework/kivcore/tests/TestFolder.h"
#include "tests/SharedLibrary.h"
#include "tests/StartRecord.h"

namespace kivtests {

/// Everything that the library brings up, one line for each part that is up; empty for none.
std::string WhatIsUp();

class LibraryFixture : public ::testing::Test {
protected:
    using EnvironmentVariable = kivcore::testing::EnvironmentVariable;

    LibraryFixture();
    ~LibraryFixture() override;
    LibraryFixture(const LibraryFixture&) = delete;
    LibraryFixture& operator=(const LibraryFixture&) = delete;

    void TearDown() override;

    kivcore::testing::TestFolder folder;  ///< the preferences lie in it

private:
    EnvironmentVariable preferences_;
    EnvironmentVariable definitions_;
    EnvironmentVariable application_;
    SharedLibrary library_;

protected:
    const Functions api;
};

/// The last contained failure's text.
std::string LastFailure();

}  // namespace kivtests
