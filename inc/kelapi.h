// What libkelpie_core exports.
#pragma once

#if defined(_WIN32)
#ifdef KELPIE_CORE_BUILD
#define KEL_API __declspec(dllexport)
#else
#define KEL_API __declspec(dllimport)
#endif
#else
#define KEL_API __attribute__((visibility("default")))
#endif
