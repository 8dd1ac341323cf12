// Marks what kivmetadata exports.

#pragma once

#if defined(_WIN32) && defined(KIVMETADATA_BUILD)
#define KIVMETADATA_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIVMETADATA_API __declspec(dllimport)
#else
#define KIVMETADATA_API __attribute__((visibility("default")))
#endif
