// What entities drew, kept until each is regenerated. Ground coordinates stay double; the renderer
// subtracts the view centre before anything becomes a pixel.
#pragma once

#include <QImage>
#include <QString>
#include <cstdint>
#include <map>
#include <memory>
#include <variant>
#include <vector>

#include "acgipointcloud.h"
#include "adesk.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

struct GroundVector {
  double x = 0;
  double y = 0;
};

struct LineItem {
  std::vector<GroundPoint> points;
  unsigned color = 7;      ///< index 1 to 255
  double longestStep = 0;  ///< from point to point along an axis; known once it is in a scene
};

struct AreaItem {
  std::vector<GroundPoint> points;
  unsigned color = 7;
  bool filled = true;
};

struct TextItem {
  GroundPoint position;  ///< left end of the base line
  GroundVector direction{1, 0};
  double height = 1;  ///< of capitals, ground units
  double widthFactor = 1;
  double oblique = 0;  ///< radians
  QString text;
  unsigned color = 7;
};

/// A picture: `origin` is the lower left corner, u the whole width, v the whole height; row 0 of
/// the image is the top row. Format ARGB32_Premultiplied.
struct ImageItem {
  QImage image;
  GroundPoint origin;
  GroundVector u;
  GroundVector v;
};

/// A cloud of points: its coordinates (x, y) lie at origin + x * u + y * v.
struct PointsItem {
  std::shared_ptr<const AcGiPointCloud> cloud;
  GroundPoint origin;
  GroundVector u;
  GroundVector v;
};

using DisplayItem = std::variant<LineItem, AreaItem, TextItem, ImageItem, PointsItem>;
using DisplayList = std::vector<DisplayItem>;

/// What one entity drew, and the ground that it covers.
struct Drawn {
  DisplayList list;
  GroundBox box;
  bool isEverywhere = false;  ///< nobody knows where: the box says nothing
};

/// The display lists of one drawing in drawing order.
class ACADHOST_EXPORT Scene {
 public:
  using Key = std::uint64_t;  ///< the entity's handle

  Scene() = default;
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  /// Replaces the entity's list, in place; a new entity comes last.
  void set(Key entity, DisplayList list);
  void remove(Key entity);
  /// Keeps only these entities, in this order.
  void keepInOrder(const std::vector<Key>& entities);
  void clear();
  size_t size() const { return order_.size(); }
  /// Null when the entity has drawn nothing yet.
  const DisplayList* find(Key entity) const;
  const std::vector<Key>& order() const { return order_; }
  /// The same order; valid until the scene changes.
  const std::vector<const Drawn*>& drawn() const { return drawn_; }

 private:
  std::vector<Key> order_;
  std::vector<const Drawn*> drawn_;  ///< points into entities_, whose nodes never move
  std::map<Key, Drawn> entities_;
};

}  // namespace tarn::host
