#include "host/graphics/sheetpicture.h"

#include <QPainter>
#include <QPen>

namespace tarn::host {

namespace {

constexpr QRgb kDesk = 0xff707478;
constexpr QRgb kPaper = 0xffffffff;
constexpr QRgb kShadow = 0xff45484b;
constexpr QRgb kMargin = 0xffa8a8a8;
constexpr int kShadowPixels = 4;
constexpr int kCurrentFrame = 3;  ///< pixels

QRectF onDevice(const GroundBox& box, const ViewState& view) {
  const PixelPoint a = pixelFromGround(view, {box.minX, box.maxY});
  const PixelPoint b = pixelFromGround(view, {box.maxX, box.minY});
  return QRectF(QPointF(a.x, a.y), QPointF(b.x, b.y));
}

}  // namespace

void renderSheet(QPainter& painter, const SheetPicture& picture, const RenderStyle& style) {
  painter.save();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
  const QRect device(0, 0, picture.view.pixelWidth, picture.view.pixelHeight);
  painter.setClipRect(device, Qt::IntersectClip);
  painter.fillRect(device, QColor(kDesk));
  const QRectF paper =
      onDevice(picture.paper, picture.view) & QRectF(device).adjusted(-9, -9, 9, 9);
  painter.fillRect(paper.translated(kShadowPixels, kShadowPixels), QColor(kShadow));
  painter.fillRect(paper, QColor(kPaper));
  painter.setPen(QPen(QColor(kMargin), 0, Qt::DashLine));
  painter.drawRect(onDevice(picture.printable, picture.view));

  RenderStyle onPaper = style;
  onPaper.background = kPaper;
  for (const SceneWindow& window : picture.windows) {
    painter.save();
    painter.setClipRect(window.clip, Qt::IntersectClip);
    paintScene(painter, *window.scene, window.view, onPaper);
    painter.restore();
  }
  paintScene(painter, *picture.scene, picture.view, onPaper);
  if (!picture.current.isNull()) {
    painter.setPen(QPen(QColor(Qt::black), kCurrentFrame));
    painter.drawRect(picture.current);
  }
  painter.restore();
}

}  // namespace tarn::host
