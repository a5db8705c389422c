// Result buffers and texts that host and modules hand to each other.
#pragma once

#include "acdb.h"
#include "adscodes.h"
#include "adsdef.h"

/// A zeroed result buffer of the given type; null only when memory is exhausted. Freed by
/// acutRelRb.
ACADHOST_EXPORT resbuf* acutNewRb(int type);

/// Frees a chain with its texts and binary chunks. RTNORM, also for null.
ACADHOST_EXPORT int acutRelRb(resbuf* chain);

/// A chain from (type, value) pairs, ended by RTNONE or 0 (RTDXF0 stands for group code 0). Values:
/// double, ads_point, int (16-bit types), Adesk::Int32, Adesk::Int64, ACHAR*, ads_name, const
/// ads_binary*, nothing for RTLB, RTLE, RTNIL, RTT, RTVOID, RTDOTE. Texts are copied. Null
/// when nothing was given or a type is unknown.
ACADHOST_EXPORT resbuf* acutBuildList(int type, ...);

/// Copies a text; `output` is freed by acutDelString.
ACADHOST_EXPORT Acad::ErrorStatus acutNewString(const ACHAR* input, ACHAR*& output);
ACADHOST_EXPORT void acutDelString(ACHAR*& text);
