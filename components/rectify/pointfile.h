// Control points as text: QGIS .points files and plain lists of four numbers a line. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "components/rectify/fit.h"

namespace tarn::rectify {

struct PointFile {
  std::vector<PointPair> pairs;
  /// One a pair: false for a point that takes no part in a fit.
  std::vector<bool> enabled;
  /// The text of "#CRS:" lines, without that word; may be empty.
  std::string crs;
  /// What was left out and why, for the user.
  std::vector<std::string> notes;

  std::vector<PointPair> enabledPairs() const;
};

/// A .points file of QGIS (a head with mapX, mapY, sourceX or pixelX, sourceY or pixelY), or lines
/// of source x, source y, target x, target y, separated by blanks, tabs, semicolons or commas (with
/// decimal commas where blanks, tabs or semicolons separate). UTF-8 with or without a mark, UTF-16
/// with one, any line ends. Fails, without the file's name, when no point is left.
Result<PointFile> parsePoints(std::string_view bytes);

/// As QGIS reads it, residuals included where there is one for each pair; no digit is lost.
std::string pointsOfQgis(const PointFile& file, const std::vector<PlanePoint>& residuals);
/// Lines of "source x, source y, target x, target y" as the dialog's import takes them (enabled
/// points alone).
std::string pointsOfText(const PointFile& file);

}  // namespace tarn::rectify
