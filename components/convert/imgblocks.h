// The pixels of an uncompressed IMG file of 8 bits, written straight into the places that its
// driver has laid out for them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/tilecascade.h"

namespace tarn::convert {

/// Takes the tiles of level 0 of a cascade. Create the file with its driver and close it first.
class ImgBlockWriter final : public raster::TileSink {
 public:
  /// Finds the blocks of every band. Fails (a sentence with the path) when they do not lie as they
  /// do in a new file of this size.
  Status open(const std::string& path, int width, int height, int channels);
  Status writeTile(size_t level, int column, int row, const uint8_t* pixels) override;
  /// Marks all blocks as written; sync and close.
  Status finish();

 private:
  /// One band: block i lies at `firstBlock` + i blocks; its list of blocks begins at `list`.
  struct Layer {
    uint64_t firstBlock = 0;
    uint64_t list = 0;
    std::vector<uint8_t> entries;
  };

  bool readLayer(const RandomFile& file, uint64_t layer);

  std::string path_;
  OutputFile file_;
  int columns_ = 0;
  int rows_ = 0;
  int channels_ = 0;
  std::vector<Layer> layers_;
};

}  // namespace tarn::convert
