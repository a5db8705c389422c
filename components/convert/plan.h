// How one image becomes a file, decided from what it is. Pure.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "components/convert/options.h"
#include "components/raster/imagefacts.h"
#include "components/raster/presentation.h"
#include "components/raster/tilecodec.h"

namespace tarn::convert {

/// Who writes the pixels: tiles, blocks and rows of 8 bits are written here, by all processors; the
/// rest is a driver's, and so is what holds a mask.
enum class Writer { kTiles, kBlocks, kRows, kDriver };

struct Plan {
  Writer writer = Writer::kDriver;
  /// The pixels are those that the image's tile reader delivers.
  bool inTiles = false;
  /// The pixels are those of the screen.
  bool shown = false;
  /// Of the image as it is stored: numbers of its bands; alpha not among them when it becomes a
  /// mask.
  std::vector<int> bands;
  /// Number of the band that becomes a mask, 0 for none.
  int alphaToMask = 0;
  raster::TileCoding coding;
  bool cloudOptimised = false;
  /// Of the driver: its name and its creation options.
  std::string driver;
  std::vector<std::string> creation;
  bool lossless = true;
  bool pyramidInside = false;
  bool pyramidBeside = false;
  /// World file and .prj.
  bool sideFiles = false;
  /// Sentences for the user, without the image's name.
  std::vector<std::string> notes;
};

/// Fails (a sentence without the file) when the format cannot hold the image.
Result<Plan> planConversion(const raster::ImageFacts& facts,
                            const raster::Presentation& presentation, const Options& options);

}  // namespace tarn::convert
