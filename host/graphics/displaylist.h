// What entities drew, kept until each is regenerated. Ground coordinates stay double; the renderer
// subtracts the view centre before anything becomes a pixel.
#pragma once

#include <QImage>
#include <QString>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "acdb.h"
#include "acgipointcloud.h"
#include "adesk.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

struct GroundVector {
  double x = 0;
  double y = 0;
};

/// A pattern of lines, in ground units: dashes above 0, gaps below 0, points 0.
struct DashPattern {
  std::vector<double> lengths;
  double period = 0;  ///< of all of them
};

struct LineItem {
  std::vector<GroundPoint> points;
  /// Index 1 to 255, AcGiSubEntityTraits::kTrueColor with the colour, or kGroundColor.
  unsigned color = 7;
  double longestStep = 0;  ///< from point to point along an axis; known once it is in a scene
  std::shared_ptr<const DashPattern> dashes{};  ///< none for a line without gaps
  short weight = AcDb::kLnWtByLwDefault;        ///< hundredths of a millimetre
  std::uint8_t alpha = 255;
};

struct AreaItem {
  std::vector<GroundPoint> points;
  unsigned color = 7;
  bool filled = true;
  /// Where each loop ends among the points; none for a single one. An area that lies inside another
  /// of them is a hole.
  std::vector<std::uint32_t> ends{};
  std::uint8_t alpha = 255;
};

/// The loops of an area, and which of its points they are.
ACADHOST_EXPORT size_t loopCount(const AreaItem& item);
ACADHOST_EXPORT std::pair<std::ptrdiff_t, std::ptrdiff_t> loopOf(const AreaItem& item, size_t loop);

struct TextItem {
  GroundPoint position;  ///< left end of the base line
  GroundVector direction{1, 0};
  double height = 1;  ///< of capitals, ground units
  double widthFactor = 1;
  double oblique = 0;  ///< radians
  QString text;
  unsigned color = 7;
  QString font{};         ///< as the drawing names it
  bool mirrored = false;  ///< capitals reach to the right of the direction
  bool underlined = false;
  bool overlined = false;
  std::uint8_t alpha = 255;
};

/// A picture: `origin` is the lower left corner, u the whole width, v the whole height; row 0 of
/// the image is the top row. Format ARGB32_Premultiplied.
struct ImageItem {
  QImage image;
  GroundPoint origin;
  GroundVector u;
  GroundVector v;
  std::uint8_t alpha = 255;
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

/// Fills a list anew, in the place of what it held: lines take over the storage of lines, since
/// most entities are drawn again as they were. What is left of the old list goes with the writer.
class ACADHOST_EXPORT ListWriter {
 public:
  explicit ListWriter(DisplayList& list) : list_(list) {}
  ~ListWriter() { list_.resize(count_); }
  ListWriter(const ListWriter&) = delete;
  ListWriter& operator=(const ListWriter&) = delete;

  /// The next item: a line without points. Valid until the next one.
  LineItem& addLine();
  void add(DisplayItem item);

 private:
  DisplayList& list_;
  size_t count_ = 0;
};

/// What one entity drew, and the ground that it covers.
struct Drawn {
  DisplayList list;
  GroundBox box;
  bool isEverywhere = false;  ///< nobody knows where: the box says nothing
  bool isGone = false;        ///< it is not seen now; its place in the order is kept
};

/// How single points look: as AcDbDatabase::pdmode() and pdsize().
struct PointLook {
  int mode = 0;
  double size = 0;
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
  /// What the entity drew, to be drawn into and set again; empty for a new one.
  DisplayList take(Key entity);
  /// The entity is not seen any more; when it comes back it gets its place in the order.
  void remove(Key entity);
  /// Keeps only these entities, in this order.
  void keepInOrder(const std::vector<Key>& entities);
  void clear();
  /// Of everything in the scene that is a line of one point.
  void setPointLook(const PointLook& look) { pointLook_ = look; }
  const PointLook& pointLook() const { return pointLook_; }
  /// How many are seen.
  size_t size() const;
  bool keepsPlaceOf(Key entity) { return known(entity) != nullptr; }
  /// Null when the entity is not seen.
  const DisplayList* find(Key entity) const;
  const Drawn* findDrawn(Key entity) const;
  const std::vector<Key>& order() const { return order_; }
  /// The same order; valid until the scene changes.
  const std::vector<const Drawn*>& drawn() const { return drawn_; }

 private:
  Drawn* known(Key entity);

  std::vector<Key> order_;
  std::vector<const Drawn*> drawn_;  ///< points into entities_, whose nodes never move
  std::unordered_map<Key, Drawn> entities_;
  PointLook pointLook_;
  size_t last_ = 0;  ///< in the order, of the one asked for last: mostly the next one follows
};

}  // namespace tarn::host
