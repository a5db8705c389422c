// One point file in memory: a thinned picture of all of it, and the points of the last close view.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "acgipointcloud.h"
#include "adesk.h"
#include "base/file.h"
#include "base/result.h"
#include "host/pointcloud/cloudlevels.h"
#include "host/pointcloud/lasreader.h"

namespace tarn::host {

class ACADHOST_EXPORT CloudFile final : public AcGiPointCloud {
 public:
  /// The file, read once from start to end with progress in the status bar, or the one that is in
  /// memory already, unless the file has changed since. Refused in a sentence without the file's
  /// name. `stopped` is set when the user has stopped the reading.
  static Result<std::shared_ptr<CloudFile>> load(const std::string& path, bool& stopped);

  const LasHeader& header() const { return reader_.header(); }
  /// Where the points are, in whole units of the file.
  const Box& box() const { return whole_->box(); }
  std::uint64_t pointCount() const { return whole_->added(); }

  /// Makes ready what a view of `box` at `spacing` needs: when the picture of the whole file is too
  /// coarse for it, the points of this place are read from the file, unless these are too many.
  /// For regenerations; repainting works with what is there.
  void prepare(const Box& box, double spacing);

  void visit(const Box& box, double spacing, const Visitor& visitor) const override;

 private:
  /// A run of records that stand together in the file.
  struct Block {
    Box box;
    std::uint64_t first = 0;
    std::uint32_t count = 0;
  };
  /// How a record becomes a point.
  struct Coloring {
    bool hasColors = false;
    int shift = 8;
    double low = 0;
    double high = 1;
  };

  Status readAll(const std::string& path, bool& stopped);
  Result<Box> probe();
  Status readInto(CloudLevels& levels, bool& stopped);
  Point pointOf(const LasPoint& record) const;
  std::unique_ptr<CloudLevels> readDetail(const Box& box);

  LasReader reader_;
  FileTimes times_;
  Coloring coloring_;
  std::vector<Block> blocks_;
  std::unique_ptr<CloudLevels> whole_;
  std::unique_ptr<CloudLevels> detail_;
};

}  // namespace tarn::host
