// Footprints of images over the drawing's view, small.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <vector>

#include "host/graphics/viewstate.h"

namespace tarn::host {

/// The wheel zooms, a drag moves, a click chooses the smallest footprint under the mouse.
class ListingMap : public QWidget {
 public:
  explicit ListingMap(QWidget* parent);

  /// The drawing as the screen shows it, and the view that shows it so.
  void setDrawing(const QImage& picture, const ViewState& view);
  /// One an image, empty where it is not known. `chosen` says which are; as long as `footprints`.
  void setFootprints(std::vector<GroundBox> footprints, std::vector<bool> chosen);

  /// Shows the drawing's view, or all footprints. Until the user has moved the map it shows the
  /// former, or the latter when the former holds no footprint.
  void showDrawing();
  void showFootprints();

  /// Called with the number of the footprint that was clicked, and whether it is to be added to
  /// what is chosen already.
  std::function<void(size_t footprint, bool adds)> clicked;

  QSize sizeHint() const override { return {420, 320}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QPolygonF outline(const GroundBox& box) const;
  void paintDrawing(QPainter& painter) const;
  void fitDrawing();
  void fitFootprints();
  void follow();

  QImage picture_;
  ViewState drawing_;  ///< that the picture shows
  ViewState view_;     ///< of this widget, in logical pixels
  std::vector<GroundBox> footprints_;
  std::vector<bool> chosen_;
  QPoint pressed_;
  QPoint last_;
  bool isDragged_ = false;
  bool isMoved_ = false;  ///< by the user
};

}  // namespace tarn::host
