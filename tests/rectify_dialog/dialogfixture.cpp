#include "tests/rectify_dialog/dialogfixture.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QRadioButton>
#include <cmath>

#include "_image/adskdmgr.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/placementrecord.h"
#include "arxEntryPoint.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "rxdlinkr.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);

namespace tarn::test {

BoxAnswers::BoxAnswers(const QString& button) {
  timer_.setInterval(1);
  QObject::connect(&timer_, &QTimer::timeout, [this, button] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box) return;
    seen.push_back((box->windowTitle() + "|" + box->text()).toStdString());
    for (QAbstractButton* one : box->buttons()) {
      if (!button.isEmpty() && one->text().remove('&') == button) return one->click();
    }
    box->accept();
  });
  timer_.start();
}

void DialogTest::SetUp() {
  startModule();
}

void DialogTest::TearDown() {
  stopModule();
}

void DialogTest::startModule() {
  host_ = std::make_unique<ModuleHost>();
  ASSERT_TRUE(
      acrxDynamicLinker->loadModule(toWide(TARN_BIN_DIR "/adapter_autocad.arx").c_str(), false));
  acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
  host_->app->setBackground(0x102030);
  host_->app->resizeView(600, 600);
  host_->printed();
}

void DialogTest::stopModule() {
  acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
  host_.reset();
  delete g_dataMap;
  g_dataMap = nullptr;
}

std::string DialogTest::makeImage(const std::string& name,
                                  const std::vector<std::pair<int, int>>& dots) {
  const std::string path = joinPath(host_->folder, name);
  const Raster raster =
      makeRaster(kWidth, kHeight, kLeft, kTop, 1, [&](int column, int row, uint8_t* rgb) {
        rgb[0] = rgb[1] = rgb[2] = 90;
        for (const auto& [x, y] : dots) {
          if (std::abs(column - x) > 2 || std::abs(row - y) > 2) continue;
          rgb[0] = 250;
          rgb[1] = rgb[2] = 10;
        }
      });
  EXPECT_TRUE(writeRaster(raster, path));
  return path;
}

void DialogTest::add(const std::string& path) {
  host_->ui.files = {{path}};
  host_->run("addImage");
  ASSERT_TRUE(record().contains(toWide(path)));
  host_->run("ZOOM C 1200,2150 600");
}

rectifyDialog* DialogTest::open() {
  host_->run("rectifyImage");
  return rectifyDialog::instance();
}

void DialogTest::type(const char* edit, const QString& text) {
  find<QLineEdit>(edit).setText(text);
}

void DialogTest::addPair(double x, double y, double u, double v) {
  const double values[] = {x, y, u, v};
  const char* const edits[] = {"oldEast", "oldNorth", "newEast", "newNorth"};
  for (int i = 0; i < 4; ++i) type(edits[i], QString::number(values[i], 'g', 17));
  press("addPoints");
}

std::string DialogTest::cell(int row, int column) {
  const QTableWidgetItem* item = table().item(row, column);
  return item ? item->text().toStdString() : "(none)";
}

std::vector<std::string> DialogTest::sources() {
  std::vector<std::string> texts;
  for (int row = 0; row < table().rowCount(); ++row)
    texts.push_back(cell(row, 1) + " " + cell(row, 2));
  return texts;
}

void DialogTest::choose(const char* mode) {
  find<QRadioButton>(mode).setChecked(true);
}

CDocData& DialogTest::record() {
  return *g_dataMap->current();
}

std::vector<double> DialogTest::stored(const std::string& path) {
  return image::storedPlacement(record().database(), toWide(path));
}

QImage DialogTest::picture() {
  host_->app->regenerate();
  // The dialog has drawn its marks again; they would hide the dots.
  host_->app->documents().current().temporaryVectors().lines.clear();
  const host::ViewState view = host_->app->screenView();
  QImage image(view.pixelWidth, view.pixelHeight, QImage::Format_RGB32);
  QPainter painter(&image);
  host_->app->renderTo(painter, view.pixelWidth, view.pixelHeight);
  return image;
}

std::optional<std::pair<double, double>> DialogTest::dotNear(double x, double y, double radius) {
  const QImage shown = picture();
  const host::ViewState view = host_->app->screenView();
  double sumX = 0, sumY = 0, weight = 0;
  for (int row = 0; row < shown.height(); ++row) {
    for (int column = 0; column < shown.width(); ++column) {
      const QRgb pixel = shown.pixel(column, row);
      const double red = qRed(pixel) - std::max(qGreen(pixel), qBlue(pixel));
      const host::GroundPoint ground = host::groundFromPixel(view, {column + 0.5, row + 0.5});
      if (red < 60 || std::hypot(ground.x - x, ground.y - y) > radius) continue;
      sumX += red * ground.x;
      sumY += red * ground.y;
      weight += red;
    }
  }
  if (weight == 0) return std::nullopt;
  return std::make_pair(sumX / weight, sumY / weight);
}

void DialogTest::expectDot(double x, double y, double tolerance) {
  const auto dot = dotNear(x, y, 12);
  ASSERT_TRUE(dot) << "nothing red near " << x << ", " << y;
  EXPECT_NEAR(dot->first, x, tolerance);
  EXPECT_NEAR(dot->second, y, tolerance);
}

}  // namespace tarn::test
