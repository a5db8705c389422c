// From ground coordinates to the pixels of one image: which rectangle the view covers, and which
// grid of cells is asked of the source for it. Image pixels: column to the right, row down.
#pragma once

#include <optional>

#include <QPointF>
#include <QTransform>

#include "_image/view/viewgeometry.h"

namespace tarn::image {

/// Where an image lies: size in pixels, pixel sizes (drawing units, `pixelHeight` usually negative)
/// and the outer upper-left corner. Rotation terms are never applied.
struct ImageExtent {
  int width = 0;
  int height = 0;
  double pixelWidth = 0;
  double pixelHeight = 0;
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
};

/// The view at the time of one draw.
struct ViewState {
  QTransform transform;    ///< ground to screen
  GroundRect viewRect;     ///< exact ground under the screen; its edges lie on the pixel grid
  GroundRect fetchRect;    ///< the same, enlarged by the offset ratio
  GroundRect nominalRect;  ///< the view rectangle as the entity gives it, enlarged likewise; half a
                           ///< pixel off where a side of the screen is odd
  int pixelWidth = 0;      ///< screen pixels, times the offset ratio
  int pixelHeight = 0;
  double twist = 0;  ///< radians
  int clarity = 1;   ///< divisor of the number of cells, at least 1
};

/// A rectangle of whole image pixels; width and height may be below 1 when nothing is covered.
struct PixelRect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool isClippedRight = false;
  bool isClippedBottom = false;
};

/// What is asked of a source for one draw, and where the answer belongs.
struct PixelRequest {
  PixelRect rect;   ///< counted from the nominal rectangle
  int columns = 0;  ///< cells a row
  int rows = 0;
  double reductionX = 1;  ///< image pixels a screen pixel
  double reductionY = 1;
  double windowX = 0;  ///< exact upper-left corner of the cells, in image pixels
  double windowY = 0;
  double cellX = 1;  ///< exact size of a cell, in image pixels
  double cellY = 1;
  double originX = 0;  ///< lower-left corner of the cells, in drawing units
  double originY = 0;
  /// The part of the screen's pixels at which the window needs no more than kMaxCells a side; 1
  /// when it needs no more anyway.
  double coarserBy = 1;
  double spanU = 0;  ///< width of all columns, in drawing units
  double spanV = 0;
};

/// The largest number of cells a side.
constexpr int kMaxCells = 8192;

/// False for an empty image and for numbers that place it nowhere.
bool isUsable(const ImageExtent& image);

/// Whole image pixels that the ground rectangle covers: truncated towards zero, limited to the
/// image.
PixelRect pixelRectOf(const GroundRect& ground, const ImageExtent& image);

/// Image pixels a screen pixel, along the image's columns and rows.
QPointF reductionOf(const QTransform& groundToScreen, const ImageExtent& image,
                    const PixelRect& rect);

/// The request for one image, or nothing when the view shows none of it.
///
/// Cells of an untwisted view coincide with screen pixels, so the host can copy them one to one;
/// when a screen pixel is smaller than an image pixel, cells are whole image pixels.
std::optional<PixelRequest> planPixelRequest(const ViewState& view, const ImageExtent& image);

}  // namespace tarn::image
