// Where an image lies on the ground: the sources of it, and which of them counts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// A point of the image, (0, 0) being the outer corner of its first pixel, and where it lies.
struct ControlPoint {
  double column = 0;
  double row = 0;
  double x = 0;
  double y = 0;
};

/// A source of georeferencing as it was found: a transform or, without one, control points.
struct GeoCandidate {
  /// What to call it in a note: a file name, or "the image itself".
  std::string name;
  std::optional<GeoTransform> transform;
  std::vector<ControlPoint> points;
  /// As in ImageFacts, of the control points; -1 when they have none of their own.
  int coordinateSystem = -1;
};

/// The text of a world file (six numbers; the position is the centre of the first pixel) as the
/// transform of the outer corner. Empty when it is not six usable numbers.
std::optional<GeoTransform> parseWorldFile(std::string_view text);

/// What a .aux.xml file says about the position.
struct AuxFacts {
  std::optional<GeoTransform> transform;
  std::vector<ControlPoint> points;
  /// It has a form of control points that only GDAL's GeoTIFF driver reads, with the image's own
  /// resolution.
  bool hasForeignPoints = false;
  bool namesOverviewFile = false;
  /// As in ImageFacts.
  int coordinateSystem = -1;
};
AuxFacts parseAuxFile(const std::string& xml);

/// True when all numbers are finite and of the size of ground coordinates, and the pixels have an
/// area.
bool isUsable(const GeoTransform& transform);

/// Names that an image's world file may have, in order of preference ("x.tfw", "x.tifw", "x.wld").
std::vector<std::string> worldFileNames(const std::string& imageName);

}  // namespace tarn::raster
