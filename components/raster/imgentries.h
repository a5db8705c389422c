// The entries of an IMG file, before GDAL follows them.
#pragma once

#include <cstdint>

#include "base/file.h"

namespace tarn::raster {

/// True when an entry of an IMG file says to hold more bytes than the file has: GDAL would ask for
/// that much memory before it reads. `fileSize` in bytes. False for every other kind of file, and
/// for whatever GDAL itself refuses.
bool hasEntryLargerThanFile(const RandomBytes& file, uint64_t fileSize);

}  // namespace tarn::raster
