#include "_image/cadimage_fade.h"

#include <algorithm>
#include <utility>

#include "_image/cadimage.h"
#include "acgi.h"

namespace tarn::image {
namespace {

constexpr size_t kBytesPerPixel = 3;

bool isSame(const GroundRect& a, const GroundRect& b) {
  return a.minX == b.minX && a.minY == b.minY && a.maxX == b.maxX && a.maxY == b.maxY;
}

bool isSame(const ViewState& a, const ViewState& b) {
  return a.transform == b.transform && isSame(a.fetchRect, b.fetchRect) &&
         a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight && a.clarity == b.clarity;
}

}  // namespace

void ImageFade::change(double opacity) {
  opacity_ = opacity;
  takesNext_ = true;
}

bool ImageFade::takesKept(const ViewState& view, bool isComplete) {
  if (std::exchange(takesNext_, false) && isComplete_ && isComplete && isSame(view, view_))
    return true;
  kept_.clear();
  view_ = view;
  isComplete_ = isComplete;
  return false;
}

void ImageFade::keep(const std::wstring& path, const ImageExtent& extent,
                     const std::optional<PixelRequest>& request, const unsigned char* pixels) {
  kept_.push_back({path, extent, pixels ? request : std::nullopt, {}});
  if (!request || !pixels) return;
  const size_t bytes = static_cast<size_t>(request->columns) * request->rows * kBytesPerPixel;
  kept_.back().pixels.assign(pixels, pixels + bytes);
}

}  // namespace tarn::image

using tarn::image::ImageExtent;
using tarn::image::PixelRequest;

void CCadImage::startFade(const std::wstring& path, double opacity) {
  m_fade = std::make_unique<tarn::image::ImageFade>(path, opacity);
}

void CCadImage::changeFade(double opacity) {
  if (m_fade) m_fade->change(opacity);
}

void CCadImage::endFade() {
  m_fade.reset();
}

void CCadImage::drawKept(AcGiWorldDraw* worldDraw) const {
  for (const tarn::image::ShownPixels& shown : m_fade->kept()) {
    const ImageExtent& extent = shown.extent;
    DrawImageWrapPoints(worldDraw, extent.top, extent.left, extent.right, extent.bottom);
    if (shown.request) drawPixels(shown.path, *shown.request, worldDraw, shown.pixels.data());
  }
}

/// On paper nothing fades.
tarn::image::ImageFade* CCadImage::fadeFor(AcGiWorldDraw* worldDraw) const {
  const AcGiContext* context = worldDraw->context();
  return context && context->isPlotGeneration() ? nullptr : m_fade.get();
}

void CCadImage::keepShown(const std::wstring& path, const ImageExtent& extent,
                          const std::optional<PixelRequest>& request, AcGiWorldDraw* worldDraw,
                          const unsigned char* pixels) const {
  if (auto* fade = fadeFor(worldDraw)) fade->keep(path, extent, request, pixels);
}

void CCadImage::drawPixels(const std::wstring& path, const PixelRequest& request,
                           AcGiWorldDraw* worldDraw, const unsigned char* pixels) const {
  AcGiSubEntityTraits& traits = worldDraw->subEntityTraits();
  const AcCmTransparency usual = traits.transparency();
  const auto* fade = fadeFor(worldDraw);
  const double opacity = fade ? fade->opacityOf(path) : 1;
  if (opacity < 1) {
    traits.setTransparency(
        AcCmTransparency(static_cast<Adesk::UInt8>(usual.alpha() * std::clamp(opacity, 0.0, 1.0))));
  }
  DrawImage(request.columns, request.rows, request.columns + 1, request.rows + 1, request.spanU,
            request.spanV, AcGePoint3d(request.originX, request.originY, 0), worldDraw, pixels);
  if (opacity < 1) traits.setTransparency(usual);
}
