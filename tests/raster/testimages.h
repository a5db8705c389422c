// Images for tests, written and read back by plain GDAL.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "components/raster/rasterimage.h"

namespace tarn::raster {

struct Picture {
  int width = 0;
  int height = 0;
  int channels = 3;
  std::vector<uint8_t> pixels;

  uint8_t* at(int x, int y) { return &pixels[(static_cast<size_t>(y) * width + x) * channels]; }
  const uint8_t* at(int x, int y) const {
    return &pixels[(static_cast<size_t>(y) * width + x) * channels];
  }
};

/// Waves and noise without pure black and white.
Picture texture(int width, int height, int channels);
/// Slow waves alone.
Picture smooth(int width, int height, int channels);

struct FileForm {
  std::string driver = "GTiff";
  std::vector<std::string> options;
  bool georeferenced = true;
  bool coloursNamed = true;
};

/// Writes by GDAL; on failure the calling test fails.
void writePicture(const std::string& path, const Picture& picture, const FileForm& form = {});
void writeText(const std::string& path, const std::string& text);

/// The first picture or an overview (0 is the first overview) through GDAL, as gray or RGB.
Picture readByGdal(const std::string& path, int overview = -1);

/// Whether this system's GDAL can write TIFF files with that compression ("ZSTD"). Says so when it
/// cannot.
bool gdalHas(const std::string& compression);

/// A folder of its own, removed at the end.
class Scratch {
 public:
  Scratch();
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  const std::string& folder() const { return folder_; }
  std::string operator/(const std::string& name) const { return folder_ + "/" + name; }

 private:
  std::string folder_;
};

/// Opens with the pyramid beside the image; on failure the calling test fails and gets null.
std::shared_ptr<RasterImage> openImage(const std::string& path, const std::string& cache = "");
/// Builds the pyramid beside the image (or in `cache`).
Status buildFor(const std::string& path, const std::string& cache = "");

/// Reads a window as RGB; the test fails when that fails.
Picture readWindow(const RasterImage& image, const Window& window, bool smooth = false);
/// The whole image 1:1.
Picture readAll(const RasterImage& image);

/// Largest difference of two pictures of one size; gray compares with RGB.
int largestDifference(const Picture& a, const Picture& b);

}  // namespace tarn::raster
