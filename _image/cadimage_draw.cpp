// Drawing: a marker and the pixels of every image that is shown.
#include <memory>
#include <optional>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/cadimage_fade.h"
#include "_image/cadimage_pixels.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "_image/updateimagethread.h"
#include "_image/view/pixelconvert.h"
#include "_image/view/plotvalues.h"
#include "acgi.h"
#include "commoncode/cadutil/message.h"
#include "dbapserv.h"

using tarn::image::ImageExtent;
using tarn::image::PixelBuffer;
using tarn::image::PixelRequest;
using tarn::image::ViewState;

namespace {

/// Drawing units between an image's border and its marker.
constexpr double kMarkerInset = 100.0;

}  // namespace

Adesk::Boolean CCadImage::subWorldDraw(AcGiWorldDraw* worldDraw) {
  assertReadEnabled();
  AcGiContext* context = worldDraw->context();
  if (context && context->isPlotGeneration()) return subWorldDrawPlot(worldDraw);
  const ViewState view = currentView();
  if (m_fade && m_fade->takesKept(view, !tarn::image::g_suppressPixels)) {
    drawKept(worldDraw);
  } else {
    drawShownImages(worldDraw, view);
  }
  return true;
}

bool CCadImage::subWorldDrawPlot(AcGiWorldDraw* worldDraw) {
  if (const std::optional<ViewState> view = plottedView()) drawShownImages(worldDraw, *view);
  return true;
}

/// In the order of the document's list, local images first.
void CCadImage::drawShownImages(AcGiWorldDraw* worldDraw, const ViewState& view) const {
  const AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
  const CDocData* record = g_dataMap ? g_dataMap->ofDatabase(database) : nullptr;
  if (!record) return;
  for (const ShownImage& shown : shownImages(*record)) drawLocalImage(shown, worldDraw, view);
  if (!m_mapImageClient.empty()) drawServerImages(*record, worldDraw, view);
}

const std::vector<CCadImage::ShownImage>& CCadImage::shownImages(const CDocData& record) const {
  if (m_shownRevision == record.listRevision()) return m_shownImages;
  m_shownImages.clear();
  for (const CDocData::Image& image : record.images()) {
    const auto local = image.isDisplayed ? m_localImages.find(image.path) : m_localImages.end();
    ImageExtent extent;
    if (local != m_localImages.end() && extentOf(image.path, extent))
      m_shownImages.push_back({&image.path, local->second.source->get(), extent});
  }
  m_shownRevision = record.listRevision();
  return m_shownImages;
}

void CCadImage::drawLocalImage(const ShownImage& shown, AcGiWorldDraw* worldDraw,
                               const ViewState& view) const {
  const ImageExtent& extent = shown.extent;
  DrawImageWrapPoints(worldDraw, extent.top, extent.left, extent.right, extent.bottom);
  if (tarn::image::g_suppressPixels) return;

  std::optional<PixelRequest> request = tarn::image::planPixelRequest(view, extent);
  if (!request) return keepShown(*shown.path, extent, request, worldDraw, nullptr);
  const AcGiContext* context = worldDraw->context();
  if (context && context->isPlotGeneration() && request->coarserBy < 1) {
    tarn::cad::printMessage(L"\n%1选择范围过大！", *shown.path);
    request =
        tarn::image::planPixelRequest(tarn::image::coarserView(view, request->coarserBy), extent);
    if (!request) return;
  }
  IImageDivision& source = *shown.source;
  const PixelBuffer pixels = tarn::image::readPixels(source, *request, view.clarity);
  if (!pixels) return;
  drawPixels(*shown.path, *request, worldDraw, pixels.get());
  keepShown(*shown.path, extent, request, worldDraw, pixels.get());
  UpdateImageThread::request.buffer = nullptr;
  UpdateImageThread::request.source.reset();
}

// Deliberate: one open Z of four points, inset by 100 drawing units also where the image is too
// small for that.
void CCadImage::DrawImageWrapPoints(AcGiWorldDraw* worldDraw, double top, double left, double right,
                                    double bottom) const {
  const double m = kMarkerInset;
  const AcGePoint3d points[] = {
      AcGePoint3d(left + m, top - m, 0), AcGePoint3d(right - m, top - m, 0),
      AcGePoint3d(left + m, bottom + m, 0), AcGePoint3d(right - m, bottom + m, 0)};
  worldDraw->geometry().polyline(4, points, nullptr, 0);
}

void CCadImage::DrawImage(int width, int height, int limitWidth, int limitHeight, double u,
                          double v, const AcGePoint3d& origin, AcGiWorldDraw* worldDraw,
                          const unsigned char* pixels) const {
  if (tarn::image::g_suppressPixels) return;
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  const std::unique_ptr<AcGiPixelBGRA32[]> converted(new AcGiPixelBGRA32[count]);
  tarn::image::convertRgbToBgraWithin(pixels, width, height, limitWidth, limitHeight,
                                      reinterpret_cast<uint8_t*>(converted.get()));
  const AcGiImageBGRA32 image(static_cast<Adesk::UInt32>(width), static_cast<Adesk::UInt32>(height),
                              converted.get(), false);
  worldDraw->geometry().image(image, origin, AcGeVector3d(u, 0, 0), AcGeVector3d(0, v, 0),
                              AcGiGeometry::kTransparency8Bit);
}

void CCadImage::subViewportDraw(AcGiViewportDraw* /*viewportDraw*/) {
  assertReadEnabled();
}

Adesk::UInt32 CCadImage::subSetAttributes(AcGiDrawableTraits* traits) {
  assertReadEnabled();
  return AcDbEntity::subSetAttributes(traits);
}
