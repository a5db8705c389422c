#include "host/pointcloud/cloudfile.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

#include "acedads.h"
#include "base/path.h"
#include "base/text.h"
#include "host/pointcloud/cloudbox.h"
#include "host/pointcloud/heightcolors.h"

namespace tarn::host {

namespace {

constexpr std::uint32_t kBlockPoints = 1U << 16;
/// At most so many points are read from the file for one close view.
constexpr std::uint64_t kMostDetailPoints = std::uint64_t{1} << 23;
/// A close view is read with so much more on each side, for panning.
constexpr double kDetailMargin = 0.25;
constexpr std::uint64_t kProbes = 256;
constexpr size_t kProbePoints = 32;
constexpr double kLowPart = 0.02;   // heights below and above these parts of all
constexpr double kHighPart = 0.98;  // do not spread the colours
constexpr int kWorthProgress = 1 << 20;

constexpr std::string_view kClosedFormats[] = {".pcg", ".rcp", ".rcs"};

double areaOf(const CloudBox& box) {
  return (box.maxX - box.minX + 1) * (box.maxY - box.minY + 1);
}

/// The meter of the status bar, shown only for what takes a while.
class Meter {
 public:
  explicit Meter(std::uint64_t points) : points_(points), isShown_(points > kWorthProgress) {
    if (isShown_) acedSetStatusBarProgressMeter(ACRX_T("Reading points"), 0, 100);
  }
  ~Meter() {
    if (isShown_) acedRestoreStatusBar();
  }
  Meter(const Meter&) = delete;
  Meter& operator=(const Meter&) = delete;

  /// False when the user wants it stopped.
  bool reached(std::uint64_t points) const {
    if (!isShown_) return true;
    acedSetStatusBarProgressMeterPos(static_cast<int>(points * 100 / points_));
    return acedUsrBrk() == 0;
  }

 private:
  std::uint64_t points_;
  bool isShown_;
};

Status checkFormat(const std::string& path) {
  const std::string ending = toLower(extensionOf(path));
  for (const std::string_view closed : kClosedFormats) {
    if (ending == closed) {
      return Status::error("files of the kind " + ending +
                           " are not public; points are read from LAS files");
    }
  }
  return {};
}

/// The files in memory. They stay as long as an entity shows them.
std::map<std::string, std::weak_ptr<CloudFile>>& openFiles() {
  static std::map<std::string, std::weak_ptr<CloudFile>> files;
  return files;
}

}  // namespace

Result<std::shared_ptr<CloudFile>> CloudFile::load(const std::string& path, bool& stopped) {
  stopped = false;
  const FileTimes times = fileTimes(path);
  std::weak_ptr<CloudFile>& open = openFiles()[path];
  std::shared_ptr<CloudFile> cloud = open.lock();
  if (cloud && cloud->times_.size == times.size && cloud->times_.modifiedNs == times.modifiedNs) {
    return cloud;
  }
  cloud = std::make_shared<CloudFile>();
  cloud->times_ = times;
  if (const Status read = cloud->readAll(path, stopped); !read) return read;
  open = cloud;
  return cloud;
}

Status CloudFile::readAll(const std::string& path, bool& stopped) {
  if (Status known = checkFormat(path); !known) return known;
  if (Status opened = reader_.open(path); !opened) return opened;
  if (header().isCompressed) {
    return Status::error("its points are compressed (LAZ); unpacked to LAS they can be read");
  }
  if (header().points == 0) return Status::error("it holds no points");
  const auto probed = probe();
  if (!probed) return probed.status();
  Box box = probed.value();
  for (int round = 0; round < 2; ++round) {
    auto levels = std::make_unique<CloudLevels>(box);
    if (Status read = readInto(*levels, stopped); !read) return read;
    Box found = emptyCloudBox();
    for (const Block& block : blocks_) {
      addTo(found, block.box.minX, block.box.minY);
      addTo(found, block.box.maxX, block.box.maxY);
    }
    // A grid over another area than that of the points would keep too few of them.
    const bool fits = contains(box, found) && areaOf(box) < 1.5 * areaOf(found);
    whole_ = std::move(levels);
    if (fits) break;
    box = found;
  }
  if (whole_->added() == 0) return Status::error("all its points are marked as deleted");
  whole_->finish();
  return {};
}

/// Looks at points from all over the file: how they are coloured, and about where they are.
Result<AcGiPointCloud::Box> CloudFile::probe() {
  const std::uint64_t points = header().points;
  const std::uint64_t step = std::max<std::uint64_t>(1, points / kProbes);
  Box box = emptyCloudBox();
  std::vector<LasPoint> records;
  std::vector<std::int32_t> heights;
  unsigned brightest = 0;
  for (std::uint64_t at = 0; at < points; at += step) {
    const auto count =
        static_cast<size_t>(std::min<std::uint64_t>({kProbePoints, step, points - at}));
    if (!reader_.read(at, count, records)) return Status::error("it cannot be read to its end");
    for (const LasPoint& record : records) {
      if (record.isWithheld) continue;
      addTo(box, record.x, record.y);
      heights.push_back(record.z);
      for (const unsigned part : record.rgb) brightest = std::max(brightest, part);
    }
  }
  // Colours should fill 16 bits; many programs write 8.
  coloring_.hasColors = header().colorAt >= 0 && brightest > 0;
  coloring_.shift = brightest > 255 ? 8 : 0;
  if (heights.empty()) heights.push_back(0);
  std::sort(heights.begin(), heights.end());
  const auto last = static_cast<double>(heights.size() - 1);
  coloring_.low = heights[static_cast<size_t>(std::lround(last * kLowPart))];
  coloring_.high = heights[static_cast<size_t>(std::lround(last * kHighPart))];
  const LasHeader& says = header();
  if (!says.hasBox()) return box.minX <= box.maxX ? box : CloudBox{};
  for (const double* corner : {says.minimum, says.maximum}) {
    addTo(box, std::round((corner[0] - says.offset[0]) / says.scale[0]),
          std::round((corner[1] - says.offset[1]) / says.scale[1]));
  }
  return box;
}

AcGiPointCloud::Point CloudFile::pointOf(const LasPoint& record) const {
  Point point{record.x, record.y, record.z, 0};
  if (coloring_.hasColors) {
    point.color = 0xff000000U;
    for (int i = 0; i < 3; ++i) {
      point.color |= (record.rgb[i] >> coloring_.shift & 0xffU) << (16 - 8 * i);
    }
  } else {
    point.color = heightColor(record.z, coloring_.low, coloring_.high);
  }
  return point;
}

Status CloudFile::readInto(CloudLevels& levels, bool& stopped) {
  const std::uint64_t points = header().points;
  const Meter meter(points);
  std::vector<LasPoint> records;
  blocks_.clear();
  for (std::uint64_t at = 0; at < points; at += kBlockPoints) {
    if (!meter.reached(at)) {
      stopped = true;
      return Status::error("the reading was stopped; REGEN reads it again");
    }
    Block block;
    block.box = emptyCloudBox();
    block.first = at;
    block.count = static_cast<std::uint32_t>(std::min<std::uint64_t>(kBlockPoints, points - at));
    if (!reader_.read(at, block.count, records)) {
      return Status::error("it cannot be read to its end");
    }
    for (const LasPoint& record : records) {
      if (record.isWithheld) continue;
      levels.add(pointOf(record));
      addTo(block.box, record.x, record.y);
    }
    if (block.box.minX <= block.box.maxX) blocks_.push_back(block);
  }
  return {};
}

void CloudFile::prepare(const Box& box, double spacing) {
  if (whole_->isComplete() || whole_->finestSpacing() <= spacing || !overlap(box, whole_->box())) {
    detail_.reset();
    return;
  }
  const bool isFine = detail_ && (detail_->isComplete() || detail_->finestSpacing() <= spacing);
  if (isFine && contains(detail_->box(), box)) return;
  const double marginX = (box.maxX - box.minX) * kDetailMargin;
  const double marginY = (box.maxY - box.minY) * kDetailMargin;
  detail_ =
      readDetail({box.minX - marginX, box.minY - marginY, box.maxX + marginX, box.maxY + marginY});
}

/// The points of one place; null when they are too many, or cannot be read.
std::unique_ptr<CloudLevels> CloudFile::readDetail(const Box& box) {
  std::vector<Block> wanted;
  std::uint64_t points = 0;
  for (const Block& block : blocks_) {
    if (!overlap(block.box, box)) continue;
    wanted.push_back(block);
    points += block.count;
  }
  if (points > kMostDetailPoints) return nullptr;
  auto levels = std::make_unique<CloudLevels>(box);
  const Meter meter(points);
  std::vector<LasPoint> records;
  points = 0;
  for (const Block& block : wanted) {
    if (!meter.reached(points) || !reader_.read(block.first, block.count, records)) return nullptr;
    for (const LasPoint& record : records) {
      const bool isInside = record.x >= box.minX && record.x <= box.maxX && record.y >= box.minY &&
                            record.y <= box.maxY;
      if (isInside && !record.isWithheld) levels->add(pointOf(record));
    }
    points += block.count;
  }
  levels->finish();
  return levels;
}

void CloudFile::visit(const Box& box, double spacing, const Visitor& visitor) const {
  // What stands in both is drawn twice, in the same place and colour.
  if (detail_) detail_->visit(box, spacing, visitor);
  if (!detail_ || !contains(detail_->box(), box)) whole_->visit(box, spacing, visitor);
}

}  // namespace tarn::host
