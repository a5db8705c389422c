// Native samples, alpha and masks through GDAL.
#pragma once

#include <cstdint>
#include <vector>

#include "base/result.h"
#include "components/raster/sampleconvert.h"

class GDALDataset;

namespace tarn::raster {

/// Sizes of a picture of a dataset, in pixels.
struct PictureShape {
  int width = 0;
  int height = 0;
  int blockWidth = 0;
  int blockHeight = 0;
  /// What GDAL decodes for the shown bands.
  uint64_t bytesPerPixel = 0;
};

/// The image (`overview` -1) or one of its overviews, as GDAL counts them. Fails (a sentence
/// without the file) when it is not there, is not of the image's kind (other samples, no mask where
/// the image has one), or when its blocks need more than kMostBlockBytes.
Result<PictureShape> shapeOf(GDALDataset& dataset, const Presentation& presentation, int overview);

/// Number of overviews that GDAL knows of the shown bands.
int overviewCount(GDALDataset& dataset, const Presentation& presentation);

struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Room for the samples of one piece after the other.
class SampleBuffer {
 public:
  /// Reads a rectangle inside the picture. The view holds until the next read. False when it cannot
  /// be read.
  bool read(GDALDataset& dataset, const Presentation& presentation, int overview,
            const PixelRect& rect);
  const SampleView& view() const { return view_; }

 private:
  std::vector<uint8_t> bytes_;
  SampleView view_;
};

/// Reads a rectangle as gray or RGB: width * height * channels bytes. False when it cannot be read.
bool readConverted(GDALDataset& dataset, const Presentation& presentation, int overview,
                   const PixelRect& rect, uint8_t* out);

/// The scale of a kScaled presentation: 2 and 98 per cent of the samples of the shown bands
/// together (the least and the largest where these are equal), of the coarsest overview that still
/// tells something when `ownOverviews`, else of the image: of all its pixels up to a million, of
/// blocks spread evenly over it beyond.
Scale measureScale(GDALDataset& dataset, const Presentation& presentation, bool ownOverviews);

/// Whether the colours are multiplied by alpha, as `presentation` supposes: many files only say so.
/// Looks at the pixels that measureScale() looks at, of the image itself.
bool coloursAreMultiplied(GDALDataset& dataset, const Presentation& presentation);

}  // namespace tarn::raster
