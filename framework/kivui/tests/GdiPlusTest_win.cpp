#include <kivui/GdiPlus.h>

#include <memory>

// GDI+ wants the system's types in place before its own header.
#include <windows.h>

#include <objidl.h>
#include <tlhelp32.h>

#include <gdiplus.h>

#include <gtest/gtest.h>

namespace kivui::utility {
namespace {

// Threads of this process.
int ThreadCount()
{
    int count = 0;
    HANDLE const snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more != FALSE;
         more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

// Fills a picture with a colour, and reads it back.
Gdiplus::ARGB DrawnColor()
{
    Gdiplus::Bitmap picture(4, 4, PixelFormat32bppARGB);
    Gdiplus::Graphics graphics(&picture);
    EXPECT_EQ(graphics.Clear(Gdiplus::Color(255, 10, 20, 30)), Gdiplus::Ok);
    Gdiplus::Color color;
    EXPECT_EQ(picture.GetPixel(2, 2, &color), Gdiplus::Ok);
    return color.GetValue();
}

TEST(GdiPlusOnWindows, DrawsWhileAGuardLives)
{
    for (int round = 0; round < 3; ++round) {
        auto first = std::make_unique<StartupShutdownGdiPlus>();
        EXPECT_EQ(DrawnColor(), 0xFF0A141Eu);
        const StartupShutdownGdiPlus second;
        first.reset();
        EXPECT_EQ(DrawnColor(), 0xFF0A141Eu);
    }
}

DWORD WINAPI WaitFor(void* event)
{
    return WaitForSingleObject(event, INFINITE);
}

TEST(GdiPlusOnWindows, RunsNoThreadOfItsOwn)
{
    const int before = ThreadCount();
    // The count counts.
    HANDLE const event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE const thread = CreateThread(nullptr, 0, WaitFor, event, 0, nullptr);
    EXPECT_EQ(ThreadCount(), before + 1);
    SetEvent(event);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    CloseHandle(event);

    const StartupShutdownGdiPlus guard;
    EXPECT_EQ(ThreadCount(), before);
    DrawnColor();
    EXPECT_EQ(ThreadCount(), before);
}

}  // namespace
}  // namespace kivui::utility
