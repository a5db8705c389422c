// Images of servers: how a source is opened, where its image lies, how one view of it is drawn.
#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/moduleglobals.h"
#include "_image/view/plotvalues.h"
#include "_image/view/serverwindow.h"
#include "acgi.h"
#include "base/text.h"
#include "commoncode/cadutil/message.h"
#include "imageclient/qfilefind.h"
#include "imageclient/tarnclientmanager.h"

using tarn::cad::printMessage;
using tarn::image::ImageExtent;
using tarn::image::PixelRect;
using tarn::image::PixelRequest;
using tarn::image::ServerImage;
using tarn::image::ViewState;

namespace {

/// A covered rectangle that is narrower ends the drawing.
constexpr int kLeastPixels = 2;

kel::DString text(const std::wstring& wide) {
  return {tarn::toUtf8(wide)};
}

}  // namespace

bool CCadImage::GetImageDataFile(TarnClientManager*& client, Division& division, bool& isNetwork) {
  isNetwork = QFileFind::Instance().loadImgWay() == LOADWAY::kServer;
  if (!isNetwork) return GetImageDataFile(division);
  kel::DString chosen;
  QFileFind::Instance().getImgInfo(chosen);
  if (chosen.isEmpty()) return false;
  const std::wstring path = tarn::image::withoutDisplayName(tarn::toWide(chosen.str()));
  if (!GetImageDataFile(path, client, true)) return false;
  SetCurrentImage(path);
  return true;
}

bool CCadImage::GetImageDataFile(const std::wstring& imageName, TarnClientManager*& client,
                                 bool isServer) const {
  if (holds(imageName)) {
    printMessage(L"\n%1该影像文件已被加载！", imageName);
    return false;
  }
  std::unique_ptr<TarnClientManager> manager;
  if (!openServerImage(imageName, isServer, manager)) {
    // The client has told why; a name that leads to none has not.
    if (!manager) printMessage(L"\n%1：打开影像出错", imageName);
    return false;
  }
  client = manager.release();
  return true;
}

bool CCadImage::openServerImage(const std::wstring& imageName, bool isServer,
                                std::unique_ptr<TarnClientManager>& manager) {
  const std::optional<ServerImage> where = tarn::image::parseServerImage(imageName);
  if (!where) return false;
  manager = std::make_unique<TarnClientManager>();
  manager->setIsServe(isServer);
  manager->setPort(text(where->port));
  manager->setServeIp(text(where->address));
  const bool isConnected = manager->connectServe();
  // Also without a server: the image is the one to come back to.
  return manager->setCurImg(text(where->image)) && isConnected;
}

bool CCadImage::GetImageData(TarnClientManager* client, int& width, int& height, double& a,
                             double& e, double& y0, double& x0, double& right,
                             double& bottom) const {
  if (!client || client->imgWei() <= 0 || client->imgHei() <= 0) return false;
  width = client->imgWei();
  height = client->imgHei();
  const double* georef = client->getTfwData();
  a = georef[0];
  e = georef[3];
  x0 = georef[4];
  y0 = georef[5];
  right = width * std::fabs(a) + x0;
  bottom = y0 - height * std::fabs(e);
  return true;
}

void CCadImage::GetImageCenterPt(TarnClientManager* client, double upperLeft[2],
                                 double lowerRight[2]) const {
  const double* georef = client->getTfwData();
  upperLeft[0] = georef[4];
  upperLeft[1] = georef[5];
  lowerRight[0] = georef[4] + client->imgWei() * std::fabs(georef[0]);
  lowerRight[1] = georef[5] - client->imgHei() * std::fabs(georef[3]);
}

void CCadImage::setImgInfoMap(const std::wstring& path, TarnClientManager* client) {
  m_mapImageClient[path] = client;
}

void CCadImage::SetServerImageInfo(const std::wstring& path, TarnClientManager* client) {
  setImgInfoMap(path, client);
  m_strImagePath = path;
}

TarnClientManager* CCadImage::clientOf(const std::wstring& path) const {
  const auto found = m_mapImageClient.find(path);
  return found == m_mapImageClient.end() ? nullptr : found->second;
}

/// What an image of a server has for a footprint, which may change with the image.
std::vector<CCadImage::Corners> CCadImage::serverFootprints() const {
  std::vector<Corners> footprints;
  for (const auto& [path, client] : m_mapImageClient) {
    if (client->imgWei() <= 0) continue;
    footprints.push_back(footprintOf(client->imgWei(), client->imgHei(), client->getTfwData()));
  }
  return footprints;
}

/// False when the whole drawing ends here.
bool CCadImage::drawServerImage(const std::wstring& path, AcGiWorldDraw* worldDraw,
                                const ViewState& view) const {
  TarnClientManager& client = *m_mapImageClient.find(path)->second;
  ImageExtent extent;
  if (!client.isReady() || !extentOf(path, extent)) return true;
  DrawImageWrapPoints(worldDraw, extent.top, extent.left, extent.right, extent.bottom);
  if (tarn::image::g_suppressPixels || !tarn::image::isUsable(extent)) return true;

  const PixelRect rect = pixelRectOf(view.nominalRect, extent);
  if (rect.width <= 0 || rect.height <= 0) return true;
  // Deliberate: images after one of which only a sliver is in view are not drawn.
  if (rect.width < kLeastPixels || rect.height < kLeastPixels) return false;
  std::optional<PixelRequest> request = planServerRequest(view, extent, rect);
  if (!request) return true;
  const AcGiContext* context = worldDraw->context();
  if (context && context->isPlotGeneration() && request->coarserBy < 1) {
    printMessage(L"\n%1选择范围过大！", path);
    request = planServerRequest(tarn::image::coarserView(view, request->coarserBy), extent, rect);
    if (!request) return true;
  }
  client.announceWindow(request->windowX, request->windowY, request->cellX, request->cellY);
  if (!client.updateImage(rect.left, rect.top, request->columns, request->rows, request->cellX,
                          request->cellY, nullptr)) {
    return true;
  }
  if (const unsigned char* pixels = client.getMaybeImgData()) {
    DrawImage(request->columns, request->rows, request->columns + 1, request->rows + 1,
              request->spanU, request->spanV, AcGePoint3d(request->originX, request->originY, 0),
              worldDraw, pixels);
  }
  return true;
}
