#include "_image/view/pixelwindow.h"

#include <algorithm>
#include <cmath>

namespace tarn::image {
namespace {

// Rounding of the view variables must not add a cell or move the grid by one.
constexpr double kGridTolerance = 1e-5;
// Below this many image pixels a screen pixel the view enlarges; 1:1 must not flicker about it.
constexpr double kEnlargesBelow = 1.0 - 1e-9;

/// One axis of the cell grid, in image pixels.
struct Axis {
  double begin = 0;  ///< exact begin and end of what is fetched, not limited to the image
  double end = 0;
  double gridBegin = 0;  ///< a line of the screen's pixel grid
  int size = 0;          ///< of the image
  double reduction = 1;
  int screenPixels = 0;
  bool isTwisted = false;
  int clarity = 1;
};

struct Cells {
  double begin = 0;
  double size = 1;
  int count = 0;
  double coarserBy = 1;
};

/// Number of steps before clarity: screen pixels when reducing, image pixels when enlarging.
Cells planAxis(const Axis& axis) {
  const double begin = std::max(axis.begin, 0.0);
  const double end = std::min(axis.end, static_cast<double>(axis.size));
  Cells cells;
  int count = 0;
  if (axis.reduction < kEnlargesBelow) {
    cells.begin = std::floor(begin);
    cells.size = 1.0;
    count = std::max(truncateToInt(end - cells.begin), 0);
  } else {
    const double steps = (begin - axis.gridBegin) / axis.reduction;
    cells.begin = axis.gridBegin + std::floor(steps + kGridTolerance) * axis.reduction;
    cells.size = axis.reduction;
    count = truncateToInt(std::ceil((end - cells.begin) / axis.reduction - kGridTolerance));
    count = std::max(count, 0);
    if (!axis.isTwisted) count = std::min(count, axis.screenPixels);
  }
  if (count + 1 > kMaxCells) {
    const double reduction = std::max(axis.reduction, 1.0) * (count + 1) / (kMaxCells - 2);
    cells.coarserBy = axis.reduction / reduction;
  }
  int divisor = std::max(axis.clarity, 1);
  if (count / divisor + 1 > kMaxCells) divisor = (count + kMaxCells - 2) / (kMaxCells - 1);
  cells.size *= divisor;
  cells.count = count / divisor + 1;
  return cells;
}

}  // namespace

bool isUsable(const ImageExtent& image) {
  const double numbers[] = {image.pixelWidth, image.pixelHeight, image.left, image.top};
  return image.width > 0 && image.height > 0 && image.pixelWidth != 0 && image.pixelHeight != 0 &&
         std::all_of(std::begin(numbers), std::end(numbers),
                     [](double number) { return std::isfinite(number); });
}

PixelRect pixelRectOf(const GroundRect& ground, const ImageExtent& image) {
  const double a = std::fabs(image.pixelWidth);
  const double e = std::fabs(image.pixelHeight);
  const int left = std::max(truncateToInt((ground.minX - image.left) / a), 0);
  int right = truncateToInt((ground.maxX - image.left) / a);
  const int top = std::max(truncateToInt((image.top - ground.maxY) / e), 0);
  int bottom = truncateToInt((image.top - ground.minY) / e);
  PixelRect rect;
  rect.isClippedRight = right > image.width;
  rect.isClippedBottom = bottom > image.height;
  right = std::min(right, image.width);
  bottom = std::min(bottom, image.height);
  rect.left = left;
  rect.top = top;
  rect.width = right - left;
  rect.height = bottom - top;
  return rect;
}

QPointF reductionOf(const QTransform& groundToScreen, const ImageExtent& image,
                    const PixelRect& rect) {
  // Edge lengths need no translation, and without it they keep all their digits.
  const QTransform pixelToGround(image.pixelWidth, 0, 0, image.pixelHeight, 0, 0);
  const QTransform groundToScreenDirection(groundToScreen.m11(), groundToScreen.m12(),
                                           groundToScreen.m21(), groundToScreen.m22(), 0, 0);
  const QRect pixels(0, 0, std::max(rect.width, 1), std::max(rect.height, 1));
  const QPolygonF scene = mapPixelRect(pixelToGround * groundToScreenDirection, pixels);
  const QPointF along = scene[1] - scene[0];
  const QPointF down = scene[3] - scene[0];
  return {pixels.width() / std::hypot(along.x(), along.y()),
          pixels.height() / std::hypot(down.x(), down.y())};
}

std::optional<PixelRequest> planPixelRequest(const ViewState& view, const ImageExtent& image) {
  if (!isUsable(image)) return std::nullopt;
  const double a = std::fabs(image.pixelWidth);
  const double e = std::fabs(image.pixelHeight);
  const GroundRect& fetch = view.fetchRect;
  const bool overlaps = fetch.maxX > image.left && fetch.minX < image.left + image.width * a &&
                        fetch.minY < image.top && fetch.maxY > image.top - image.height * e;
  if (!overlaps) return std::nullopt;

  PixelRequest request;
  request.rect = pixelRectOf(view.nominalRect, image);
  const QPointF reduction = reductionOf(view.transform, image, request.rect);
  request.reductionX = reduction.x();
  request.reductionY = reduction.y();
  if (!std::isfinite(reduction.x()) || !std::isfinite(reduction.y())) return std::nullopt;

  const bool isTwisted = view.twist != 0;
  const Axis columns{(fetch.minX - image.left) / a,
                     (fetch.maxX - image.left) / a,
                     (view.viewRect.minX - image.left) / a,
                     image.width,
                     reduction.x(),
                     view.pixelWidth,
                     isTwisted,
                     view.clarity};
  const Axis rows{(image.top - fetch.maxY) / e,
                  (image.top - fetch.minY) / e,
                  (image.top - view.viewRect.maxY) / e,
                  image.height,
                  reduction.y(),
                  view.pixelHeight,
                  isTwisted,
                  view.clarity};
  const Cells across = planAxis(columns);
  const Cells down = planAxis(rows);
  request.coarserBy = std::min(across.coarserBy, down.coarserBy);
  request.columns = across.count;
  request.rows = down.count;
  request.windowX = across.begin;
  request.windowY = down.begin;
  request.cellX = across.size;
  request.cellY = down.size;
  request.spanU = across.count * across.size * a;
  request.spanV = down.count * down.size * e;
  request.originX = image.left + across.begin * a;
  request.originY = image.top - down.begin * e - request.spanV;
  return request;
}

}  // namespace tarn::image
