// Opening: open, describe, decide, levels.
#include <gdal_priv.h>

#include <algorithm>
#include <utility>

#include "base/path.h"
#include "components/raster/buildfolder.h"
#include "components/raster/gdalsamples.h"
#include "components/raster/georeferencefiles.h"
#include "components/raster/imgentries.h"
#include "components/raster/presentedlevels.h"
#include "components/raster/rasterimage.h"
#include "components/raster/tilecache.h"
#include "components/raster/tilereaders.h"

namespace tarn::raster {
namespace {

// GDAL looks at all pictures of a file when it is asked for masks or overviews, in time that grows
// with the square of their number.
constexpr size_t kMostPictures = 1024;

Status checkPath(const std::string& path) {
  if (path.compare(0, 4, "/vsi") == 0 || path.compare(0, 4, "\\vsi") == 0)
    return Status::error(path + ": is not a file of this computer");
  switch (fileKind(path)) {
    case FileKind::kMissing:
      return Status::error(path + ": cannot be found");
    case FileKind::kFolder:
      return Status::error(path + ": is a folder, not an image");
    case FileKind::kOther:
      return Status::error(path + ": is not a regular file");
    case FileKind::kRegular:
      break;
  }
  if (fileTimes(path).size == 0) return Status::error(path + ": is empty");
  return Status::ok();
}

/// A JPG that was written to its end has at least a bit for each of its squares of eight pixels,
/// and an end marker near its end, or before the mask that GDAL appends, whose last four bytes say
/// where it begins.
bool hasJpegEnd(const RandomBytes& file, uint64_t size, const ImageFacts& facts) {
  if (size < static_cast<uint64_t>(facts.width) * static_cast<uint64_t>(facts.height) / 512)
    return false;
  std::vector<uint8_t> tail(std::min<uint64_t>(size, 65536));
  if (!file.readAt(size - tail.size(), tail.data(), tail.size())) return false;
  const uint8_t marker[] = {0xFF, 0xD9};
  if (std::search(tail.begin(), tail.end(), marker, marker + 2) != tail.end()) return true;
  if (tail.size() < 6) return false;
  uint64_t mask = 0;
  for (size_t i = 0; i < 4; ++i)
    mask |= static_cast<uint64_t>(tail[tail.size() - 4 + i]) << (8 * i);
  uint8_t before[2] = {};
  return mask >= 2 && mask < size && file.readAt(mask - 2, before, 2) &&
         std::equal(before, before + 2, marker);
}

bool isReducedPicture(const TiffDirectory& directory) {
  return (directory.subfileType & tiff::kReducedImage) != 0 &&
         (directory.subfileType & tiff::kMask) == 0;
}

/// Which of the dataset's overviews has the size; -1 for none. A dataset that names another file as
/// its overviews is not asked, for GDAL would open that file.
int overviewOfSize(GDALDataset& dataset, uint32_t width, uint32_t height) {
  if (dataset.GetMetadataItem("OVERVIEW_FILE", "OVERVIEWS")) return -1;
  GDALRasterBand* band = dataset.GetRasterBand(1);
  for (int i = 0; band && i < band->GetOverviewCount(); ++i) {
    GDALRasterBand* overview = band->GetOverview(i);
    if (overview && overview->GetXSize() == static_cast<int>(width) &&
        overview->GetYSize() == static_cast<int>(height))
      return i;
  }
  return -1;
}

}  // namespace

Result<std::shared_ptr<RasterImage>> RasterImage::open(const std::string& path,
                                                       const OpenOptions& options) {
  if (Status usable = checkPath(path); !usable) return usable;
  std::shared_ptr<RasterImage> image(new RasterImage());
  image->id_ = TileCache::newImage();
  image->ownTilesId_ = TileCache::newImage();
  if (Status loaded = image->load(path, options); !loaded) return loaded;
  return image;
}

Status RasterImage::load(const std::string& path, const OpenOptions& options) {
  path_ = path;
  times_ = fileTimes(path);
  auto file = std::make_shared<RandomFile>();
  if (Status opened = file->open(path); !opened) return opened;
  file_ = std::move(file);
  if (hasMorePicturesThan(*file_, times_.size, kMostPictures))
    return Status::error(path_ + ": has more than " + std::to_string(kMostPictures) +
                         " pictures in it");
  if (hasEntryLargerThanFile(*file_, times_.size))
    return Status::error(path_ +
                         ": is cut short or damaged: a part of it is larger than the whole file");
  guarded_ = std::make_shared<GuardedImage>(path, options.alsoPictures);
  if (Status status = loadFullSize(options); !status) return status;
  loadPlacement();
  describeNotes();
  if (options.usePyramid) {
    loadOwnOverviews();
    if (!hasOwnOverviews_) loadPyramid(options.places);
  }
  if (!placement_.isAsStored()) presentOwnLevels();
  return Status::ok();
}

void RasterImage::describeNotes() {
  if (!presentation_.note.empty()) notes_.push_back(presentation_.note);
  if (presentation_.conversion == Conversion::kScaled)
    notes_.push_back(scaleNote(facts_, presentation_));
  notes_.insert(notes_.end(), placement_.notes.begin(), placement_.notes.end());
}

void RasterImage::presentOwnLevels() {
  presented_ = presentLevels(levels_, ownTilesId_, placement_, facts_.width, facts_.height);
}

Status RasterImage::loadFullSize(const OpenOptions& options) {
  Result<DatasetPtr> opened = guarded_->open();
  if (!opened) return opened.status();
  DatasetPtr dataset = opened.take();
  const GdalErrors errors;
  facts_ = describe(*dataset);
  if (Status wanted = wantBands(options.bands, facts_); !wanted)
    return Status::error(path_ + ": " + wanted.message());
  if (facts_.driver == "GTiff") {
    if (directories_.empty()) {
      auto directories = readTiffDirectories(*file_, times_.size);
      if (!directories) return Status::error(path_ + ": " + directories.message());
      directories_ = directories.take();
    }
    facts_.alphaMultiplied = directories_[0].alphaMultiplied;
  }
  Result<Presentation> presentation = decidePresentation(facts_);
  if (!presentation) return Status::error(path_ + ": " + presentation.message());
  presentation_ = presentation.take();
  presentation_.alphaMultiplied =
      presentation_.alphaMultiplied && coloursAreMultiplied(*dataset, presentation_);
  subject_ = {path_,
              facts_.width,
              facts_.height,
              presentation_.channels,
              static_cast<int>(facts_.bands.size()),
              presentation_.plain ? "" : formOf(presentation_)};
  if (presentation_.hasMask && !remote_) {
    const FileTimes mask = fileTimes(path_ + ".msk");
    subject_.form += " m" + std::to_string(mask.size) + ' ' + std::to_string(mask.modifiedNs);
  }
  chooseScale(*dataset, options);
  return addFullSize(std::move(dataset));
}

void RasterImage::chooseScale(GDALDataset& dataset, const OpenOptions& options) {
  if (presentation_.conversion != Conversion::kScaled) return;
  // As it was when the pyramid was built, so that its levels match the image.
  if (options.usePyramid) {
    const FoundPyramid found = findPyramid(subject_, options.places);
    if (found.state == PyramidState::kOurs && found.mark.scale) {
      presentation_.scale = *found.mark.scale;
      return;
    }
  }
  presentation_.scale = measureScale(dataset, presentation_, hasInnerOverviews());
}

Status RasterImage::addFullSize(DatasetPtr dataset) {
  Level level;
  const bool plain = presentation_.plain && !directories_.empty() &&
                     directories_[0].samples == presentation_.channels &&
                     directories_[0].width == static_cast<uint32_t>(facts_.width) &&
                     directories_[0].height == static_cast<uint32_t>(facts_.height);
  if (plain) level.reader = makeRawTiffReader(file_, directories_[0]);
  if (plain && !level.reader) level.reader = makeJpegTiffReader(file_, directories_[0]);
  if (!level.reader) {
    const bool sequential = facts_.driver == "JPEG" || facts_.driver == "PNG";
    auto reader = makeGdalReader({guarded_, -1, presentation_, sequential}, std::move(dataset));
    if (!reader) return reader.status();
    level.reader = reader.take();
  }
  levels_.push_back(std::move(level));
  return checkWhole();
}

Status RasterImage::checkWhole() const {
  const Status cut =
      Status::error(path_ + ": is cut short or damaged: its last pixels are missing");
  if (facts_.driver == "JPEG") return hasJpegEnd(*file_, times_.size, facts_) ? Status::ok() : cut;
  // What is read straight from the file was checked with its directory; a tile from far away costs
  // more than it tells.
  const TileReader& reader = *levels_[0].reader;
  if (reader.cheap() || remote_) return Status::ok();
  // One tile tells whether the pixels can be decoded at all; an IMG may end early.
  const TileGrid& grid = reader.grid();
  const bool last = facts_.driver == "HFA";
  Tile tile;
  uint64_t bytes = 0;
  if (reader.read(last ? grid.columns() - 1 : 0, last ? grid.rows() - 1 : 0, tile, bytes))
    return Status::ok();
  return last ? cut : Status::error(path_ + ": its pixels cannot be decoded");
}

void RasterImage::loadPlacement() {
  const GeoreferenceFound found = findGeoreference(*guarded_, facts_);
  facts_.namesOverviewFile = facts_.namesOverviewFile || found.namesOverviewFile;
  placement_ = placeImage(found.candidates, facts_.width, facts_.height);
  if (placement_.coordinateSystem >= 0) {
    facts_.coordinateSystem = placement_.coordinateSystem;
  } else if (found.coordinateSystem >= 0) {
    facts_.coordinateSystem = found.coordinateSystem;
  }
  std::vector<std::string> notes = found.notes;
  if (facts_.namesOverviewFile)
    notes.emplace_back("names another file as its overviews; that file is not read");
  placement_.notes.insert(placement_.notes.begin(), notes.begin(), notes.end());
}

bool RasterImage::addLevel(const TiffDirectory& directory, int index, bool ours,
                           const std::shared_ptr<const RandomBytes>& file,
                           const std::shared_ptr<GuardedImage>& guarded) {
  Level level;
  if (directory.samples == presentation_.channels) {
    level.reader = makeRawTiffReader(file, directory);
    if (!level.reader) level.reader = makeJpegTiffReader(file, directory);
  }
  if (!level.reader && ours) return false;
  if (!level.reader) {
    Result<DatasetPtr> dataset = guarded->open();
    const GdalErrors quiet;
    if (!dataset) return false;
    const int overview =
        index == 0 ? -1 : overviewOfSize(*dataset.value(), directory.width, directory.height);
    if (index != 0 && overview < 0) return false;
    auto reader = makeGdalReader({guarded, overview, presentation_, false}, dataset.take());
    if (!reader) return false;
    level.reader = reader.take();
  }
  level.factorX = static_cast<double>(facts_.width) / directory.width;
  level.factorY = static_cast<double>(facts_.height) / directory.height;
  if (ours) {
    // Our levels halve exactly; the last pixel may stand for less.
    const int halvings = index + 1;
    level.factorX = level.factorY = static_cast<double>(1ULL << halvings);
  }
  if (level.factorX < 1 || level.factorY < 1) return false;
  levels_.push_back(std::move(level));
  return true;
}

bool RasterImage::hasInnerOverviews() const {
  if (facts_.driver == "HFA") {
    // Asking an IMG that has none for its overviews makes GDAL look at the pyramid beside it.
    return !facts_.namesOverviewFile && fileKind(path_ + ".ovr") == FileKind::kMissing;
  }
  return std::any_of(directories_.begin() + (directories_.empty() ? 0 : 1), directories_.end(),
                     isReducedPicture);
}

void RasterImage::loadOwnOverviews() {
  if (!hasInnerOverviews()) return;
  if (!presentation_.plain || facts_.driver == "HFA") {
    hasOwnOverviews_ = addGdalOverviews();
    return;
  }
  for (size_t i = 1; i < directories_.size(); ++i) {
    const TiffDirectory& directory = directories_[i];
    if (!isReducedPicture(directory) || directory.samples != directories_[0].samples ||
        !directory.plainBytes)
      continue;
    if (addLevel(directory, static_cast<int>(i), false, file_, guarded_)) hasOwnOverviews_ = true;
  }
}

bool RasterImage::addGdalOverviews() {
  Result<DatasetPtr> dataset = guarded_->open();
  if (!dataset) return false;
  const GdalErrors quiet;
  const int count = overviewCount(*dataset.value(), presentation_);
  bool added = false;
  for (int i = 0; i < count; ++i) {
    Result<DatasetPtr> own = guarded_->open();
    if (!own) break;
    auto reader = makeGdalReader({guarded_, i, presentation_, false}, own.take());
    if (!reader) continue;
    Level level;
    level.reader = reader.take();
    level.factorX = static_cast<double>(facts_.width) / level.reader->grid().width;
    level.factorY = static_cast<double>(facts_.height) / level.reader->grid().height;
    if (level.factorX < 1 || level.factorY < 1) continue;
    levels_.push_back(std::move(level));
    added = true;
  }
  return added;
}

void RasterImage::loadPyramid(const PyramidPlaces& places) {
  removeDeadBuild(pyramidPath(subject_, places.folder));
  if (!places.cacheFolder.empty()) removeDeadBuild(cachedPyramidPath(subject_, places.cacheFolder));
  const FoundPyramid found = findPyramid(subject_, places);
  if (found.state == PyramidState::kMissing) return;
  const bool ours = found.state == PyramidState::kOurs;
  // GDAL knows what another program's samples mean by the image that they belong to.
  if (ours || presentation_.plain) {
    addPyramidLevels(found.path, ours);
  } else {
    addGdalOverviews();
  }
}

void RasterImage::addPyramidLevels(const std::string& path, bool ours) {
  auto file = std::make_shared<RandomFile>();
  if (!file->open(path)) return;
  auto directories = readTiffDirectories(*file, fileTimes(path).size);
  if (!directories) return;
  const auto guarded = std::make_shared<GuardedImage>(path);
  int index = 0;
  for (const TiffDirectory& directory : directories.value()) {
    if ((directory.subfileType & tiff::kMask) == 0 &&
        !addLevel(directory, index, ours, file, guarded))
      break;
    ++index;
  }
}

}  // namespace tarn::raster
