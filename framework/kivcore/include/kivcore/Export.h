// Marks what kivcore exports.

#pragma once

#if defined(_WIN32) && defined(KIVCORE_BUILD)
#define KIVCORE_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIVCORE_API __declspec(dllimport)
#else
#define KIVCORE_API __attribute__((visibility("default")))
#endif
