// Inner loops of an export: samples of any type through a mapping.
#pragma once

#include <cstdint>
#include <vector>

#include "components/raster/mappedpart.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

/// The types that GDAL stores; complex ones are not exported.
enum class NativeType { kByte, kUInt16, kInt16, kUInt32, kInt32, kFloat, kDouble };
int bytesOf(NativeType type);

/// Calls `call` with a value of the type.
template <typename Call>
void withSampleType(NativeType type, const Call& call) {
  switch (type) {
    case NativeType::kByte:
      return call(uint8_t{});
    case NativeType::kUInt16:
      return call(uint16_t{});
    case NativeType::kInt16:
      return call(int16_t{});
    case NativeType::kUInt32:
      return call(uint32_t{});
    case NativeType::kInt32:
      return call(int32_t{});
    case NativeType::kFloat:
      return call(float{});
    case NativeType::kDouble:
      return call(double{});
  }
}

/// A piece of an image: all bands of a pixel together, rows without gaps. One row and one pixel
/// more may be read behind it.
struct NativePatch {
  Part part;
  std::vector<uint8_t> samples;
  /// One byte a pixel: 0 where there is nothing. Empty when all is content.
  std::vector<uint8_t> content;
};

struct NativeForm {
  NativeType type = NativeType::kByte;
  int bands = 1;
  bool blends = true;
  /// What is written where there is nothing, a value a band.
  std::vector<double> nothing;
  /// Integer content that equals `nothing` in a band becomes its neighbour.
  bool avoidsNothing = false;
};

/// Fills row `row` of a part of the grid; `out` begins at its first pixel. `width` and `height` are
/// of the whole image, `orientation` as of LevelExtent.
void exportRow(const NativeForm& form, const PlaneMapping& mapping, const Part& part, int row,
               int width, int height, double orientation, const NativePatch& patch, uint8_t* out);

/// Fills `pixels` pixels with `nothing`.
void fillNothing(const NativeForm& form, int64_t pixels, uint8_t* out);

}  // namespace tarn::raster
