// A JPEG file whose rows of blocks are encoded side by side: each begins anew behind a restart
// marker, which every reader knows.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/tilecascade.h"

namespace tarn::convert {

struct JpegForm {
  int width = 0;
  int height = 0;
  int channels = 3;  ///< 1 gray, 3 RGB, stored as YCbCr with halved chroma
  int quality = 75;
  /// Segments (markers APPn and COM, whole) that describe the picture.
  std::vector<uint8_t> description;
};

/// The segments of a JPEG stream that describe its picture (APPn and COM), whole and in their
/// order. Empty for what is no JPEG stream.
std::vector<uint8_t> describingSegments(const std::vector<uint8_t>& stream);

/// Takes an image's tiles, or its rows from top to bottom. Keeps the rows of tiles that are not
/// complete: two, when tiles come as cascadeTiles() hands them on.
class JpegRowWriter final : public raster::TileSink {
 public:
  Status create(const std::string& path, JpegForm form);
  /// Tiles of level 0. The thread that completes a row of tiles encodes it, with others.
  Status writeTile(size_t level, int column, int row, const uint8_t* pixels) override;
  /// `rows` rows from `top` on, without gaps: raster::kPyramidTile of them, or what is left.
  Status writeRows(int top, int rows, const uint8_t* pixels);
  /// End of the stream, sync, close.
  Status finish();
  /// Reads the finished file again: every row of blocks is there and in its place.
  Status check() const;

 private:
  struct Gathered {
    std::vector<uint8_t> pixels;
    int missing = 0;  ///< tiles
  };
  using Segments = std::vector<std::vector<uint8_t>>;

  int rowsIn(int tileRow) const;
  size_t stride() const { return static_cast<size_t>(form_.width) * form_.channels; }
  Status writeHead(const std::vector<uint8_t>& stream);
  Status takeEncoded(int tileRow, Segments encoded);
  Status append(const std::vector<uint8_t>& bytes);

  std::string path_;
  JpegForm form_;
  OutputFile file_;
  int blockRows_ = 0;     ///< pixel rows that are encoded together
  uint64_t headEnd_ = 0;  ///< where the first row of blocks begins
  uint64_t end_ = 0;
  int written_ = 0;  ///< rows of blocks
  std::mutex mutex_;
  std::map<int, Gathered> gathered_;
  std::map<int, Segments> waiting_;  ///< encoded, for rows of tiles above them
  std::vector<std::vector<uint8_t>> spare_;
};

}  // namespace tarn::convert
