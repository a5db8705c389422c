// An open image: its size, its place on the ground, and any rectangle of its pixels.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/imagefacts.h"
#include "components/raster/level.h"
#include "components/raster/levelreading.h"
#include "components/raster/placement.h"
#include "components/raster/presentation.h"
#include "components/raster/pyramidbuilder.h"
#include "components/raster/pyramidfile.h"
#include "components/raster/remotebytes.h"
#include "components/raster/stretch.h"
#include "components/raster/tiffdirectory.h"
#include "components/raster/tile.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {

struct OpenOptions {
  PyramidPlaces places;
  /// False: read the image's own full-size pixels only.
  bool usePyramid = true;
  /// Numbers (from 1) of the one band or the three that are shown as gray or as red, green and
  /// blue; empty for what the image itself says.
  std::vector<int> bands{};
  /// Small pictures of other kinds are images too: PNG, BMP and GIF.
  bool alsoPictures = false;
};

class RasterImage {
 public:
  /// Opens an image file. The reason of a failure names the file.
  static Result<std::shared_ptr<RasterImage>> open(const std::string& path,
                                                   const OpenOptions& options);
  /// Opens a tiled TIFF with reduced levels whose bytes come from far away. It has no side files
  /// and no pyramid but what is in it. The reason of a failure names it.
  static Result<std::shared_ptr<RasterImage>> open(const std::shared_ptr<const RemoteBytes>& bytes);
  ~RasterImage();
  RasterImage(const RasterImage&) = delete;
  RasterImage& operator=(const RasterImage&) = delete;

  const std::string& path() const { return path_; }
  /// Size and place as presented: north up, so the rotation terms are 0.
  int width() const { return placement_.width; }
  int height() const { return placement_.height; }
  const GeoTransform& geoTransform() const { return placement_.transform; }
  /// True when every presented pixel is the stored one: nothing turned, mirrored or resampled.
  bool isAsStored() const { return placement_.isAsStored(); }
  /// EPSG number, 0 without one, -1 without a coordinate system.
  int coordinateSystem() const { return facts_.coordinateSystem; }
  /// Sentences for the user about what was found, without the image's name.
  const std::vector<std::string>& notes() const { return notes_; }
  /// What the file is, and how its samples become the pixels that are shown.
  const ImageFacts& facts() const { return facts_; }
  const Presentation& presentation() const { return presentation_; }
  /// The image's own pixels in full size, as they lie in the file: not turned, mirrored or
  /// resampled. Lives as long as the image.
  const TileReader& storedPixels() const { return *levels_[0].reader; }
  const std::shared_ptr<GuardedImage>& guarded() const { return guarded_; }
  /// Of the file.
  int bandCount() const { return static_cast<int>(facts_.bands.size()); }
  /// Number of levels in use, the full size included.
  size_t levelCount() const { return levels_.size(); }

  /// True when the image needs no (more) pyramid: it is small, has overviews of its own, or there
  /// is a current pyramid in one of the places now.
  bool hasPyramid(const PyramidPlaces& places) const;

  /// Builds the pyramid into the first of the places that can be written. `note` is set when it is
  /// not the image's own folder, or when it takes the place of one that did not fit. On failure
  /// nothing is left behind and the image stays usable; the reason names the file. The new pyramid
  /// is used after the image has been opened again.
  Status buildPyramid(const PyramidPlaces& places, const Progress& progress,
                      std::string& note) const;

  /// Fills `out` with the window's cells, R, G, B, rows without gaps, row 0 on top. Cells whose
  /// centre is outside the image are (0, 0, 0). Reducing: the average of what a cell covers, by
  /// exact fractional weights. Enlarging or 1:1: the nearest pixel, or with `smooth` bilinear. On
  /// failure `out` is black. May be called from several threads at once.
  Status read(const Window& window, bool smooth, uint8_t* out, ReadCounts& counts) const;

  /// The ranges of remote bytes that read() of this window would fetch: those of tiles that are not
  /// in the tile cache. None for a file of this computer.
  std::vector<ByteRange> rangesOf(const Window& window, bool smooth) const;

  /// Stretches `pixels` cells that read() has filled, by what the coarsest level holds. That level
  /// (a bounded sample of it) is looked at once, at the first call; should it not be readable the
  /// cells stay as they are. May be called from several threads at once.
  void stretch(StretchMode mode, uint8_t* cells, size_t pixels) const;

  /// What is under the presentation, for those who present the same pixels in another way. Valid
  /// while the image lives.
  OwnPlace ownPlace() const { return {placement_, facts_.width, facts_.height}; }
  const std::vector<Level>& ownLevels() const { return levels_; }
  /// Their number in the tile cache.
  uint64_t ownTiles() const { return placement_.isAsStored() ? id_ : ownTilesId_; }
  /// Fails, with the reason, when the file is not the one that was opened any more. Remote bytes
  /// judge that themselves.
  Status checkUnchanged() const;

 private:
  RasterImage() = default;
  Status load(const std::string& path, const OpenOptions& options);
  Status loadRemote(const std::shared_ptr<const RemoteBytes>& bytes);
  void describeNotes();
  void presentOwnLevels();
  /// Makes the levels know which ranges of remote bytes their tiles lie in.
  void nameRanges();
  Status loadFullSize(const OpenOptions& options);
  void chooseScale(GDALDataset& dataset, const OpenOptions& options);
  Status addFullSize(DatasetPtr dataset);
  bool hasInnerOverviews() const;
  void loadOwnOverviews();
  bool addGdalOverviews();
  void loadPyramid(const PyramidPlaces& places);
  void addPyramidLevels(const std::string& path, bool ours);
  bool addLevel(const TiffDirectory& directory, int index, bool ours,
                const std::shared_ptr<const RandomBytes>& file,
                const std::shared_ptr<GuardedImage>& guarded);
  void loadPlacement();
  Status checkWhole() const;
  const std::vector<Level>& shownLevels() const {
    return placement_.isAsStored() ? levels_ : presented_;
  }
  LevelView shown() const;
  /// The tables of both ways to stretch.
  struct Stretches {
    StretchTables equalise;
    StretchTables deviations;
  };

  std::string path_;
  /// In the tile cache: of what is shown, and of its own tiles that are presented otherwise.
  uint64_t id_ = 0;
  uint64_t ownTilesId_ = 0;
  FileTimes times_;
  ImageFacts facts_;
  Presentation presentation_;
  PyramidSubject subject_;
  Placement placement_;
  std::vector<std::string> notes_;
  std::shared_ptr<GuardedImage> guarded_;
  std::shared_ptr<const RandomBytes> file_;
  /// The same as file_ where it comes from far away; else null.
  std::shared_ptr<const RemoteBytes> remote_;
  std::vector<TiffDirectory> directories_;
  bool hasOwnOverviews_ = false;
  /// The image's own pixels, and what is presented where that is not the same.
  std::vector<Level> levels_;
  std::vector<Level> presented_;
  mutable std::mutex stretchMutex_;
  mutable bool isStretchTried_ = false;
  mutable std::optional<Stretches> stretches_;
};

}  // namespace tarn::raster
