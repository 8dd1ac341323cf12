// Marks what kivxmp exports.

#pragma once

#if defined(_WIN32) && defined(KIVXMP_BUILD)
#define KIVXMP_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIVXMP_API __declspec(dllimport)
#else
#define KIVXMP_API __attribute__((visibility("default")))
#endif
