// GDAL as this product may use it: three drivers, no network, no files but an image and its side
// files, and no word on standard error.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/result.h"
#include "components/raster/remotebytes.h"

class GDALDataset;

namespace tarn::raster {

/// Registers the drivers that the product offers and puts refusing handlers in the place of the
/// network file systems. Done once; safe from any thread.
void prepareGdal();

/// Lets GDAL keep as many bytes of decoded blocks, for all images together, up to 512 MiB; without
/// a call 64 MiB. It is never lowered again.
void reserveGdalCache(uint64_t bytes);

/// Collects what GDAL reports on this thread while it lives, and keeps it off standard error. May
/// be nested; belongs to one thread.
class GdalErrors {
 public:
  GdalErrors();
  ~GdalErrors();
  GdalErrors(const GdalErrors&) = delete;
  GdalErrors& operator=(const GdalErrors&) = delete;

  int failures() const { return failures_; }
  /// The first failure's text; else the first warning's; else empty.
  const std::string& text() const { return failure_.empty() ? warning_ : failure_; }

  /// Called by the handler.
  void add(bool failure, const char* text);

 private:
  int failures_ = 0;
  std::string failure_;
  std::string warning_;
};

struct DatasetCloser {
  void operator()(GDALDataset* dataset) const;
};
using DatasetPtr = std::unique_ptr<GDALDataset, DatasetCloser>;

/// The files that GDAL may see for one image: the image, and files of the same folder whose name is
/// the image's name or its stem with further endings. GDAL knows them under a name of its own,
/// valid while the object lives.
class GuardedImage {
 public:
  explicit GuardedImage(const std::string& path, bool alsoPictures = false);
  /// An image from far away, TIFF only, without side files.
  explicit GuardedImage(std::shared_ptr<const RemoteBytes> bytes);
  ~GuardedImage();
  GuardedImage(const GuardedImage&) = delete;
  GuardedImage& operator=(const GuardedImage&) = delete;

  const std::string& path() const { return path_; }
  bool isRemote() const { return isRemote_; }
  /// Opens the image for reading, by the allowed drivers only. The reason of a failure names the
  /// file.
  Result<DatasetPtr> open() const { return open("INTERNAL"); }
  /// The same, with georeferencing taken from "INTERNAL" or "PAM" (its .aux.xml) by drivers that
  /// have the choice.
  Result<DatasetPtr> open(const char* georeferencing) const;
  /// A text of GDAL with its own file name replaced by nothing that the user does not know.
  std::string cleaned(const std::string& gdalText) const;

 private:
  std::string path_;
  /// How GDAL knows it.
  std::string name_;
  std::string prefix_;
  int id_ = 0;
  bool isRemote_ = false;
  bool alsoPictures_ = false;  ///< PNG, BMP and GIF are allowed
};

/// Bytes that GDAL has read from guarded files on this thread so far.
uint64_t guardedBytesRead();

}  // namespace tarn::raster
