// What libkelpie_core exports, and what plug-ins do.
#pragma once

#include "base/export.h"

#ifdef KELPIE_CORE_BUILD
#define KEL_API TARN_EXPORT
#else
#define KEL_API TARN_IMPORT
#endif

/// Marks the entry of a plug-in.
#define KEL_PLUGIN_API TARN_EXPORT
