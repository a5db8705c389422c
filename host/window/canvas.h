// The drawing area: shows the picture of the current view and turns the mouse into view changes,
// raw messages for the watchers, and picked points. Positions are device pixels.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>

#include "afxwin.h"
#include "host/window/frame.h"

namespace tarn::host {

class HostApp;

/// What the left button is for just now; the cursor says it.
enum class Aim { kCommand, kPoint, kSelect, kNothing };

class Canvas : public QWidget {
 public:
  /// What the window around it supplies; all must be set. `app` must outlive the canvas.
  struct Hooks {
    std::function<bool()> mayAct;  ///< false while the host computes: the picture only stands there
    std::function<bool()> leftPans;  ///< dragging with the left button moves the view just now
    std::function<void(GroundPoint)> pressed;  ///< left button down
    /// Left button up; `dragged` after a move, `shift` with that key held.
    std::function<void(GroundPoint, bool dragged, bool shift)> released;
    std::function<void()> letGo;  ///< what was chosen stands in another space than the mouse now
    std::function<void(GroundPoint)> hovered;  ///< the mouse stands on this ground
    std::function<void()> left;                ///< the mouse has left the canvas
    /// Paints what lies over the picture, one unit a device pixel.
    std::function<void(QPainter&)> paintOver;
    std::function<void()> acted;             ///< the canvas has made the host draw
    std::function<void()> nothingToShow;     ///< zoom to extents of an empty drawing
    std::function<void(QPoint)> menuWanted;  ///< the right button, there on the screen
  };
  Canvas(HostApp& app, Hooks hooks);

  /// The picture of the drawing has changed: paint again soon. Cheap.
  void contentChanged();
  /// Regenerates when the view has been still for a moment.
  void settleLater();
  /// The same at once, if it is due.
  void settleNow();
  /// A cross for points, with a box of `pickBox` device pixels to each side where entities are
  /// chosen.
  void setAim(Aim aim, int pickBox);
  /// Zooms to the extents, or says that there is nothing to show.
  void zoomExtents();

  /// Time without a view change before the host regenerates, in milliseconds.
  static constexpr int kSettleMilliseconds = 120;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  QPoint devicePixel(QPointF local) const;
  QSize deviceSize() const;
  GroundPoint groundAt(QPointF local) const;
  void tellWatchers(UINT message, const QMouseEvent& event);
  void beginDrag(const QMouseEvent& event);
  void dragTo(QPointF local);
  void endDrag(const QMouseEvent& event, UINT message);
  void settle();
  void showCursor();

  HostApp& app_;
  Hooks hooks_;
  Frame frame_;
  QTimer settleTimer_;
  Aim aim_ = Aim::kCommand;
  int pickBox_ = 0;
  std::optional<QPointF> mouse_;  ///< where it stands on the canvas
  QPoint dragFrom_;
  QPoint pressedAt_;  ///< left button
  bool dragging_ = false;
  bool leftDown_ = false;
  bool leftMayPan_ = false;     ///< the left button is down, and a move of it will drag
  bool moved_ = false;          ///< the drag has changed the view
  bool onlyViewMoves_ = false;  ///< display changes of this moment come from a pan of our own
  bool contentSeen_ = false;    ///< something was drawn anew since this was last cleared
};

}  // namespace tarn::host
