// What GDAL alone makes of a raster file: colours, what is nothing, and the place on the ground.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class GDALDataset;

namespace tarn::test {

/// A rectangle of pixels, row 0 on top.
struct Piece {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Three colours a pixel of 0 to 255, and whether there is something at all.
struct Colours {
  int width = 0;
  int height = 0;
  std::vector<float> rgb;
  std::vector<uint8_t> content;
};

/// Which samples become the darkest and the brightest colour.
struct Scale {
  double low = 0;
  double high = 0;
};

class Reference {
 public:
  explicit Reference(const std::string& path);
  ~Reference();
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;

  /// False when GDAL cannot open the file.
  bool isOpen() const { return data_ != nullptr; }
  int width() const;
  int height() const;
  /// Samples have more than 8 bits.
  bool isDeep() const;
  int controlPoints() const;
  /// GDAL's six numbers, files beside the image before what stands in it.
  std::optional<std::array<double, 6>> transform() const;

  /// Colours of a piece of the image. Nothing when GDAL fails to read it. `scale` counts for deep
  /// samples alone.
  std::optional<Colours> read(const Piece& piece, const Scale& scale) const;
  /// Shares of the piece's samples below and above the scale, where there is content.
  std::array<double, 2> sharesOutside(const Piece& piece, const Scale& scale) const;
  /// The whole image as GDAL warps it onto a north-up grid, bilinear.
  std::optional<Colours> warp(const std::array<double, 6>& grid, int width, int height,
                              const Scale& scale) const;

 private:
  struct Samples;
  std::optional<Samples> samples(const Piece& piece) const;
  std::array<int, 3> colourBands() const;

  GDALDataset* data_ = nullptr;
};

}  // namespace tarn::test
