// A plain uncompressed RGB GeoTIFF, written from top to bottom.
#pragma once

#include <cstdint>
#include <string>

#include "base/file.h"
#include "base/result.h"
#include "base/span.h"

namespace tarn::ortho {

struct GeoReference {
  double left = 0;       // easting of the outer upper-left corner, metres
  double top = 0;        // northing of the same corner
  double pixelSize = 1;  // metres
  uint16_t epsg = 0;     // projected coordinate system
};

class TiffWriter {
 public:
  /// Starts the file. Width and height in pixels; the file must stay below 4 GiB.
  Status open(const std::string& path, uint32_t width, uint32_t height, const GeoReference& geo);
  /// Writes rows of R, G, B bytes from `firstRow` on; rows may come in any order.
  Status writeRows(uint32_t firstRow, Span<const uint8_t> pixels);
  /// Ends the file; it is on the disk when this succeeds.
  Status finish();

 private:
  OutputFile file_;
  uint64_t pixelOffset_ = 0;
  uint64_t rowBytes_ = 0;
};

}  // namespace tarn::ortho
