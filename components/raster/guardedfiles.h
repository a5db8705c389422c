// The virtual folder through which GDAL reads: "/vsitarn/<id>/<name>".
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "components/raster/remotebytes.h"

namespace tarn::raster {

/// Side files that hold text are not there when they are larger.
constexpr uint64_t kMostSideFileBytes = 16 << 20;

/// Installs the virtual file system. Once a process.
void installGuardedFiles();

/// Opens a virtual folder for one image and returns its number; closeGuardedFolder ends it.
int openGuardedFolder(const std::string& imagePath);
/// The same for an image from far away, the only file in its folder.
int openGuardedBytes(std::shared_ptr<const RemoteBytes> bytes);
constexpr const char* kRemoteName = "image.tif";
void closeGuardedFolder(int id);

/// "/vsitarn/<id>/".
std::string guardedPrefix(int id);

/// True for the image's own name and for side files: the stem or the whole name, then a dot. The
/// stem's case does not matter. Names with a separator never are.
bool isSideFileName(const std::string& imageName, const std::string& name);

uint64_t guardedBytesOfThread();

}  // namespace tarn::raster
