// Where an image lies on the ground: the sources of it, and which of them counts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace tarn::raster {

/// Ground coordinates of pixel (column, row), of the outer corner of the first pixel:
/// x = x0 + a * column + b * row, y = y0 + d * column + e * row.
struct GeoTransform {
  double x0 = 0;
  double a = 1;
  double b = 0;
  double y0 = 0;
  double d = 0;
  double e = -1;
};

/// A source of georeferencing as it was found.
struct GeoCandidate {
  /// What to call it in a note: a file name, or "the image itself".
  std::string name;
  GeoTransform transform;
};

struct Georeference {
  GeoTransform transform;
  /// Sentences for the user, without the image's name.
  std::vector<std::string> notes;
};

/// The text of a world file (six numbers; the position is the centre of the first pixel) as the
/// transform of the outer corner. Empty when it is not six usable numbers.
std::optional<GeoTransform> parseWorldFile(std::string_view text);

/// What a .aux.xml file says about the position.
struct AuxFacts {
  std::optional<GeoTransform> transform;
  bool hasControlPoints = false;
  bool namesOverviewFile = false;
  /// As in ImageFacts.
  int coordinateSystem = -1;
};
AuxFacts parseAuxFile(const std::string& xml);

/// The candidates in order of precedence; the first counts. Without any the image lies with its
/// lower left corner at the origin, one unit a pixel. Fails (a sentence without the file) when the
/// transform that counts is rotated, mirrored or not finite.
Result<Georeference> chooseGeoreference(const std::vector<GeoCandidate>& candidates, int width,
                                        int height);

/// Names that an image's world file may have, in order of preference ("x.tfw", "x.tifw", "x.wld").
std::vector<std::string> worldFileNames(const std::string& imageName);

}  // namespace tarn::raster
