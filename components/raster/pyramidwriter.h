// Writes an overview file: a TIFF of reduced pictures in tiles, readable by every GDAL program.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/pyramidfile.h"

namespace tarn::raster {

struct PyramidForm {
  std::vector<LevelSize> levels;
  int channels = 3;
  /// JPEG tiles of quality 90 instead of raw ones.
  bool lossy = false;
  /// GDAL metadata of the first picture.
  std::string metadata;
  /// A file that could grow beyond this is a BigTIFF.
  uint64_t classicLimit = 4000ULL << 20;
};

/// Tiles may be written by several threads at once and in any order, each once. The file is no TIFF
/// until finish() has written its header.
class PyramidWriter {
 public:
  Status create(const std::string& path, PyramidForm form);
  /// `pixels` is a whole tile of kPyramidTile squared pixels.
  Status writeTile(size_t level, int column, int row, const uint8_t* pixels);
  /// Directories, header, sync, close.
  Status finish();

  /// Reads the finished file again: its directories, and a sample of tiles against what was
  /// written.
  Status check() const;

 private:
  struct Level {
    int columns = 0;
    int rows = 0;
    std::vector<uint64_t> offsets;
    std::vector<uint64_t> byteCounts;
  };
  struct Sample {
    uint64_t offset = 0;
    uint64_t bytes = 0;
    uint64_t hash = 0;
  };

  void addDirectory(std::vector<uint8_t>& out, uint64_t base, size_t level, bool last) const;

  std::string path_;
  PyramidForm form_;
  bool big_ = false;
  OutputFile file_;
  std::vector<Level> levels_;
  size_t tileCount_ = 0;
  std::atomic<uint64_t> end_{0};
  std::mutex mutex_;
  std::vector<Sample> samples_;
};

}  // namespace tarn::raster
