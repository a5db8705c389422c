#include "components/raster/rasterimage.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/path.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {
RasterImage::~RasterImage() {
  TileCache::shared().removeImage(id_);
  TileCache::shared().removeImage(ownTilesId_);
}

Status RasterImage::checkUnchanged() const {
  if (remote_) return Status::ok();
  const FileTimes now = fileTimes(path_);
  if (now.size == times_.size && now.modifiedNs == times_.modifiedNs) return Status::ok();
  return Status::error(path_ + (fileKind(path_) == FileKind::kMissing
                                    ? ": is not there any more"
                                    : ": has been changed since it was opened"));
}

Status RasterImage::read(const Window& window, bool smooth, uint8_t* out,
                         ReadCounts& counts) const {
  if (Status unchanged = checkUnchanged(); !unchanged) {
    if (out && window.columns > 0 && window.rows > 0)
      std::memset(out, 0, static_cast<size_t>(window.columns) * window.rows * 3);
    return unchanged;
  }
  return readWindow(shown(), path_, window, smooth, out, counts);
}

LevelView RasterImage::shown() const {
  return {shownLevels(), id_, width(), height(), presentation_.thinLines, remote_.get()};
}

std::vector<ByteRange> RasterImage::rangesOf(const Window& window, bool smooth) const {
  return remote_ ? rangesOfWindow(shown(), window, smooth) : std::vector<ByteRange>();
}

void RasterImage::stretch(StretchMode mode, uint8_t* cells, size_t pixels) const {
  if (mode == StretchMode::kNone) return;
  {
    const std::lock_guard<std::mutex> lock(stretchMutex_);
    if (!stretches_ && !isStretchTried_) {
      // Remote bytes that could not be had may be there the next time.
      isStretchTried_ = !remote_;
      if (const auto histogram = sampleLevel(*levels_.back().reader, remote_.get()))
        stretches_ = {makeStretchTables(*histogram, StretchMode::kEqualise),
                      makeStretchTables(*histogram, StretchMode::kDeviations)};
    }
  }
  if (!stretches_) return;
  applyStretch(mode == StretchMode::kEqualise ? stretches_->equalise : stretches_->deviations,
               cells, pixels);
}

bool RasterImage::hasPyramid(const PyramidPlaces& places) const {
  if (remote_ || pyramidLevels(facts_.width, facts_.height).empty() || hasOwnOverviews_)
    return true;
  return findPyramid(subject_, places).state != PyramidState::kMissing;
}

Status RasterImage::buildPyramid(const PyramidPlaces& places, const Progress& progress,
                                 std::string& note) const {
  if (Status unchanged = checkUnchanged(); !unchanged) return unchanged;
  if (remote_ || pyramidLevels(facts_.width, facts_.height).empty()) return Status::ok();
  const bool stale = findPyramid(subject_, places).stale;
  PyramidSource source{subject_, levels_.front().reader.get(), std::nullopt,
                       presentation_.thinLines, presentation_.lossy};
  if (presentation_.conversion == Conversion::kScaled) source.scale = presentation_.scale;
  Status built = buildPyramidFile(source, places, progress, note);
  if (built && stale)
    note = "its pyramid no longer fitted the image and was built again" +
           (note.empty() ? note : "; " + note);
  return built;
}

}  // namespace tarn::raster
