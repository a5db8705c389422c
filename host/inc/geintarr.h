// Arrays of integers.
#pragma once

#include "acarray.h"

using AcGeIntArray = AcArray<int>;
using AcDbIntArray = AcArray<int>;
