#include "components/raster/gdalsamples.h"

#include <gdal_priv.h>

#include <algorithm>

#include "components/raster/tile.h"

namespace tarn::raster {
namespace {

// Samples are converted in pieces of about this size.
constexpr int64_t kPieceBytes = 4 << 20;

GDALRasterBand* pictureBand(GDALDataset& dataset, int number, int overview) {
  GDALRasterBand* band = dataset.GetRasterBand(number);
  return band && overview >= 0 ? band->GetOverview(overview) : band;
}

std::vector<int> bandsRead(const Presentation& presentation) {
  std::vector<int> bands = presentation.bands;
  if (presentation.alphaBand > 0) bands.push_back(presentation.alphaBand);
  return bands;
}

std::string bitsOf(GDALRasterBand& band) {
  const char* bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
  return bits ? bits : "";
}

GDALDataType bufferType(SampleType type, GDALRasterBand& band) {
  switch (type) {
    case SampleType::kByte:
      return GDT_Byte;
    case SampleType::kSignedByte:
      // Whatever GDAL calls it: the bits are wanted as they are.
      return band.GetRasterDataType();
    case SampleType::kUInt16:
      return GDT_UInt16;
    case SampleType::kInt16:
      return GDT_Int16;
    case SampleType::kFloat:
      return GDT_Float32;
    case SampleType::kDouble:
      break;
  }
  return GDT_Float64;
}

/// Bytes of one block of a band, decoded.
uint64_t blockBytes(GDALRasterBand& band) {
  int width = 0, height = 0;
  band.GetBlockSize(&width, &height);
  return static_cast<uint64_t>(std::max(width, 1)) * static_cast<uint64_t>(std::max(height, 1)) *
         static_cast<uint64_t>(GDALGetDataTypeSizeBytes(band.GetRasterDataType()));
}

/// What GDAL holds when it reads one block of the shown bands.
uint64_t blockBytes(GDALDataset& dataset, const Presentation& presentation, int overview) {
  const char* interleave = dataset.GetMetadataItem("INTERLEAVE", "IMAGE_STRUCTURE");
  GDALRasterBand& first = *pictureBand(dataset, presentation.bands[0], overview);
  uint64_t bytes = presentation.hasMask ? blockBytes(*first.GetMaskBand()) : 0;
  if (interleave && EQUAL(interleave, "PIXEL"))
    return bytes + blockBytes(first) * static_cast<uint64_t>(dataset.GetRasterCount());
  for (const int number : bandsRead(presentation)) {
    bytes += blockBytes(*pictureBand(dataset, number, overview));
  }
  return bytes;
}

bool isReadable(GDALRasterBand& image, GDALRasterBand& picture, const PictureShape& shape) {
  return picture.GetXSize() == shape.width && picture.GetYSize() == shape.height &&
         picture.GetRasterDataType() == image.GetRasterDataType() &&
         bitsOf(picture) == bitsOf(image);
}

}  // namespace

Result<PictureShape> shapeOf(GDALDataset& dataset, const Presentation& presentation, int overview) {
  GDALRasterBand* first = pictureBand(dataset, presentation.bands[0], overview);
  if (!first) return Status::error("has no such picture");
  PictureShape shape{first->GetXSize(), first->GetYSize(), 1, 1, 0};
  first->GetBlockSize(&shape.blockWidth, &shape.blockHeight);
  for (const int number : bandsRead(presentation)) {
    GDALRasterBand* image = dataset.GetRasterBand(number);
    GDALRasterBand* picture = pictureBand(dataset, number, overview);
    if (!picture || (overview >= 0 && !isReadable(*image, *picture, shape)))
      return Status::error("has an overview of another kind");
  }
  const int maskFlags = first->GetMaskFlags() & (GMF_ALL_VALID | GMF_NODATA | GMF_ALPHA);
  if (presentation.hasMask && maskFlags != 0)
    return Status::error("has an overview without its mask");
  if (shape.blockWidth < 1 || shape.blockHeight < 1) return Status::error("has blocks of no size");
  const uint64_t bytes = blockBytes(dataset, presentation, overview);
  if (bytes > kMostBlockBytes)
    return Status::error("its pixels are stored in pieces of more than " +
                         std::to_string(kMostBlockBytes >> 20) + " MiB");
  shape.bytesPerPixel =
      bytes / (static_cast<uint64_t>(shape.blockWidth) * static_cast<uint64_t>(shape.blockHeight)) +
      1;
  return shape;
}

int overviewCount(GDALDataset& dataset, const Presentation& presentation) {
  return dataset.GetRasterBand(presentation.bands[0])->GetOverviewCount();
}

bool SampleBuffer::read(GDALDataset& dataset, const Presentation& presentation, int overview,
                        const PixelRect& rect) {
  const size_t pixels = static_cast<size_t>(rect.width) * rect.height;
  const size_t plane = pixels * bytesOf(presentation.type);
  const std::vector<int> numbers = bandsRead(presentation);
  bytes_.resize(plane * numbers.size() + (presentation.hasMask ? pixels : 0));
  const auto readInto = [&](GDALRasterBand* band, GDALDataType type, uint8_t* target) {
    return band && band->RasterIO(GF_Read, rect.x, rect.y, rect.width, rect.height, target,
                                  rect.width, rect.height, type, 0, 0, nullptr) == CE_None;
  };
  view_ = {};
  view_.pixels = pixels;
  for (size_t i = 0; i < numbers.size(); ++i) {
    GDALRasterBand* band = pictureBand(dataset, numbers[i], overview);
    uint8_t* target = bytes_.data() + i * plane;
    if (!band || !readInto(band, bufferType(presentation.type, *band), target)) return false;
    if (i < presentation.bands.size()) {
      view_.bands[i] = target;
    } else {
      view_.alpha = target;
    }
  }
  for (size_t i = 0; i < presentation.bands.size() && presentation.alphaMultiplied; ++i)
    divideByAlpha(presentation, view_.alpha, pixels, bytes_.data() + i * plane);
  if (!presentation.hasMask) return true;
  GDALRasterBand* first = pictureBand(dataset, presentation.bands[0], overview);
  uint8_t* mask = bytes_.data() + numbers.size() * plane;
  view_.mask = mask;
  return readInto(first->GetMaskBand(), GDT_Byte, mask);
}

bool readConverted(GDALDataset& dataset, const Presentation& presentation, int overview,
                   const PixelRect& rect, uint8_t* out) {
  const int channels = presentation.channels;
  if (presentation.conversion == Conversion::kBytes && !presentation.statesNothing()) {
    for (int c = 0; c < channels; ++c) {
      GDALRasterBand* band = pictureBand(dataset, presentation.bands[c], overview);
      if (!band || band->RasterIO(GF_Read, rect.x, rect.y, rect.width, rect.height, out + c,
                                  rect.width, rect.height, GDT_Byte, channels,
                                  static_cast<GSpacing>(rect.width) * channels, nullptr) != CE_None)
        return false;
    }
    return true;
  }
  // Whole rows of blocks, so that no block is decoded for one piece and again for the next.
  int blockWidth = 1, blockHeight = 1;
  GDALRasterBand* first = pictureBand(dataset, presentation.bands[0], overview);
  if (!first) return false;
  first->GetBlockSize(&blockWidth, &blockHeight);
  const int64_t rowBytes = static_cast<int64_t>(rect.width) * bytesOf(presentation.type) *
                           bandsRead(presentation).size();
  const int64_t wanted = std::max<int64_t>(1, kPieceBytes / rowBytes);
  const int rows = static_cast<int>(
      std::min<int64_t>(rect.height, (wanted + blockHeight - 1) / blockHeight * blockHeight));
  SampleBuffer samples;
  for (int y = 0; y < rect.height; y += rows) {
    const int height = std::min(rows, rect.height - y);
    if (!samples.read(dataset, presentation, overview, {rect.x, rect.y + y, rect.width, height}))
      return false;
    convertSamples(presentation, samples.view(),
                   out + static_cast<size_t>(y) * rect.width * channels);
  }
  return true;
}

}  // namespace tarn::raster
