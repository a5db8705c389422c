// The one renderer: display lists through QPainter, for the window and for picture files.
#pragma once

#include <QColor>
#include <QStringList>

#include "adesk.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/fonts.h"
#include "host/graphics/viewstate.h"

class QPainter;

namespace tarn::host {

struct RenderStyle {
  QRgb background = 0xff212830;
  /// Of all lines, in pixels; 0 for one pixel on a screen.
  double lineWidth = 0;
  /// Pixels for a millimetre of the weight that lines have; 0 draws all of them alike.
  double pixelsPerMillimetre = 0;
  /// Pictures go to the painter's device whole, with their transformation, instead of being turned
  /// into its pixels: for devices that keep them.
  bool placeImages = false;
  /// Tried in order for texts whose own font is not there.
  QStringList fontFamilies = usualFamilies();
};

/// Fills the view's pixels with the background and paints the scene in its order. One painter unit
/// is one device pixel: the painter must have no transformation and its device a pixel ratio of 1.
ACADHOST_EXPORT void render(QPainter& painter, const Scene& scene, const ViewState& view,
                            const RenderStyle& style);

/// Paints only the scene, on what is there and inside the painter's clip. The background of the
/// style says what colours stand on.
ACADHOST_EXPORT void paintScene(QPainter& painter, const Scene& scene, const ViewState& view,
                                const RenderStyle& style);

}  // namespace tarn::host
