#include "_image/imagetip.h"

#include <charconv>
#include <cmath>

#include "_image/paneltext.h"
#include "base/path.h"
#include "base/text.h"
#include "imageclient/tarnclientmanager.h"

namespace tarn::image {
namespace {

/// Digits enough for millimetres of coordinates; what a division leaves behind them helps nobody.
std::wstring number(double value) {
  constexpr int kDigits = 11;
  char text[40];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits).ptr;
  return {text, end};
}

std::vector<std::wstring> placeLines(int width, int height, const double* place) {
  return {panelText(L"大小：", L"Size: ") + std::to_wstring(width) + L" × " +
              std::to_wstring(height) + panelText(L" 像素", L" pixels"),
          panelText(L"像素大小：", L"Pixel size: ") + number(std::fabs(place[0])) + L" × " +
              number(std::fabs(place[3])),
          panelText(L"左上角：", L"Upper left: ") + number(place[4]) + L", " + number(place[5])};
}

std::wstring coordinateSystemText(IImageDivision& source) {
  int code = -1;
  source.coordinateSystem(code);
  if (code < 0) return panelText(L"无", L"none");
  return code == 0 ? panelText(L"有（无编号）", L"one without a number")
                   : L"EPSG:" + std::to_wstring(code);
}

}  // namespace

std::vector<std::wstring> describeImage(const std::wstring& path, IImageDivision& source) {
  std::vector<std::wstring> lines =
      placeLines(source.width(), source.height(), source.geoTransform());
  lines.push_back(panelText(L"坐标系：", L"Coordinate system: ") + coordinateSystemText(source));
  if (const int bands = source.bandCount())
    lines.push_back(panelText(L"波段：", L"Bands: ") + std::to_wstring(bands));
  const bool hasPyramid = source.hasPyramid(folderOf(toUtf8(path)).c_str());
  lines.push_back(hasPyramid ? panelText(L"金字塔：有", L"Pyramid: yes")
                             : panelText(L"金字塔：无", L"Pyramid: no"));
  for (const kel::DString& note : source.notes())
    lines.push_back(panelText(L"注意：", L"Note: ") + toWide(note.str()));
  return lines;
}

std::vector<std::wstring> describeServerImage(TarnClientManager& client) {
  std::vector<std::wstring> lines;
  if (client.imgWei() > 0) {
    lines = placeLines(client.imgWei(), client.imgHei(), client.getTfwData());
  }
  const std::string reason = client.error().str();
  if (!reason.empty()) lines.push_back(panelText(L"注意：", L"Note: ") + toWide(reason));
  return lines;
}

}  // namespace tarn::image
