// Images of servers: how a source is opened, where its image lies, how one view of it is drawn.
#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/docdata.h"
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
  std::unique_ptr<TarnClientManager> manager = clientFor(imageName, isServer);
  if (!manager) {
    printMessage(L"\n%1：打开影像出错", imageName);
    return false;
  }
  // The client tells why.
  const auto where = tarn::image::parseServerImage(imageName);
  if (!manager->connectServe() || !manager->setCurImg(text(where->image))) return false;
  client = manager.release();
  return true;
}

std::unique_ptr<TarnClientManager> CCadImage::clientFor(const std::wstring& imageName,
                                                        bool isServer) {
  const std::optional<ServerImage> where = tarn::image::parseServerImage(imageName);
  if (!where) return nullptr;
  auto manager = std::make_unique<TarnClientManager>();
  manager->setIsServe(isServer);
  manager->setPort(text(where->port));
  manager->setServeIp(text(where->address));
  manager->selectImg(text(where->image));
  return manager;
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

/// In the order of the list, up to the one at which the drawing ends.
std::vector<CCadImage::ServerView> CCadImage::planServerImages(const CDocData& record, bool isPlot,
                                                               const ViewState& view) const {
  std::vector<TarnClientManager*> clients;
  std::vector<ServerView> views;
  for (const CDocData::Image& image : record.images()) {
    TarnClientManager* client = image.isDisplayed ? clientOf(image.path) : nullptr;
    if (!client) continue;
    clients.push_back(client);
    views.push_back({image.path, client, {}, std::nullopt, false});
  }
  TarnClientManager::makeReady(clients);
  std::vector<ServerView> planned;
  for (ServerView& shown : views) {
    if (!extentOf(shown.path, shown.extent)) continue;
    planned.push_back(std::move(shown));
    ServerView& last = planned.back();
    if (tarn::image::g_suppressPixels || !tarn::image::isUsable(last.extent)) continue;
    const PixelRect rect = pixelRectOf(view.nominalRect, last.extent);
    if (rect.width <= 0 || rect.height <= 0) continue;
    // Deliberate: images after one of which only a sliver is in view are not drawn.
    if (rect.width < kLeastPixels || rect.height < kLeastPixels) break;
    last.request = planServerRequest(view, last.extent, rect);
    last.isTooLarge = isPlot && last.request && last.request->coarserBy < 1;
    if (last.isTooLarge)
      last.request = planServerRequest(tarn::image::coarserView(view, last.request->coarserBy),
                                       last.extent, rect);
  }
  return planned;
}

/// The requests of all images go out together, before the first is drawn.
void CCadImage::drawServerImages(const CDocData& record, AcGiWorldDraw* worldDraw,
                                 const ViewState& view) const {
  const AcGiContext* context = worldDraw->context();
  const auto views = planServerImages(record, context && context->isPlotGeneration(), view);
  const auto announce = [](const ServerView& shown) {
    const PixelRequest& r = *shown.request;
    shown.client->announceWindow(r.windowX, r.windowY, r.cellX, r.cellY, r.columns, r.rows);
  };
  std::vector<TarnClientManager*> clients;
  for (const ServerView& shown : views) {
    if (!shown.request) continue;
    announce(shown);
    clients.push_back(shown.client);
  }
  TarnClientManager::fetchAnnounced(clients);
  for (const ServerView& shown : views) {
    const ImageExtent& extent = shown.extent;
    DrawImageWrapPoints(worldDraw, extent.top, extent.left, extent.right, extent.bottom);
    if (shown.isTooLarge) printMessage(L"\n%1选择范围过大！", shown.path);
    const unsigned char* pixels = nullptr;
    if (shown.request) {
      const PixelRequest& r = *shown.request;
      if (shown.client->updateImage(r.rect.left, r.rect.top, r.columns, r.rows, r.cellX, r.cellY,
                                    nullptr))
        pixels = shown.client->getMaybeImgData();
      if (pixels) drawPixels(shown.path, r, worldDraw, pixels);
    }
    keepShown(shown.path, extent, shown.request, worldDraw, pixels);
  }
}
