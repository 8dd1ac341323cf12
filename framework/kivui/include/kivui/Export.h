// Marks what kivui exports.

#pragma once

#if defined(_WIN32) && defined(KIVUI_BUILD)
#define KIVUI_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIVUI_API __declspec(dllimport)
#else
#define KIVUI_API __attribute__((visibility("default")))
#endif
