// The ways to decode a level: straight from the file where its form is plain, else through GDAL.
#pragma once

#include <memory>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/presentation.h"
#include "components/raster/tiffdirectory.h"
#include "components/raster/tile.h"

namespace tarn::raster {

/// Uncompressed blocks read by their offsets, only the bytes needed. Strips are presented as tiles.
/// Null when the directory is not of this form.
std::unique_ptr<TileReader> makeRawTiffReader(std::shared_ptr<const RandomBytes> file,
                                              TiffDirectory directory);

/// JPEG blocks. Null when the directory is not of this form.
std::unique_ptr<TileReader> makeJpegTiffReader(std::shared_ptr<const RandomBytes> file,
                                               TiffDirectory directory);

/// Which picture of a GDAL dataset: the image, or one of its overviews (-1: none).
struct GdalPicture {
  std::shared_ptr<const GuardedImage> image;
  int overview = -1;
  Presentation presentation;
  /// Lines can only be decoded from the top, so tiles are best read one after the other.
  bool sequential = false;
};

/// Everything else, through as many dataset handles as threads ask at once. `first` is a handle
/// that is already open.
Result<std::unique_ptr<TileReader>> makeGdalReader(GdalPicture picture, DatasetPtr first);

}  // namespace tarn::raster
