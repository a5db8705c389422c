#include "components/raster/warpexport.h"

#include <gdal_priv.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "base/file.h"
#include "base/parallel.h"
#include "base/path.h"
#include "components/raster/buildfolder.h"
#include "components/raster/exportform.h"
#include "components/raster/exportsource.h"
#include "components/raster/sidefiles.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {
namespace {

// Sides of blocks, multiples of the file's tiles, and what a block and its source may take.
constexpr int kLargestBlock = 512, kSmallestBlock = 64, kSmallestPart = 8;
constexpr int64_t kMostBytes = 12 << 20;
// Decoded tiles kept meanwhile; what is above goes to the file.
constexpr uint64_t kTileBytes = 48ULL << 20;
constexpr size_t kMostSamples = 32;

/// The tile cache with less room while it lives.
class SmallTileCache {
 public:
  SmallTileCache() : limit_(TileCache::shared().limit()) {
    TileCache::shared().setLimit(std::min(limit_, kTileBytes));
  }
  ~SmallTileCache() { TileCache::shared().setLimit(limit_); }
  SmallTileCache(const SmallTileCache&) = delete;
  SmallTileCache& operator=(const SmallTileCache&) = delete;

 private:
  uint64_t limit_;
};

uint64_t hashOf(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 1469598103934665603ULL;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 1099511628211ULL;
  return hash;
}

/// Writes all blocks of one export.
class Exporter {
 public:
  Exporter(const RasterImage& image, const ExportRequest& request, const ExportForm& form)
      : request_(request),
        form_(form),
        source_(image, form),
        mapping_(toOwnPixels(image, request.grid.mapping)) {
    const OwnPlace own = image.ownPlace();
    width_ = own.width;
    height_ = own.height;
    pixelBytes_ = int64_t{form.samples.bands} * bytesOf(form.samples.type);
    block_ = kLargestBlock;
    while (block_ > kSmallestBlock && block_ * block_ * pixelBytes_ > kMostBytes) block_ /= 2;
  }

  Status write(GDALDataset& target, const Progress& progress);
  /// Reads some blocks of the finished file again.
  bool check(GDALDataset& finished) const;

 private:
  bool fill(const Part& part, const Part& block, uint8_t* out);
  bool fillByPoints(const Part& part, const Part& block, uint8_t* out);
  bool fillBy(const PlaneMapping& piece, const Part& part, const Part& block, uint8_t* out);
  template <typename Fill>
  static bool quarters(const Part& part, const Fill& fillOne);
  void clear(const Part& part, const Part& block, uint8_t* out) const;
  uint8_t* rowOf(const Part& part, int row, const Part& block, uint8_t* out) const {
    return out + (int64_t{part.y + row - block.y} * block.width + (part.x - block.x)) * pixelBytes_;
  }
  CPLErr transfer(GDALDataset& dataset, GDALRWFlag flag, const Part& block, void* bytes) const;
  Part blockAt(size_t index) const;
  void sample(size_t index, const std::vector<uint8_t>& bytes);

  const ExportRequest& request_;
  const ExportForm& form_;
  ExportSource source_;
  std::shared_ptr<const CurvedMapping> mapping_;
  int width_ = 0;
  int height_ = 0;
  int64_t pixelBytes_ = 1;
  int block_ = kLargestBlock;
  std::map<size_t, uint64_t> samples_;
};

Part Exporter::blockAt(size_t index) const {
  const size_t across = (static_cast<size_t>(request_.grid.width) + block_ - 1) / block_;
  Part part;
  part.x = static_cast<int>(index % across) * block_;
  part.y = static_cast<int>(index / across) * block_;
  part.width = std::min(block_, request_.grid.width - part.x);
  part.height = std::min(block_, request_.grid.height - part.y);
  return part;
}

CPLErr Exporter::transfer(GDALDataset& dataset, GDALRWFlag flag, const Part& block,
                          void* bytes) const {
  return dataset.RasterIO(flag, block.x, block.y, block.width, block.height, bytes, block.width,
                          block.height, gdalTypeOf(form_.samples.type), form_.samples.bands,
                          nullptr, pixelBytes_, pixelBytes_ * block.width,
                          bytesOf(form_.samples.type), nullptr);
}

void Exporter::clear(const Part& part, const Part& block, uint8_t* out) const {
  for (int row = 0; row < part.height; ++row)
    fillNothing(form_.samples, part.width, rowOf(part, row, block, out));
}

template <typename Fill>
bool Exporter::quarters(const Part& part, const Fill& fillOne) {
  const int w = part.width / 2, h = part.height / 2;
  const Part parts[] = {{part.x, part.y, w, h},
                        {part.x + w, part.y, part.width - w, h},
                        {part.x, part.y + h, w, part.height - h},
                        {part.x + w, part.y + h, part.width - w, part.height - h}};
  return std::all_of(std::begin(parts), std::end(parts), fillOne);
}

bool Exporter::fill(const Part& part, const Part& block, uint8_t* out) {
  if (part.isEmpty()) return true;
  const PlanePoint low{static_cast<double>(part.x), static_cast<double>(part.y)};
  const PlanePoint high{low.x + part.width, low.y + part.height};
  if (!mapping_->mayShow(low, high)) {
    clear(part, block, out);
    return true;
  }
  if (const auto piece = pieceOf(*mapping_, low, high, 1, {1, 1}))
    return fillBy(*piece, part, block, out);
  if (part.width <= kSmallestPart && part.height <= kSmallestPart)
    return fillByPoints(part, block, out);
  return quarters(part, [&](const Part& quarter) { return fill(quarter, block, out); });
}

/// Pixel by pixel, where the mapping ends or turns sharply.
bool Exporter::fillByPoints(const Part& part, const Part& block, uint8_t* out) {
  clear(part, block, out);
  for (int y = part.y; y < part.y + part.height; ++y) {
    for (int x = part.x; x < part.x + part.width; ++x) {
      const PlanePoint centre{x + 0.5, y + 0.5};
      const auto p = mapping_->at(centre.x, centre.y);
      if (!p || !(p->x >= 0 && p->y >= 0 && p->x < width_ && p->y < height_)) continue;
      const PlaneMapping around(centre, {p->x, 1, 0}, {p->y, 0, mapping_->orientation()});
      if (!fillBy(around, {x, y, 1, 1}, block, out)) return false;
    }
  }
  return true;
}

bool Exporter::fillBy(const PlaneMapping& piece, const Part& part, const Part& block,
                      uint8_t* out) {
  if (part.isEmpty()) return true;
  NativePatch patch;
  patch.part = sourceOf(piece, width_, height_, part);
  if (patch.part.isEmpty()) {
    clear(part, block, out);
    return true;
  }
  if (patch.part.pixels() * pixelBytes_ > kMostBytes && part.width > 1 && part.height > 1) {
    return quarters(part, [&](const Part& quarter) { return fillBy(piece, quarter, block, out); });
  }
  if (!source_.read(patch)) return false;
  for (int row = 0; row < part.height; ++row)
    exportRow(form_.samples, piece, part, row, width_, height_, mapping_->orientation(), patch,
              rowOf(part, row, block, out));
  return true;
}

void Exporter::sample(size_t index, const std::vector<uint8_t>& bytes) {
  const size_t across = (static_cast<size_t>(request_.grid.width) + block_ - 1) / block_;
  const size_t down = (static_cast<size_t>(request_.grid.height) + block_ - 1) / block_;
  const size_t step = std::max<size_t>(1, across * down / kMostSamples);
  if (index % step == 0 || index + 1 == across * down) samples_[index] = hashOf(bytes);
}

Status Exporter::write(GDALDataset& target, const Progress& progress) {
  const size_t across = (static_cast<size_t>(request_.grid.width) + block_ - 1) / block_;
  const size_t down = (static_cast<size_t>(request_.grid.height) + block_ - 1) / block_;
  const size_t count = across * down;
  enum { kFine, kUnreadable, kUnwritten, kStopped };
  std::atomic<int> state{kFine};
  std::atomic<size_t> done{0};
  std::mutex mutex;
  std::string reason;
  const auto caller = std::this_thread::get_id();
  const auto tell = [&] {
    int fine = kFine;
    if (std::this_thread::get_id() == caller && progress &&
        !progress(static_cast<double>(done) / static_cast<double>(count)))
      state.compare_exchange_strong(fine, kStopped);
  };
  const auto work = [&](size_t index) {
    if (state != kFine) return;
    const Part block = blockAt(index);
    std::vector<uint8_t> bytes(static_cast<size_t>(block.pixels() * pixelBytes_));
    int fine = kFine;
    if (!fill(block, block, bytes.data())) {
      state.compare_exchange_strong(fine, kUnreadable);
      return;
    }
    {
      const std::lock_guard<std::mutex> lock(mutex);
      const GdalErrors errors;
      if (transfer(target, GF_Write, block, bytes.data()) != CE_None || errors.failures() > 0) {
        if (reason.empty()) reason = errors.text();
        state.compare_exchange_strong(fine, kUnwritten);
        return;
      }
      sample(index, bytes);
    }
    ++done;
    tell();
  };
  // Row after row of blocks, so that what neighbours need of the source is still there.
  for (size_t row = 0; row < down && state == kFine; ++row) {
    parallelFor(across, [&](size_t i) { work(row * across + i); });
    tell();
  }
  switch (state) {
    case kUnreadable:
      return Status::error("some pixels of the image cannot be read");
    case kUnwritten:
      return Status::error("cannot be written: " + reason);
    case kStopped:
      return Status::error("was stopped");
    default:
      return Status::ok();
  }
}

bool Exporter::check(GDALDataset& finished) const {
  if (finished.GetRasterXSize() != request_.grid.width ||
      finished.GetRasterYSize() != request_.grid.height ||
      finished.GetRasterCount() != form_.samples.bands)
    return false;
  return std::all_of(samples_.begin(), samples_.end(), [&](const auto& one) {
    const Part block = blockAt(one.first);
    std::vector<uint8_t> bytes(static_cast<size_t>(block.pixels() * pixelBytes_));
    return transfer(finished, GF_Read, block, bytes.data()) == CE_None &&
           hashOf(bytes) == one.second;
  });
}

DatasetPtr createFile(const std::string& path, const ExportRequest& request, const ExportForm& form,
                      GDALDataType type) {
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(
      request.format == ExportFormat::kTiff ? "GTiff" : "HFA");
  if (!driver) return nullptr;
  CPLStringList options;
  for (const std::string& option : form.options) options.AddString(option.c_str());
  return DatasetPtr(driver->Create(path.c_str(), request.grid.width, request.grid.height,
                                   form.samples.bands, type, options.List()));
}

Status makeFile(const RasterImage& image, GDALDataset& source, const ExportRequest& request,
                const std::string& path, const Progress& progress) {
  auto decided = decideExportForm(source, request);
  if (!decided) return Status::error(image.path() + ": " + decided.message());
  const ExportForm& form = decided.value();
  const GdalErrors errors;
  const auto failed = [&](const std::string& what) {
    return Status::error(what + (errors.text().empty() ? "" : ": " + errors.text()));
  };
  DatasetPtr target = createFile(path, request, form, gdalTypeOf(form.samples.type));
  if (!target) return failed("cannot be created");
  if (Status described = describeExport(source, image, request, form, *target); !described)
    return described;
  Exporter exporter(image, request, form);
  if (Status written = exporter.write(*target, progress); !written) return written;
  if (Status sides = writeSideFiles(*target, path); !sides) return sides;
  target->FlushCache();
  target.reset();
  if (errors.failures() > 0) return failed("cannot be written");
  const DatasetPtr finished(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
  if (!finished || !exporter.check(*finished)) return failed("was not written whole");
  return Status::ok();
}

}  // namespace

Status checkExportTarget(const RasterImage& image, const std::string& target) {
  const std::string folder = folderOf(target), full = absolutePath(target);
  if (nameOf(target).empty() || stemOf(target).empty())
    return Status::error(target + ": is no name of a file");
  if (fileKind(target) != FileKind::kMissing && fileKind(target) != FileKind::kRegular)
    return Status::error(target + ": is not a file that could be replaced");
  if (full == absolutePath(image.path()) || isSameFile(target, image.path()))
    return Status::error(target + ": is the image itself; it is never overwritten");
  if (fileKind(folder.empty() ? "." : folder) != FileKind::kFolder)
    return Status::error(target + ": its folder is not there");
  if (!folderIsWritable(folder.empty() ? "." : folder))
    return Status::error(target + ": its folder cannot be written");
  return Status::ok();
}

Status exportWarped(const RasterImage& image, const ExportRequest& request,
                    const Progress& progress) {
  if (Status fit = checkExportTarget(image, request.target); !fit) return fit;
  if (Status unchanged = image.checkUnchanged(); !unchanged) return unchanged;
  auto opened = image.guarded()->open();
  if (!opened) return opened.status();
  const DatasetPtr source = opened.take();
  removeDeadBuild(request.target);
  BuildFolder build;
  if (Status made = build.make(request.target); !made)
    return Status::error(request.target + ": " + made.message());
  const SmallTileCache smaller;
  const Status written =
      makeFile(image, *source, request, build.file(nameOf(request.target)), progress);
  if (!written) {
    const bool named = written.message().find(image.path()) == 0;
    return named ? written : Status::error(request.target + ": " + written.message());
  }
  if (Status unchanged = image.checkUnchanged(); !unchanged) return unchanged;
  return moveIntoPlace(build.path(), request.target);
}

}  // namespace tarn::raster
