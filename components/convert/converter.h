// Conversion of one image into one file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/convert/options.h"
#include "components/raster/progress.h"

namespace tarn::convert {

enum class Outcome {
  kConverted,
  kCurrent,  ///< the output is there already, made from the image as it is now
  kSkipped,  ///< another file stands in its place
};

struct Converted {
  Outcome outcome = Outcome::kConverted;
  /// Where the output is; another name than asked for when Existing::kRename made it so.
  std::string path;
  uint64_t bytes = 0;
  /// Sentences for the user, without the image's name.
  std::vector<std::string> notes;
};

/// Makes `output` from `input` by the options. The file is written into a hidden folder beside its
/// place, read back, synced and renamed, side files before it; on failure and when `progress` stops
/// it nothing is left and what stood there stays. The reason of a failure names the input or the
/// file that it is about. An output that was made from the input as it is now by these options is
/// left alone.
Result<Converted> convertImage(const std::string& input, const std::string& output,
                               const Options& options, const raster::Progress& progress);

}  // namespace tarn::convert
