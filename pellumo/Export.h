/// @file
/// Marks what a shared library exports. Hosts that link the static library on Windows define `PELLUMO_STATIC`; the
/// CMake target does it for them.
///
/// @def PELLUMO_API
/// Stands before each public class and function.
#pragma once

#if defined(_WIN32)
#if defined(PELLUMO_STATIC)
#define PELLUMO_API
#elif defined(PELLUMO_BUILDING)
#define PELLUMO_API __declspec(dllexport)
#else
#define PELLUMO_API __declspec(dllimport)
#endif
#else
#define PELLUMO_API __attribute__((visibility("default")))
#endif
