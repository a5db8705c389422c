#include "components/convert/writers.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_frmts.h>

#include <mutex>

#include "base/file.h"
#include "base/path.h"
#include "components/convert/imgblocks.h"
#include "components/convert/jpegrows.h"
#include "components/convert/miniature.h"
#include "components/convert/view.h"
#include "components/convert/waiting.h"
#include "components/raster/tilecascade.h"
#include "components/raster/tiledtiffwriter.h"

namespace tarn::convert {
namespace {

using raster::GdalErrors;

// Of a driver's progress; the rest is flushing and syncing.
constexpr double kPixelShare = 0.95;

GDALDriver* driverNamed(const char* name) {
  static std::once_flag once;
  std::call_once(once, [] { GDALRegister_COG(); });
  return GetGDALDriverManager()->GetDriverByName(name);
}

/// Closes a dataset whose errors are collected by `errors`.
Status closeWritten(GDALDataset* dataset, const GdalErrors& errors, const std::string& path) {
  if (dataset) {
    dataset->FlushCache(true);
    GDALClose(GDALDataset::ToHandle(dataset));
  }
  if (dataset && errors.failures() == 0) return Status::ok();
  const std::string reason = errors.text().empty() ? "its driver gave no reason" : errors.text();
  return Status::error(path + ": cannot be written: " + reason);
}

/// The georeferencing and metadata tags of a TIFF with the view's description, by GDAL's own hand.
/// What does not fit into tags it writes into an .aux.xml, which goes beside `path`.
Result<std::vector<raster::TiffTag>> describingTags(GDALDataset& view, const std::string& path) {
  const std::string folder = path + ".tags", sample = joinPath(folder, nameOf(path));
  if (Status made = makeFolders(folder); !made) return made;
  {
    const GdalErrors errors;
    const char* options[] = {"BIGTIFF=NO", "ENDIANNESS=LITTLE", nullptr};
    constexpr int kSide = 16;
    GDALDataset* dataset = driverNamed("GTiff")->Create(
        sample.c_str(), kSide, kSide, view.GetRasterCount(), GDT_Byte, const_cast<char**>(options));
    if (dataset) describeLike(view, *dataset);
    if (Status closed = closeWritten(dataset, errors, sample); !closed) return closed;
  }
  Result<std::vector<raster::TiffTag>> tags = raster::readDescribingTags(sample);
  const std::string beside = ".aux.xml";
  if (fileKind(sample + beside) == FileKind::kRegular) {
    if (Status moved = replaceFile(sample + beside, path + beside); !moved) return moved;
  }
  if (Status removed = removeAll(folder); !removed) return removed;
  return tags;
}

Status writeTiles(const Plan& plan, GDALDataset& view, const raster::RasterImage& image,
                  const std::string& path, const raster::Progress& progress) {
  const raster::TileGrid& grid = image.storedPixels().grid();
  Result<std::vector<raster::TiffTag>> tags = describingTags(view, path);
  if (!tags) return tags.status();
  raster::TiledTiffForm form;
  form.levels = {{grid.width, grid.height}};
  if (plan.pyramidInside) {
    for (const raster::LevelSize& size : raster::pyramidLevels(grid.width, grid.height))
      form.levels.push_back(size);
  }
  form.channels = grid.channels;
  form.coding = plan.coding;
  form.holdsImage = true;
  form.tags = tags.take();
  form.cloudOptimised = plan.cloudOptimised;
  raster::TiledTiffWriter writer;
  if (Status created = writer.create(path, std::move(form)); !created) return created;
  raster::CascadeForm cascade;
  cascade.withImage = true;
  cascade.withHalves = plan.pyramidInside;
  cascade.thinLines = image.presentation().thinLines;
  if (Status done =
          cascadeTiles(image.storedPixels(), cascade, writer, stepOf(progress, 0, kPixelShare));
      !done)
    return done;
  return runWaiting(
      [&](Waiting&) {
        Status finished = writer.finish();
        return finished ? writer.check() : finished;
      },
      stepOf(progress, kPixelShare, 1));
}

Status writeBlocks(GDALDataset& view, const raster::RasterImage& image, const std::string& path,
                   const raster::Progress& progress) {
  const raster::TileGrid& grid = image.storedPixels().grid();
  {
    const GdalErrors errors;
    GDALDataset* dataset = driverNamed("HFA")->Create(path.c_str(), grid.width, grid.height,
                                                      grid.channels, GDT_Byte, nullptr);
    if (dataset) describeLike(view, *dataset);
    if (Status closed = closeWritten(dataset, errors, path); !closed) return closed;
  }
  ImgBlockWriter writer;
  if (Status opened = writer.open(path, grid.width, grid.height, grid.channels); !opened)
    return opened;
  raster::CascadeForm cascade;
  cascade.withImage = true;
  cascade.withHalves = false;
  if (Status done =
          cascadeTiles(image.storedPixels(), cascade, writer, stepOf(progress, 0, kPixelShare));
      !done)
    return done;
  return runWaiting([&](Waiting&) { return writer.finish(); }, stepOf(progress, kPixelShare, 1));
}

/// What the driver says about the picture inside a JPEG file. The .aux.xml that it writes goes
/// beside `path`.
Result<std::vector<uint8_t>> describingJpeg(GDALDataset& view, const std::string& path) {
  constexpr uint64_t kMostBytes = 16ULL << 20;
  const std::string folder = path + ".tags", sample = joinPath(folder, nameOf(path));
  if (Status made = makeFolders(folder); !made) return made;
  const std::unique_ptr<GDALDataset> miniature = makeMiniature(view);
  {
    const GdalErrors errors;
    GDALDataset* made = driverNamed("JPEG")->CreateCopy(sample.c_str(), miniature.get(), FALSE,
                                                        nullptr, nullptr, nullptr);
    if (Status closed = closeWritten(made, errors, sample); !closed) return closed;
  }
  Result<std::string> stream = readFile(sample, kMostBytes);
  if (!stream) return stream.status();
  const std::string beside = ".aux.xml";
  if (fileKind(sample + beside) == FileKind::kRegular) {
    if (Status moved = replaceFile(sample + beside, path + beside); !moved) return moved;
  }
  if (Status removed = removeAll(folder); !removed) return removed;
  return describingSegments({stream.value().begin(), stream.value().end()});
}

/// Pixels that are not those of the tiles: chosen bands of a file.
Status copyRows(GDALDataset& view, JpegRowWriter& writer, const std::string& path,
                const raster::Progress& progress) {
  const int width = view.GetRasterXSize(), height = view.GetRasterYSize();
  const int channels = view.GetRasterCount();
  constexpr int kRows = raster::kPyramidTile;
  std::vector<uint8_t> pixels(static_cast<size_t>(width) * channels * kRows);
  for (int top = 0; top < height; top += kRows) {
    const int rows = std::min(kRows, height - top);
    const GdalErrors errors;
    if (view.RasterIO(GF_Read, 0, top, width, rows, pixels.data(), width, rows, GDT_Byte, channels,
                      nullptr, channels, static_cast<GSpacing>(width) * channels, 1,
                      nullptr) != CE_None)
      return Status::error(path + ": cannot be written: " + errors.text());
    if (Status written = writer.writeRows(top, rows, pixels.data()); !written) return written;
    if (progress && !progress((top + rows) / static_cast<double>(height)))
      return Status::error("was stopped");
  }
  return Status::ok();
}

Status writeRows(const Plan& plan, GDALDataset& view, const raster::RasterImage& image,
                 const std::string& path, const raster::Progress& progress) {
  Result<std::vector<uint8_t>> description = describingJpeg(view, path);
  if (!description) return description.status();
  JpegRowWriter writer;
  if (Status created =
          writer.create(path, {view.GetRasterXSize(), view.GetRasterYSize(), view.GetRasterCount(),
                               plan.coding.quality, description.take()});
      !created)
    return created;
  raster::CascadeForm cascade;
  cascade.withImage = true;
  cascade.withHalves = false;
  const raster::Progress pixels = stepOf(progress, 0, kPixelShare);
  Status done = plan.inTiles ? cascadeTiles(image.storedPixels(), cascade, writer, pixels)
                             : copyRows(view, writer, path, pixels);
  if (!done) return done;
  return runWaiting(
      [&](Waiting&) {
        Status finished = writer.finish();
        return finished ? writer.check() : finished;
      },
      stepOf(progress, kPixelShare, 1));
}

int CPL_STDCALL tellDriverProgress(double part, const char*, void* shared) {
  auto* waiting = static_cast<Waiting*>(shared);
  waiting->part = part * kPixelShare;
  return waiting->stop ? FALSE : TRUE;
}

Status copyByDriver(const Plan& plan, GDALDataset& view, const std::string& path,
                    Waiting& waiting) {
  const GdalErrors errors;
  GDALDriver* driver = driverNamed(plan.driver.c_str());
  if (!driver) return Status::error(path + ": there is no driver for " + plan.driver);
  const CPLConfigOptionSetter masksInside("GDAL_TIFF_INTERNAL_MASK", "YES", false);
  CPLStringList options;
  for (const std::string& option : plan.creation) options.AddString(option.c_str());
  GDALDataset* made =
      driver->CreateCopy(path.c_str(), &view, FALSE, options.List(), tellDriverProgress, &waiting);
  Status closed = closeWritten(made, errors, path);
  return waiting.stop ? Status::error("was stopped") : closed;
}

Status writeByDriver(const Plan& plan, GDALDataset& view, const std::string& path,
                     const raster::Progress& progress) {
  constexpr uint64_t kTileRows = 256;
  uint64_t pixel = 0;
  for (int i = 1; i <= view.GetRasterCount(); ++i)
    pixel += GDALGetDataTypeSizeBytes(view.GetRasterBand(i)->GetRasterDataType());
  // A row of tiles that does not fit is compressed, read back and compressed again.
  raster::reserveGdalCache(kTileRows * 3 / 2 * static_cast<uint64_t>(view.GetRasterXSize()) *
                           pixel);
  return runWaiting(
      [&](Waiting& waiting) {
        Status copied = copyByDriver(plan, view, path, waiting);
        return copied ? syncFile(path) : copied;
      },
      progress);
}

}  // namespace

Status writeConverted(const Plan& plan, GDALDataset& view, const raster::RasterImage& image,
                      const std::string& path, const raster::Progress& progress) {
  switch (plan.writer) {
    case Writer::kTiles:
      return writeTiles(plan, view, image, path, progress);
    case Writer::kBlocks:
      return writeBlocks(view, image, path, progress);
    case Writer::kRows:
      // The driver's own way to keep a mask in such a file.
      if (hasMask(view)) break;
      return writeRows(plan, view, image, path, progress);
    case Writer::kDriver:
      break;
  }
  return writeByDriver(plan, view, path, progress);
}

}  // namespace tarn::convert
