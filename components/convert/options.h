// What a conversion makes, and how its words read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace tarn::convert {

enum class Format { kGeoTiff, kCloudTiff, kImg, kJpeg };
enum class Compression { kNone, kDeflate, kLzw, kJpeg, kZstd };
/// The samples of the file, or 8 bits gray or RGB as on the screen.
enum class Pixels { kStored, kShown };
/// What happens to a file that stands in the place of an output and is not its current state.
enum class Existing { kSkip, kOverwrite, kRename };

struct Options {
  Format format = Format::kGeoTiff;
  /// Of the TIFF formats.
  Compression compression = Compression::kDeflate;
  /// Of JPEG, 1 to 100.
  int quality = 85;
  /// Reduced levels, inside the file or beside it. A cloud-optimised file always has them inside.
  bool pyramids = true;
  Pixels pixels = Pixels::kStored;
  /// Numbers of bands from 1; empty for all, or for those that are shown.
  std::vector<int> bands;
  Existing existing = Existing::kSkip;
  /// World file and .prj beside formats that do not need them, too.
  bool sideFiles = false;
  /// Where outputs go; empty for the folder of each input.
  std::string folder;
};

/// The words of an option in the order of its values ("geotiff", "cog", ...). Options: "format",
/// "compression", "pixels", "existing".
std::vector<std::string> wordsOf(std::string_view option);

/// Sets an option by its name and a word, number, list of numbers or yes and no: the four above,
/// "quality", "pyramids", "bands", "side-files", "folder". Fails with what would be right.
Status setOption(std::string_view name, const std::string& value, Options& options);

/// Whether the options go together.
Status checkOptions(const Options& options);

/// A text that differs for options that make different files of one image.
std::string keyOf(const Options& options);

/// ".tif", ".img" or ".jpg".
std::string extensionFor(Format format);

}  // namespace tarn::convert
