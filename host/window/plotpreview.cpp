#include "host/window/plotpreview.h"

#include <QPainter>
#include <algorithm>

#include "host/editor/plotjob.h"

namespace tarn::host {

namespace {

constexpr int kSide = 340;
constexpr QRgb kPaper = 0xffffffff;
const QColor kMargin(0xa8, 0xae, 0xb6);
const QColor kArea(0x3f, 0x7f, 0xb8);

/// Page pixels of the resolution to those of the preview.
class Reduction {
 public:
  Reduction(const PlotPlan& plan, double side)
      : plan_(plan), factor_(side / std::max(plan.page.pixelWidth, plan.page.pixelHeight)) {}

  QSize page() const {
    return {std::max(1, qRound(plan_.page.pixelWidth * factor_)),
            std::max(1, qRound(plan_.page.pixelHeight * factor_))};
  }
  QRectF rect(const QRectF& of) const {
    return {of.left() * factor_, of.top() * factor_, of.width() * factor_, of.height() * factor_};
  }
  ViewState view(ViewState of) const {
    of.height = of.height / of.pixelHeight * page().height() / factor_;
    of.pixelWidth = page().width();
    of.pixelHeight = page().height();
    return of;
  }
  QRectF printable(const PlotData& settings) const {
    const double x = page().width() / settings.width;
    const double y = page().height() / settings.height;
    return {
        QPointF(settings.left * x, settings.top * y),
        QPointF((settings.width - settings.right) * x, (settings.height - settings.bottom) * y)};
  }

 private:
  const PlotPlan& plan_;
  double factor_;
};

}  // namespace

PlotPreview::PlotPreview(QWidget* parent) : QWidget(parent) {
  setFixedSize(kSide + 16, kSide + 16);
}

void PlotPreview::show(HostApp& app, const PlotJob& job, const PlotPlan& plan) {
  const double ratio = devicePixelRatioF();
  const Reduction reduction(plan, kSide * ratio);
  page_ = QImage(reduction.page(), QImage::Format_RGB32);
  page_.fill(kPaper);
  QPainter painter(&page_);
  RenderStyle style;
  style.background = kPaper;
  const std::vector<ShownLayer> layers = layersOnScreen(app, job, plan);
  for (const ShownLayer& layer : layers) {
    painter.save();
    painter.setClipRect(reduction.rect(layer.clip));
    paintScene(painter, *layer.scene, reduction.view(layer.view), style);
    painter.restore();
  }
  painter.setPen(QPen(kMargin, 0, Qt::DashLine));
  painter.drawRect(reduction.printable(job.settings));
  const QRectF area = reduction.rect(plan.clip);
  if (layers.empty()) painter.fillRect(area, QColor(kArea.red(), kArea.green(), kArea.blue(), 60));
  painter.setPen(QPen(kArea, 0));
  painter.drawRect(area.adjusted(0, 0, -1, -1));
  painter.end();
  page_.setDevicePixelRatio(ratio);
  update();
}

void PlotPreview::clear() {
  page_ = QImage();
  update();
}

void PlotPreview::paintEvent(QPaintEvent*) {
  if (page_.isNull()) return;
  QPainter painter(this);
  const QSizeF size = QSizeF(page_.size()) / page_.devicePixelRatio();
  const QPointF corner((width() - size.width()) / 2, (height() - size.height()) / 2);
  painter.fillRect(QRectF(corner + QPointF(4, 4), size), QColor(0, 0, 0, 90));
  painter.drawImage(corner, page_);
}

}  // namespace tarn::host
