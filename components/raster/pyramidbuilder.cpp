// Pyramids: the image's halves into a file beside it.
#include "components/raster/pyramidbuilder.h"

#include <utility>

#include "base/file.h"
#include "base/path.h"
#include "components/raster/buildfolder.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/tilecascade.h"
#include "components/raster/tiledtiffwriter.h"

namespace tarn::raster {
namespace {

// Rows of tiles and lists of tiles are kept in memory.
constexpr int kWidestImage = 1 << 19;
constexpr int64_t kMostPixels = int64_t{1} << 40;

Status buildInto(const PyramidSource& source, const std::string& target, const Progress& progress,
                 BuildFolder& build) {
  const std::string& imagePath = source.subject.imagePath;
  const Result<ImageStamp> before = stampOf(imagePath);
  if (!before) return before.status();
  const std::string temporary = build.file(nameOf(target));
  const TileGrid& grid = source.reader->grid();
  TiledTiffForm form;
  form.levels = pyramidLevels(grid.width, grid.height);
  form.channels = grid.channels;
  if (source.lossy) form.coding.compression = TileCompression::kJpeg;
  form.tags = {metadataTag(markMetadata({before.value(), source.subject.form, source.scale}))};
  TiledTiffWriter writer;
  if (Status created = writer.create(temporary, std::move(form)); !created) return created;
  CascadeForm cascade;
  cascade.thinLines = source.thinLines;
  if (Status built = cascadeTiles(*source.reader, cascade, writer, progress); !built) return built;
  if (Status finished = writer.finish(); !finished) return finished;
  if (Status whole = writer.check(); !whole) return whole;
  const Result<ImageStamp> after = stampOf(imagePath);
  if (!after || !(after.value() == before.value()))
    return Status::error("the image was changed meanwhile");
  return replaceFile(temporary, target);
}

}  // namespace

Status buildPyramidFile(const PyramidSource& source, const PyramidPlaces& places,
                        const Progress& progress, std::string& note) {
  const TileGrid& grid = source.reader->grid();
  if (grid.width > kWidestImage || int64_t{grid.width} * grid.height > kMostPixels)
    return Status::error(source.subject.imagePath + ": is too large for a pyramid");
  BuildFolder build;
  std::string target = pyramidPath(source.subject, places.folder);
  Status made = folderIsWritable(places.folder)
                    ? build.make(target)
                    : Status::error(places.folder + ": cannot be written");
  if (!made && !places.cacheFolder.empty()) {
    target = cachedPyramidPath(source.subject, places.cacheFolder);
    note = "its folder cannot be written; its pyramid is kept in " + folderOf(target);
    made = makeFolders(folderOf(target));
    if (made) made = build.make(target);
  }
  Status status = made ? buildInto(source, target, progress, build) : made;
  if (status) return status;
  const bool named = status.message().find(source.subject.imagePath) != std::string::npos;
  return named ? status
               : Status::error(source.subject.imagePath +
                               ": no pyramid was made: " + status.message());
}

}  // namespace tarn::raster
