#include "host/plot/plotfile.h"

#include <QBuffer>
#include <QIODevice>
#include <QImage>
#include <QImageWriter>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include "base/file.h"

namespace tarn::host {

namespace {

constexpr double kLineMillimetres = 0.18;
constexpr double kMillimetresPerInch = 25.4;

/// A sequential device over a file beside the target, which it becomes in the end.
class PlotFile : public QIODevice {
 public:
  explicit PlotFile(const std::string& path) : path_(path), temporary_(path + ".part") {
    status_ = file_.create(temporary_);
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
  }
  ~PlotFile() override {
    if (!kept_) static_cast<void>(removeAll(temporary_));
  }
  bool isSequential() const override { return true; }
  bool isGood() const { return status_.isOk(); }

  /// Syncs and takes the target's place, unless a write has failed before.
  Status keep() {
    if (status_) status_ = file_.finish();
    if (status_) status_ = replaceFile(temporary_, path_);
    kept_ = status_.isOk();
    return status_;
  }
  const Status& status() const { return status_; }

 protected:
  qint64 readData(char*, qint64) override { return -1; }
  /// After a failure everything is taken and dropped: the painter cannot be stopped halfway.
  qint64 writeData(const char* data, qint64 size) override {
    if (status_) status_ = file_.writeAt(position_, data, static_cast<size_t>(size));
    position_ += static_cast<uint64_t>(size);
    return size;
  }

 private:
  std::string path_;
  std::string temporary_;
  OutputFile file_;
  uint64_t position_ = 0;
  Status status_;
  bool kept_ = false;
};

RenderStyle paperStyle(const PlotPlan& plan, const RenderStyle& style, PlotDevice device) {
  RenderStyle paper = style;
  paper.background = 0xffffffff;
  paper.lineWidth = std::max(1.0, kLineMillimetres * plan.dpi / kMillimetresPerInch);
  paper.placeImages = device == PlotDevice::kPdf;
  return paper;
}

/// False when it was given up.
bool paintLayers(QPainter& painter, const std::vector<PlotLayer>& layers, const RenderStyle& style,
                 const std::function<bool()>& proceed) {
  for (const PlotLayer& layer : layers) {
    if (!proceed()) return false;
    painter.save();
    painter.setClipRect(layer.clip);
    paintScene(painter, *layer.scene, layer.view, style);
    painter.restore();
  }
  return proceed();
}

Status givenUp() {
  return Status::error("");
}

Status writePdf(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                const PlotTarget& target, const RenderStyle& style,
                const std::function<bool()>& proceed) {
  PlotFile file(target.path);
  if (!file.isGood()) return file.status();
  QPdfWriter writer(&file);
  writer.setTitle(QString::fromStdString(target.title));
  writer.setCreator("Tarn Image");
  writer.setPageSize(QPageSize(QSizeF(plan.paperWidth, plan.paperHeight), QPageSize::Millimeter,
                               QString(), QPageSize::ExactMatch));
  writer.setPageMargins(QMarginsF(0, 0, 0, 0));
  writer.setResolution(plan.dpi);
  bool finished = false;
  {
    QPainter painter;
    if (!painter.begin(&writer)) return Status::error(target.path + ": a PDF cannot be begun.");
    finished = paintLayers(painter, layers, style, proceed);
  }
  if (!finished || !proceed()) return givenUp();
  return file.keep();
}

Status writePng(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                const PlotTarget& target, const RenderStyle& style,
                const std::function<bool()>& proceed) {
  QImage page(plan.page.pixelWidth, plan.page.pixelHeight, QImage::Format_RGB32);
  if (page.isNull()) {
    return Status::error(target.path + ": a picture of " + std::to_string(plan.page.pixelWidth) +
                         " x " + std::to_string(plan.page.pixelHeight) +
                         " pixels does not fit into memory; choose a lower resolution.");
  }
  page.fill(Qt::white);
  const int perMetre = qRound(plan.dpi * 1000 / kMillimetresPerInch);
  page.setDotsPerMeterX(perMetre);
  page.setDotsPerMeterY(perMetre);
  {
    QPainter painter(&page);
    if (!paintLayers(painter, layers, style, proceed)) return givenUp();
  }
  PlotFile file(target.path);
  if (!file.isGood()) return file.status();
  QImageWriter writer(&file, "png");
  if (!writer.write(page)) {
    return Status::error(target.path + ": " + writer.errorString().toStdString() + ".");
  }
  if (!proceed()) return givenUp();
  return file.keep();
}

}  // namespace

Status writePlot(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                 const PlotTarget& target, const RenderStyle& style,
                 const std::function<bool()>& proceed) {
  const RenderStyle paper = paperStyle(plan, style, target.device);
  return target.device == PlotDevice::kPdf ? writePdf(plan, layers, target, paper, proceed)
                                           : writePng(plan, layers, target, paper, proceed);
}

}  // namespace tarn::host
