#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>

#include "acgi.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbimage.h"
#include "host/database/fieldfiling.h"
#include "host/database/imagewindow.h"
#include "host/database/textmeasure.h"
#include "tarnimagepixels.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImage, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        IMAGE, ISM)

template <typename Filing>
void eachField(AcDbRasterImage::Values& values, Filing& filing) {
  filing.all(values.fileName, values.origin, values.u, values.v, values.width, values.height,
             values.shown, values.clip, values.brightness, values.contrast, values.fade);
}

namespace {

TarnImagePixels*& pixelsOfHost() {
  static TarnImagePixels* pixels = nullptr;
  return pixels;
}

constexpr int kMostPixels = 1 << 26;
constexpr size_t kMostFolders = 4;

/// The ends of a path, the longest first: "a/b/c", "b/c", "c". Paths of other systems are taken
/// apart the same way.
std::vector<std::string> endsOf(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  std::vector<std::string> ends;
  size_t at = path.size();
  while (ends.size() < kMostFolders && at != std::string::npos && at > 0) {
    at = path.rfind('/', at - 1);
    ends.insert(ends.begin(), at == std::string::npos ? path : path.substr(at + 1));
  }
  return ends;
}

/// What becomes of a value by brightness and contrast: both stretch it about the middle grey.
std::array<unsigned char, 256> tonesOf(const AcDbRasterImage::Values& values) {
  constexpr double kMiddle = 127.5;
  const double contrast = std::clamp<int>(values.contrast, 0, 100) / 50.0;
  const double lift = (std::clamp<int>(values.brightness, 0, 100) - 50) / 50.0 * 255;
  std::array<unsigned char, 256> tones{};
  for (size_t i = 0; i < tones.size(); ++i) {
    const double tone = (static_cast<double>(i) - kMiddle) * contrast + kMiddle + lift;
    tones[i] = static_cast<unsigned char>(std::lround(std::clamp(tone, 0.0, 255.0)));
  }
  return tones;
}

bool isFile(const std::string& path) {
  return tarn::fileKind(path) == tarn::FileKind::kRegular;
}

}  // namespace

void tarnHostSetImagePixels(TarnImagePixels* pixels) {
  pixelsOfHost() = pixels;
}

TarnImagePixels* tarnHostImagePixels() {
  return pixelsOfHost();
}

const AcDbRasterImage::Values& AcDbRasterImage::values() const {
  assertReadEnabled();
  return values_;
}

Acad::ErrorStatus AcDbRasterImage::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(values_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbRasterImage::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  read(values_);
  return filer->filerStatus();
}

std::string AcDbRasterImage::foundFile() const {
  assertReadEnabled();
  std::string stored = tarn::toUtf8(values_.fileName);
  const ACHAR* drawing = L"";
  if (database() != nullptr) database()->getFilename(drawing);
  const std::string folder = tarn::folderOf(tarn::toUtf8(drawing));
  if (stored.empty()) return {};
  if (std::filesystem::u8path(stored).is_absolute() && isFile(stored)) return stored;
  for (const std::string& end : endsOf(stored)) {
    std::string path = folder.empty() ? end : tarn::joinPath(folder, end);
    if (isFile(path)) return path;
  }
  return {};
}

AcGePoint3d AcDbRasterImage::worldOf(double x, double y) const {
  return values_.origin + values_.u * x + values_.v * (values_.height - y);
}

std::vector<AcGePoint3d> AcDbRasterImage::frame() const {
  std::vector<AcGePoint3d> points;
  for (const AcGePoint3d& p : tarn::host::shownRim(values_)) points.push_back(worldOf(p.x, p.y));
  points.push_back(points.front());
  return points;
}

Adesk::Int16 AcDbRasterImage::frameMode() const {
  return database() != nullptr ? database()->imageFrame() : Adesk::Int16{1};
}

bool AcDbRasterImage::isFrameShown(AcGiWorldDraw& draw) const {
  const Adesk::Int16 mode = frameMode();
  const bool plots = draw.context() != nullptr && draw.context()->isPlotGeneration();
  return mode == 1 || (mode == 2 && !plots);
}

bool AcDbRasterImage::drawPixels(AcGiWorldDraw& draw, const std::string& path) const {
  TarnImagePixels* source = tarnHostImagePixels();
  TarnView view;
  int width = 0;
  int height = 0;
  if (source == nullptr || !tarnHostDrawnView(view) || !source->size(path, width, height)) {
    return false;
  }
  const tarn::host::ImageWindow window = tarn::host::windowOf(values_, view);
  if (window.width == 0) return true;
  if (window.width > kMostPixels / window.height) return false;
  const size_t count = static_cast<size_t>(window.width) * static_cast<size_t>(window.height);
  std::vector<unsigned char> rgb(count * 3);
  // The drawing may have another idea of the size than the file.
  const double stretch = width / values_.width;
  const double reduction = std::max(1.0, window.reduction * stretch);
  if (!source->read(path, static_cast<int>(window.x * stretch),
                    static_cast<int>(window.y * height / values_.height), window.width,
                    window.height, reduction, rgb.data())) {
    return false;
  }
  const std::vector<AcGePoint3d> rim = tarn::host::shownRim(values_);
  const std::array<unsigned char, 256> tone = tonesOf(values_);
  const int alpha = 255 * (100 - std::clamp<int>(values_.fade, 0, 100)) / 100;
  std::vector<AcGiPixelBGRA32> pixels(count);
  for (size_t i = 0; i < count; ++i) {
    const auto column = static_cast<double>(i % static_cast<size_t>(window.width));
    const size_t rowNumber = i / static_cast<size_t>(window.width);
    const auto row = static_cast<double>(rowNumber);
    const double x = window.x + (column + 0.5) * window.reduction;
    const double y = window.y + (row + 0.5) * window.reduction;
    const bool shown = tarn::host::isShownAt(rim, x, y);
    pixels[i].setBGRA(tone[rgb[3 * i + 2]], tone[rgb[3 * i + 1]], tone[rgb[3 * i]],
                      static_cast<Adesk::UInt8>(shown ? alpha : 0));
  }
  const double bottom = window.y + window.height * window.reduction;
  const AcGiImageBGRA32 image(static_cast<Adesk::UInt32>(window.width),
                              static_cast<Adesk::UInt32>(window.height), pixels.data(), false);
  draw.geometry().image(image, worldOf(window.x, bottom),
                        values_.u * (window.width * window.reduction),
                        values_.v * (window.height * window.reduction));
  return true;
}

Adesk::Boolean AcDbRasterImage::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const std::vector<AcGePoint3d> rim = frame();
  const std::string path = values_.shown ? foundFile() : std::string();
  const bool isBox = draw->regenType() == kAcGiForExplode;  // only the extents are wanted
  const bool seen = !isBox && !path.empty() && drawPixels(*draw, path);
  if (!seen || isFrameShown(*draw)) {
    draw->geometry().polyline(static_cast<Adesk::UInt32>(rim.size()), rim.data());
  }
  if (seen || isBox || !values_.shown) return Adesk::kTrue;
  const std::vector<std::string> ends = endsOf(tarn::toUtf8(values_.fileName));
  const std::wstring name = tarn::toWide(ends.empty() ? "" : ends.back());
  const double wide = values_.u.length() * values_.width;
  const double room = 0.9 * wide / std::max(1.0, tarn::host::textWidth(name, {}));
  const double size = std::min(room, values_.v.length() * values_.height / 5);
  draw->geometry().text(worldOf(values_.width * 0.05, values_.height * 0.95),
                        values_.u.crossProduct(values_.v).normal(), values_.u, size, 1, 0,
                        name.c_str());
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbRasterImage::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  AcDbExtents box;
  for (const AcGePoint3d& point : frame()) box.addPoint(point);
  extents = box;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                     const AcGePoint3d&, const AcGePoint3d&,
                                                     const AcGeMatrix3d&,
                                                     AcGePoint3dArray& snapPoints,
                                                     AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeIns) snapPoints.append(values_.origin);
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const AcGePoint3d& point : frame()) snapPoints.append(point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                    AcDbIntArray&) const {
  assertReadEnabled();
  const double w = values_.width;
  const double h = values_.height;
  for (const auto& [x, y] : {std::pair{0.0, h}, {w, h}, {w, 0.0}, {0.0, 0.0}}) {
    gripPoints.append(worldOf(x, y));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  values_.origin.transformBy(transform);
  values_.u = transform * values_.u;
  values_.v = transform * values_.v;
  recordGraphicsModified();
  return Acad::eOk;
}
