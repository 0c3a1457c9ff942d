/// @file
/// Marks what a shared library exports. Hosts that link the static library on Windows define `TARVIX_STATIC`; the CMake
/// target does it for them.
///
/// @def TARVIX_API
/// Stands before each public class and function.
#pragma once

#if defined(_WIN32)
#if defined(TARVIX_STATIC)
#define TARVIX_API
#elif defined(TARVIX_BUILDING)
#define TARVIX_API __declspec(dllexport)
#else
#define TARVIX_API __declspec(dllimport)
#endif
#else
#define TARVIX_API __attribute__((visibility("default")))
#endif
