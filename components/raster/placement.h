// Where an image lies and how it comes out north up: decided from plain values alone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "components/raster/georeference.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

/// An image turned or mirrored so that every presented pixel is one of its own: presented pixel
/// (i, j) is the image's (i, j), or (j, i) when transposed, counted from the other end where
/// mirrored.
struct Turn {
  bool transposed = false;
  bool mirroredColumns = false;
  bool mirroredRows = false;

  bool isNone() const { return !transposed && !mirroredColumns && !mirroredRows; }
};

/// The presented image: north up, so the rotation terms of its transform are 0.
struct Placement {
  GeoTransform transform;
  int width = 0;
  int height = 0;
  Turn turn;
  /// Presented pixel to image pixel (outer corners are whole numbers in both); set when the image
  /// is resampled.
  std::optional<PlaneMapping> resampling;
  /// As in ImageFacts, where the georeferencing that counts has one of its own; else -1.
  int coordinateSystem = -1;
  /// Sentences for the user, without the image's name.
  std::vector<std::string> notes;

  bool isAsStored() const { return turn.isNone() && !resampling; }
};

/// An image of that size whose pixels lie on the ground as the transform says. Empty when that is
/// not usable, or would distort the image beyond measure.
std::optional<Placement> placeByTransform(const GeoTransform& transform, int width, int height);

/// The image's own pixels behind its presentation.
struct OwnPlace {
  Placement placement;
  int width = 0;
  int height = 0;

  /// The image's own pixel position of a presented one.
  PlanePoint pixelOf(PlanePoint presented) const;
};

/// Places an image of that size by the first candidate that is usable; the others are compared with
/// it. Without any it lies with its lower left corner at the origin, one unit a pixel. The notes
/// say what is odd.
Placement placeImage(const std::vector<GeoCandidate>& candidates, int width, int height);

}  // namespace tarn::raster
