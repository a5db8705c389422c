#include "tests/image_server/fixture.h"

#include <QPainter>
#include <algorithm>
#include <cstdlib>

#include "arxEntryPoint.h"
#include "host/editor/namedrecords.h"
#include "imageclient/tarnclientmanager.h"
#include "rxdlinkr.h"
#include "tests/imageclient/client.h"
#include "tests/imageclient/images.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);

namespace tarn::test {

Scratch* ServerImages::store_ = nullptr;
WebServer* ServerImages::server_ = nullptr;

void ServerImages::SetUpTestSuite() {
  store_ = new Scratch("imageserver");
  const Scratch made("imageserver-made");
  ASSERT_TRUE(makeFolders(store_->at("east side")));
  ASSERT_TRUE(writeRaster(groundPicture(2600, 1700), made.at("正射 100%.tif")));
  Raster flat = groundPicture(700, 500, 9);
  flat.left += 1300;
  ASSERT_TRUE(writeRaster(flat, made.at("flat.tif")));
  ASSERT_TRUE(convertToCog(made.at("正射 100%.tif"), store_->at("east side")));
  ASSERT_TRUE(convertToCog(made.at("flat.tif"), store_->folder()));
  server_ = new WebServer(store_->folder());
  ASSERT_TRUE(server_->isUp());
}

void ServerImages::TearDownTestSuite() {
  delete server_;
  delete store_;
}

void ServerImages::SetUp() {
  // As patient as ever: only the pause is short.
  ClientTimes times;
  times.pause = shortTimes().pause;
  TarnClientManager::setTimes(times);
  host_ = std::make_unique<ModuleHost>();
  ASSERT_TRUE(
      acrxDynamicLinker->loadModule(toWide(TARN_BIN_DIR "/adapter_autocad.arx").c_str(), false));
  acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
  host_->app->setBackground(0x102030);
  host_->printed();
}

void ServerImages::TearDown() {
  acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
  host_.reset();
  delete g_dataMap;
  g_dataMap = nullptr;
  TarnClientManager::setTimes({});
}

std::string ServerImages::useServer(const std::string& port) {
  host_->frontEnd.answers = {"1", "Add", "office", "127.0.0.1:" + port, "", ""};
  return host_->run("IMAGESERVER");
}

std::string ServerImages::addImages(std::vector<std::string> answers) {
  host_->frontEnd.answers = {answers.begin(), answers.end()};
  return host_->run("addImage");
}

std::string ServerImages::keyOf(const std::string& path, const std::string& port) {
  return "127.0.0.1:" + port + "/" + replaceAll(path, "/", ":");
}

std::vector<std::string> ServerImages::stored() {
  return host::namedStrings(*host_->app, "ImagePath", "ImagePath");
}

QImage ServerImages::picture(const std::string& view) {
  host_->run(view);
  host_->run("REGEN");
  QImage image(1000, 600, QImage::Format_RGB32);
  QPainter painter(&image);
  host_->app->renderTo(painter, 1000, 600);
  return image;
}

double ServerImages::difference(const QImage& a, const QImage& b) {
  constexpr QRgb kBackground = qRgb(0x10, 0x20, 0x30);
  constexpr int kLeast = 1000;
  constexpr int kTolerance = 2;
  int compared = 0;
  int beyond = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y);
      const QRgb q = b.pixel(x, y);
      if (p == kBackground && q == kBackground) continue;
      ++compared;
      const int worst = std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                  std::abs(qBlue(p) - qBlue(q))});
      if (worst > kTolerance) ++beyond;
    }
  }
  return compared < kLeast ? 1 : static_cast<double>(beyond) / compared;
}

std::string ServerImages::click(const std::string& action, std::vector<std::string> inputs) {
  host_->frontEnd.answers = {inputs.begin(), inputs.end()};
  return host_->run("UICLICK 1131 " + action);
}

}  // namespace tarn::test
