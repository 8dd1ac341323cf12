// The system's window and module handles, without the system's headers. On Windows these are the
// declarations of the system itself; elsewhere the pointers are opaque, and a HWND that is not null
// is the number of an X11 window.

#pragma once

extern "C" {
struct HINSTANCE__;
typedef struct HINSTANCE__* HINSTANCE;
struct HWND__;
typedef struct HWND__* HWND;
}
