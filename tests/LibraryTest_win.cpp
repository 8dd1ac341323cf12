// What the library does on Windows only: GDI+ for as long as it lives.

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/LibraryFixture.h"

namespace kivtests {
namespace {

// Asks GDI+ for a bitmap, as the dialog does. 0 is success, 18 that GDI+ was not started.
int StatusOfGdiPlus()
{
    const HMODULE library = LoadLibraryW(L"gdiplus.dll");
    using Create = int(WINAPI*)(INT, INT, INT, INT, BYTE*, void**);
    using Dispose = int(WINAPI*)(void*);
    const auto find = [library](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    };
    constexpr INT kPixelFormat32bppArgb = 0x0026200A;
    void* bitmap = nullptr;
    const int status = reinterpret_cast<Create>(find("GdipCreateBitmapFromScan0"))(
        4, 4, 0, kPixelFormat32bppArgb, nullptr, &bitmap);
    if (bitmap != nullptr) {
        reinterpret_cast<Dispose>(find("GdipDisposeImage"))(bitmap);
    }
    FreeLibrary(library);
    return status;
}

class LibraryWindowsTest : public LibraryFixture {};

TEST_F(LibraryWindowsTest, GdiPlusIsThereWhereItWasAskedFor)
{
    MetadataAPIInitParams record = StartRecord();
    for (int round = 0; round < 3; ++round) {
        record.startGdiPlus = 1;
        ASSERT_TRUE(api.initialize(&record));
        EXPECT_EQ(StatusOfGdiPlus(), 0);
        api.terminate();
    }
}

}  // namespace
}  // namespace kivtests
