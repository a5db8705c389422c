#include "host/plot/plotfile.h"

#include <QIODevice>
#include <QImage>
#include <QImageWriter>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include "base/file.h"
#include "base/path.h"

namespace tarn::host {

namespace {

constexpr double kLineMillimetres = 0.18;
constexpr double kMillimetresPerInch = 25.4;

Status givenUp() {
  return Status::error("");
}

/// Takes the file in memory, so that nothing of it is on the disk before it is whole.
class PlotBytes : public QIODevice {
 public:
  explicit PlotBytes(const std::function<bool()>& proceed) : proceed_(proceed) {
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
  }
  bool isSequential() const override { return true; }

  Status writeTo(const std::string& path) {
    stopped_ = stopped_ || !proceed_();
    if (stopped_) return givenUp();
    Status status = writeFileAtomically(path, bytes_);
    const bool namesFile = status.message().find(path) != std::string::npos;
    return status || namesFile ? status : Status::error(path + ": " + status.message());
  }

 protected:
  qint64 readData(char*, qint64) override { return -1; }
  /// Once stopped everything is taken and dropped: the painter cannot be stopped halfway.
  qint64 writeData(const char* data, qint64 size) override {
    stopped_ = stopped_ || !proceed_();
    if (!stopped_) bytes_.append(data, static_cast<size_t>(size));
    return size;
  }

 private:
  const std::function<bool()>& proceed_;
  std::string bytes_;
  bool stopped_ = false;
};

RenderStyle paperStyle(const PlotPlan& plan, const RenderStyle& style, PlotDevice device) {
  RenderStyle paper = style;
  paper.background = 0xffffffff;
  paper.lineWidth = std::max(1.0, kLineMillimetres * plan.dpi / kMillimetresPerInch);
  if (plan.lineWeights) paper.pixelsPerMillimetre = plan.dpi / kMillimetresPerInch;
  paper.placeImages = device == PlotDevice::kPdf;
  return paper;
}

/// False when it was given up.
bool paintLayers(QPainter& painter, const std::vector<PlotLayer>& layers, const RenderStyle& style,
                 const std::function<bool()>& proceed) {
  painter.setRenderHint(QPainter::LosslessImageRendering, true);
  for (const PlotLayer& layer : layers) {
    Scene scene;
    if (!layer.record(scene)) return false;
    painter.save();
    painter.setClipRect(layer.clip);
    paintScene(painter, scene, layer.view, style);
    painter.restore();
    if (!proceed()) return false;
  }
  return true;
}

Status writePdf(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                const PlotTarget& target, const RenderStyle& style,
                const std::function<bool()>& proceed) {
  PlotBytes file(proceed);
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
  return finished ? file.writeTo(target.path) : givenUp();
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
  PlotBytes file(proceed);
  QImageWriter writer(&file, "png");
  if (!writer.write(page)) {
    return Status::error(target.path + ": " + writer.errorString().toStdString() + ".");
  }
  return file.writeTo(target.path);
}

}  // namespace

Status checkPlotTarget(const std::string& path) {
  if (path.empty()) return Status::error("The plot needs a file name.");
  const FileKind kind = fileKind(path);
  if (kind == FileKind::kFolder || kind == FileKind::kOther) {
    return Status::error(path + ": this is no file that can be plotted to.");
  }
  if (kind == FileKind::kRegular && !fileIsWritable(path)) {
    return Status::error(path + ": the file is read-only.");
  }
  const std::string folder = folderOf(path);
  if (!folder.empty() && fileKind(folder) != FileKind::kFolder) {
    return Status::error(path + ": there is no folder " + folder + ".");
  }
  return {};
}

Status writePlot(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                 const PlotTarget& target, const RenderStyle& style,
                 const std::function<bool()>& proceed) {
  const RenderStyle paper = paperStyle(plan, style, target.device);
  return target.device == PlotDevice::kPdf ? writePdf(plan, layers, target, paper, proceed)
                                           : writePng(plan, layers, target, paper, proceed);
}

}  // namespace tarn::host
