#pragma once

// Marks what the module's shared library offers to hosts; everything else in it stays hidden.
#if defined(_WIN32)
#if defined(INPS_MODULE_BUILD)
#define INPS_EXPORT __declspec(dllexport)
#elif defined(INPS_MODULE_USE)
#define INPS_EXPORT __declspec(dllimport)
#else
#define INPS_EXPORT
#endif
#else
#define INPS_EXPORT __attribute__((visibility("default")))
#endif
