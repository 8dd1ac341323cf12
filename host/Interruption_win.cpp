#include "host/Interruption.h"

#include <atomic>

#include <windows.h>

namespace kivhost {

namespace {

std::atomic<bool> noted = false;

// Runs in a thread of the system's own.
BOOL WINAPI NoteEvent(DWORD event)
{
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        return FALSE;
    }
    return noted.exchange(true) ? FALSE : TRUE;
}

}  // namespace

Interruption::Interruption()
{
    noted = false;
    SetConsoleCtrlHandler(&NoteEvent, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(&NoteEvent, FALSE);
}

bool Interruption::IsAskedFor() const
{
    return noted;
}

int Interruption::End() const
{
    constexpr DWORD kEndedByControlC = 0xC000013A;
    return static_cast<int>(kEndedByControlC);
}

}  // namespace kivhost
