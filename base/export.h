// How a shared library marks what it offers.
#pragma once

#if defined(_WIN32)
/// For what the library offers, while it is built itself.
#define TARN_EXPORT __declspec(dllexport)
/// The same for those who use it.
#define TARN_IMPORT __declspec(dllimport)
#else
#define TARN_EXPORT __attribute__((visibility("default")))
#define TARN_IMPORT TARN_EXPORT
#endif
