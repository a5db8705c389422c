#include "_image/view/serverwindow.h"

#include <algorithm>
#include <cmath>

namespace tarn::image {
namespace {

// Rounding of the view variables must not add a cell or move the grid by one.
constexpr double kGridTolerance = 1e-5;
constexpr double kMargin = 2.0;
constexpr double kStep = 10.0;
/// The largest multiple of the step that is a number of cells.
constexpr double kMostCells = kMaxCells - kMaxCells % static_cast<int>(kStep);

/// One axis, in image pixels.
struct Axis {
  int begin = 0;  ///< of the covered rectangle
  int length = 0;
  bool isClipped = false;
  double end = 0;        ///< exact end of what is to be seen
  double gridBegin = 0;  ///< a line of the screen's pixel grid
  int size = 0;          ///< of the image
  double reduction = 1;
};

struct Cells {
  double begin = 0;
  double size = 1;
  double count = 0;
};

Cells cellsOf(const Axis& axis, double divisor) {
  Cells cells;
  cells.size = axis.reduction * divisor;
  const double steps = std::floor((axis.begin - axis.gridBegin) / cells.size + kGridTolerance);
  cells.begin = axis.gridBegin + steps * cells.size;
  double count = std::floor(axis.length / cells.size + 1.0);
  if (!axis.isClipped) {
    const double rest = (axis.size - axis.begin - axis.length) / cells.size;
    count += std::min(kMargin, std::ceil(rest));
  }
  const double end = std::min(axis.end, static_cast<double>(axis.size));
  count = std::max(count, std::ceil((end - cells.begin) / cells.size - kGridTolerance));
  cells.count = std::ceil(count / kStep) * kStep;
  return cells;
}

/// The cells for the clarity, or as many times fewer as the limit wants.
Cells planAxis(const Axis& axis, int clarity, double& coarserBy) {
  double divisor = std::max(clarity, 1);
  const double whole = cellsOf(axis, 1).count;
  if (whole > kMostCells) coarserBy = std::min(coarserBy, (kMostCells - 2 * kStep) / whole);
  Cells cells = cellsOf(axis, divisor);
  while (cells.count > kMostCells) {
    divisor = std::ceil(divisor * cells.count / (kMostCells - 2 * kStep));
    cells = cellsOf(axis, divisor);
  }
  return cells;
}

}  // namespace

std::optional<PixelRequest> planServerRequest(const ViewState& view, const ImageExtent& image,
                                              const PixelRect& rect) {
  if (!isUsable(image)) return std::nullopt;
  const QPointF reduction = reductionOf(view.transform, image, rect);
  if (!std::isfinite(reduction.x()) || !std::isfinite(reduction.y())) return std::nullopt;
  const double a = std::fabs(image.pixelWidth);
  const double e = std::fabs(image.pixelHeight);
  const Axis columns{rect.left,
                     rect.width,
                     rect.isClippedRight,
                     (view.fetchRect.maxX - image.left) / a,
                     (view.viewRect.minX - image.left) / a,
                     image.width,
                     reduction.x()};
  const Axis rows{rect.top,
                  rect.height,
                  rect.isClippedBottom,
                  (image.top - view.fetchRect.minY) / e,
                  (image.top - view.viewRect.maxY) / e,
                  image.height,
                  reduction.y()};
  PixelRequest request;
  request.rect = rect;
  request.reductionX = reduction.x();
  request.reductionY = reduction.y();
  const Cells across = planAxis(columns, view.clarity, request.coarserBy);
  const Cells down = planAxis(rows, view.clarity, request.coarserBy);
  request.columns = static_cast<int>(across.count);
  request.rows = static_cast<int>(down.count);
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
