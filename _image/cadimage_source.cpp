// How a source is opened and checked, and how one view's pixels are asked of it.
#include <cmath>
#include <vector>

#include "_image/binding/progressscope.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/cadimage_pixels.h"
#include "_image/moduleglobals.h"
#include "_image/settarnprogress.h"
#include "_image/updateimagethread.h"
#include "afxwin.h"
#include "base/path.h"
#include "base/text.h"
#include "commoncode/cadutil/message.h"
#include "inc/iconfigmanager.h"

using tarn::cad::printMessage;

namespace {

constexpr double kTileSize = 256.0;
/// Above this reduction the source's coarse read answers.
constexpr double kCoarseReduction = 300.0;
/// The buffer of a view has room for four bytes a pixel though three are used.
constexpr size_t kBufferBytesPerPixel = 4;
constexpr size_t kFileNameCharacters = 10000;

bool initOrReport(IImageDivision& source, const std::string& path, const std::string& folder) {
  if (source.init(path.c_str(), folder.c_str(), false)) return true;
  printMessage(L"\nimagedivision init fail!");
  source.close();
  return false;
}

/// False when the configuration says that no pyramids are made.
bool pyramidsWanted() {
  const auto config = tarn::image::makeObject<IConfigManager>(tarn::image::kDivisionSettingSite);
  if (config.isNull()) return true;
  return !tarn::equalsIgnoreCase(config->getValue("CreateImgx").toString().str(), "false");
}

void buildPyramid(IImageDivision& source, const std::string& folder) {
  setTarnProgress progress;
  const tarn::image::ProgressScope scope(&progress);
  source.buildPyramid(folder.c_str(), 0, 3, kTileSize, kTileSize, 1, 100);
}

}  // namespace

bool CCadImage::GetimageDivision(Division& division, const std::wstring& path) const {
  if (m_mapImageDivision.count(path) > 0) {
    printMessage(L"\n%1该影像文件已被加载！", path);
    return false;
  }
  const std::string file = tarn::toUtf8(path);
  const std::string folder = tarn::folderOf(file);
  if (division.isNull()) {
    printMessage(L"imagedivision invalid!");
    return false;
  }
  if (file.empty()) printMessage(L"\n图片路径为空！");
  if (folder.empty()) printMessage(L"\n金字塔路径为空！");
  if (!initOrReport(*division.get(), file, folder)) return false;

  if (!pyramidsWanted()) {
    division->setNoPyramid(true);
  } else if (!division->hasPyramid(folder.c_str())) {
    buildPyramid(*division.get(), folder);
  }
  if (file.empty()) {
    printMessage(L"\nstrFile为空！");
    division->close();
    return false;
  }
  // Opened again, so that the source finds the fresh pyramid.
  division->close();
  return initOrReport(*division.get(), file, folder);
}

bool CCadImage::GetImageDataFile(Division& division) {
  CFileDialog dialog(TRUE, L"*.tif", nullptr, OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                     L"tif文件(*.tif)|*.tif|img文件(*.img)|*.img|jpg文件(*.jpg)|*.jpg||");
  std::vector<ACHAR> buffer(kFileNameCharacters);
  dialog.m_ofn.lpstrFile = buffer.data();
  dialog.m_ofn.nMaxFile = static_cast<DWORD>(buffer.size());
  if (dialog.DoModal() != IDOK) return false;
  const std::wstring path = dialog.GetPathName().GetString();
  if (!GetimageDivision(division, path)) return false;
  SetCurrentImage(path);
  return true;
}

bool CCadImage::GetImageData(const Division& division) const {
  return !division.isNull() && division->width() > 0 && division->height() > 0;
}

bool CCadImage::GetImageData(const Division& division, const double* georef, int& width,
                             int& height, double& a, double& e, double& y0, double& x0,
                             double& right, double& bottom) const {
  if (!GetImageData(division)) return false;
  int code = -1;
  division->coordinateSystem(code);
  if (code < 0) {
    width = division->width();
    height = division->height();
    const double* numbers = georef ? georef : division->geoTransform();
    a = numbers[0];
    e = numbers[3];
    x0 = numbers[4];
    y0 = numbers[5];
  } else {
    division->getGeoInfo(width, height, x0, y0, a, e);
  }
  right = width * std::fabs(a) + x0;
  bottom = y0 - height * std::fabs(e);
  return true;
}

bool CCadImage::extentOf(const std::wstring& path, tarn::image::ImageExtent& extent) const {
  const auto found = m_localImages.find(path);
  if (found == m_localImages.end()) {
    return GetImageData(clientOf(path), extent.width, extent.height, extent.pixelWidth,
                        extent.pixelHeight, extent.top, extent.left, extent.right, extent.bottom);
  }
  const auto& [source, georef] = found->second;
  return GetImageData(*source, georef, extent.width, extent.height, extent.pixelWidth,
                      extent.pixelHeight, extent.top, extent.left, extent.right, extent.bottom);
}

void CCadImage::MergeImageChunkData(unsigned char* dest, int destWidth, int /*destHeight*/,
                                    const unsigned char* /*chunk*/, int x, int y, int chunkWidth,
                                    int chunkHeight) const {
  for (int c = 0; c < chunkWidth; ++c) {
    for (int r = 0; r < chunkHeight; ++r) {
      const size_t index = static_cast<size_t>(destWidth) * (y + r) + (x + c);
      unsigned char* pixel = dest + index * kImagePixelDataByteCount;
      pixel[0] = 0xFF;
      pixel[1] = 0x00;
      pixel[2] = 0x00;
    }
  }
}

void CCadImage::GetImageFillBlankPixels(double /*x*/, double /*y*/) const {}

namespace tarn::image {

PixelBuffer readPixels(IImageDivision& source, const PixelRequest& request, int clarity) {
  const size_t cells = static_cast<size_t>(request.columns) * static_cast<size_t>(request.rows);
  PixelBuffer buffer(static_cast<unsigned char*>(std::calloc(cells, kBufferBytesPerPixel)));
  if (!buffer) return buffer;
  const double reductionX = std::fabs(request.reductionX / clarity);
  const double reductionY = std::fabs(request.reductionY / clarity);
  const PixelRect& rect = request.rect;
  source.setOutputMode(0);
  source.retain();
  UpdateImageThread::request = {rect.left,
                                rect.top,
                                request.columns,
                                request.rows,
                                buffer.get(),
                                request.reductionX,
                                kel::Object<IImageDivision>::adopt(&source)};
  source.announceWindow(request.windowX, request.windowY, request.cellX, request.cellY);
  if (request.reductionX > kCoarseReduction || request.reductionY > kCoarseReduction) {
    source.readRegionOverview(rect.left * 1.0, rect.top * 1.0, request.columns, request.rows,
                              std::max(reductionX, reductionY), buffer.get());
  } else {
    source.readRegion(rect.left, rect.top, request.columns, request.rows, reductionX, reductionY,
                      buffer.get());
  }
  return buffer;
}

}  // namespace tarn::image
