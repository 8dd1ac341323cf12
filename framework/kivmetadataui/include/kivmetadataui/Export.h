// Marks what kivmetadataui exports.

#pragma once

#if defined(_WIN32) && defined(KIVMETADATAUI_BUILD)
#define KIVMETADATAUI_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIVMETADATAUI_API __declspec(dllimport)
#else
#define KIVMETADATAUI_API __attribute__((visibility("default")))
#endif
