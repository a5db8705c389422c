// Writes a TIFF of pictures in tiles, each smaller than the one before: an image with its overviews
// or overviews alone. Readable by every GDAL program.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/pyramidfile.h"
#include "components/raster/tifftags.h"
#include "components/raster/tilecascade.h"
#include "components/raster/tilecodec.h"

namespace tarn::raster {

struct TiledTiffForm {
  /// Sizes of the pictures, the largest first.
  std::vector<LevelSize> levels;
  int channels = 3;
  TileCoding coding;
  /// The first picture is an image in full size; else all are overviews of another file's.
  bool holdsImage = false;
  /// Further tags of the first picture, which say nothing about how it is stored.
  std::vector<TiffTag> tags;
  /// Directories and overviews come first, as readers over a network want it.
  bool cloudOptimised = false;
  /// A file that grows beyond this is a BigTIFF.
  uint64_t classicLimit = 4000ULL << 20;
};

/// Tiles may be written by several threads at once and in any order, each once. The file is no TIFF
/// until finish() has written its header. A cloud-optimised file of compressed tiles needs its room
/// twice meanwhile: "<path>.tiles" holds the tiles until their sizes are known.
class TiledTiffWriter final : public TileSink {
 public:
  Status create(const std::string& path, TiledTiffForm form);
  /// `pixels` is a whole tile of kPyramidTile squared pixels.
  Status writeTile(size_t level, int column, int row, const uint8_t* pixels) override;
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
    size_t level = 0;
    size_t index = 0;
    uint64_t hash = 0;
  };

  /// Tiles go straight into their place, or first into the file beside.
  bool isSpooled() const {
    return form_.cloudOptimised && form_.coding.compression != TileCompression::kNone;
  }
  std::string spoolPath() const { return path_ + ".tiles"; }
  std::vector<TiffTag> tagsOf(size_t level) const;
  std::vector<uint8_t> directories(uint64_t base) const;
  std::vector<uint8_t> header(uint64_t firstDirectory) const;
  std::vector<uint8_t> cloudHead() const;
  void placeTiles();
  Status copySpooled(const std::vector<Level>& spooled);
  Status finishCloud();
  Status finishPlain();
  Status writeFramed(uint64_t offset, const uint8_t* bytes, uint64_t count);

  std::string path_;
  TiledTiffForm form_;
  bool big_ = false;
  OutputFile file_;
  OutputFile spool_;
  std::vector<Level> levels_;
  size_t tileCount_ = 0;
  std::atomic<uint64_t> end_{0};
  std::mutex mutex_;
  std::vector<Sample> samples_;
};

}  // namespace tarn::raster
