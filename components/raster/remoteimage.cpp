// Opening an image whose bytes come from far away: what a local file's opening does without its
// side files and pyramids.
#include <algorithm>
#include <utility>

#include "components/raster/rasterimage.h"
#include "components/raster/remotetilereader.h"

namespace tarn::raster {
namespace {

constexpr size_t kMostRemotePictures = 64;

}  // namespace

Result<std::shared_ptr<RasterImage>> RasterImage::open(
    const std::shared_ptr<const RemoteBytes>& bytes) {
  std::shared_ptr<RasterImage> image(new RasterImage());
  image->id_ = TileCache::newImage();
  image->ownTilesId_ = TileCache::newImage();
  if (Status loaded = image->loadRemote(bytes); !loaded) return loaded;
  return image;
}

Status RasterImage::loadRemote(const std::shared_ptr<const RemoteBytes>& bytes) {
  path_ = bytes->name();
  remote_ = bytes;
  file_ = bytes;
  times_.size = bytes->size();
  const std::string advice = "; convert it to a cloud-optimised GeoTIFF (tarnconvert --format cog)";
  if (hasMorePicturesThan(*file_, times_.size, kMostRemotePictures))
    return Status::error(path_ + ": has more than " + std::to_string(kMostRemotePictures) +
                         " pictures in it" + advice);
  auto directories = readTiffDirectories(*file_, times_.size);
  if (!directories) return Status::error(path_ + ": " + directories.message() + advice);
  const std::string hindrance = hindranceToPieces(directories.value());
  if (!hindrance.empty()) return Status::error(path_ + ": " + hindrance + advice);
  directories_ = directories.take();
  guarded_ = std::make_shared<GuardedImage>(bytes);
  OpenOptions options;
  options.usePyramid = false;
  if (Status status = loadFullSize(options); !status) return status;
  loadPlacement();
  describeNotes();
  loadOwnOverviews();
  nameRanges();
  if (!placement_.isAsStored()) presentOwnLevels();
  return Status::ok();
}

void RasterImage::nameRanges() {
  for (Level& level : levels_) {
    const TileGrid& grid = level.reader->grid();
    std::vector<const TiffDirectory*> pictures;
    for (const TiffDirectory& directory : directories_) {
      if (directory.width == static_cast<uint32_t>(grid.width) &&
          directory.height == static_cast<uint32_t>(grid.height))
        pictures.push_back(&directory);
    }
    level.reader = makeRemoteReader(std::move(level.reader), std::move(pictures));
  }
}

}  // namespace tarn::raster
