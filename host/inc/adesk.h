// Basic types of the host's public interface.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#if defined(CADHOST_BUILD)
#define ACADHOST_EXPORT __declspec(dllexport)
#else
#define ACADHOST_EXPORT __declspec(dllimport)
#endif
#define ACRX_MODULE_EXPORT __declspec(dllexport)
#define ACRX_MODULE_LOCAL
#else
#define ACADHOST_EXPORT __attribute__((visibility("default")))
#define ACRX_MODULE_EXPORT __attribute__((visibility("default")))
#define ACRX_MODULE_LOCAL __attribute__((visibility("hidden")))
#endif

using ACHAR = wchar_t;

#define ACRX_WIDEN_(text) L##text
#define ACRX_T(text) ACRX_WIDEN_(text)
#define _ACRX_T(text) ACRX_WIDEN_(text)
#ifndef _T
#define _T(text) ACRX_WIDEN_(text)
#endif

namespace Adesk {

using Int8 = std::int8_t;
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Int64 = std::int64_t;
using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using UInt64 = std::uint64_t;
using IntPtr = std::intptr_t;
using UIntPtr = std::uintptr_t;
using LongPtr = std::intptr_t;
using ULongPtr = std::uintptr_t;
using IntDbId = std::intptr_t;
using GsMarker = std::intptr_t;
using uchar = unsigned char;
using Boolean = bool;

constexpr Boolean kFalse = false;
constexpr Boolean kTrue = true;

}  // namespace Adesk
