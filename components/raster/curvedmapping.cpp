#include "components/raster/curvedmapping.h"

#include <array>
#include <cmath>

namespace tarn::raster {

std::optional<PlaneMapping> pieceOf(const CurvedMapping& mapping, PlanePoint low, PlanePoint high,
                                    double step, PlanePoint factor) {
  // Of five by five places every second one makes the piece and the others judge it.
  constexpr int kSide = 5;
  std::array<std::array<PlanePoint, kSide>, kSide> values;
  const auto place = [&](int i, int j) {
    return PlanePoint{low.x + (high.x - low.x) * i / (kSide - 1),
                      low.y + (high.y - low.y) * j / (kSide - 1)};
  };
  for (int j = 0; j < kSide; ++j) {
    for (int i = 0; i < kSide; ++i) {
      const PlanePoint p = place(i, j);
      const auto value = mapping.at(p.x * step, p.y * step);
      if (!value) return std::nullopt;
      values[j][i] = {value->x / factor.x, value->y / factor.y};
    }
  }
  std::array<std::array<PlanePoint, 3>, 3> corners;
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) corners[j][i] = values[2 * j][2 * i];
  const PlaneMapping piece =
      PlaneMapping::through(place(2, 2), {(high.x - low.x) / 2, (high.y - low.y) / 2}, corners);
  for (int j = 0; j < kSide; ++j) {
    for (int i = 0; i < kSide; ++i) {
      const PlanePoint p = place(i, j), q = piece.at(p.x, p.y);
      if (!(std::hypot(q.x - values[j][i].x, q.y - values[j][i].y) <= kPieceError))
        return std::nullopt;
    }
  }
  return piece;
}

}  // namespace tarn::raster
