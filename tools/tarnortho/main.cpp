// tarnortho: writes a made-up orthophoto for demonstrations, tests and timings.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/parallel.h"
#include "base/program.h"
#include "base/text.h"
#include "tools/tarnortho/scene.h"
#include "tools/tarnortho/tiffwriter.h"

namespace {

using tarn::Status;

constexpr uint32_t kBandRows = 256;
constexpr char kUsage[] =
    "usage: tarnortho OUT.tif [WIDTH HEIGHT [PIXEL_SIZE]]\n"
    "Writes an uncompressed RGB GeoTIFF of a made-up countryside (fields, roads, roofs, water).\n"
    "WIDTH and HEIGHT in pixels (8000 6000), PIXEL_SIZE in metres (0.1).\n"
    "The upper-left corner lies at easting 40500000, northing 3512600 (EPSG:4528).\n";

uint8_t toByte(float value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 3.0F, 252.0F)));
}

/// One row of pixels, averaged over 2 x 2 places a pixel so that thin lines do not break up.
void paintRow(uint32_t row, uint32_t width, double top, double pixel, uint8_t* out) {
  using tarn::ortho::hashNoise;
  for (uint32_t column = 0; column < width; ++column) {
    tarn::ortho::Rgb sum;
    for (const double dy : {0.25, 0.75}) {
      const double dx = dy == 0.25 ? 0.25 : 0.75;
      const tarn::ortho::Rgb c =
          tarn::ortho::sceneColor((column + dx) * pixel, top - (row + dy) * pixel);
      sum.r += c.r / 2;
      sum.g += c.g / 2;
      sum.b += c.b / 2;
    }
    const float noise = 7 * (hashNoise(static_cast<int>(column), static_cast<int>(row), 7) - 0.5F);
    *out++ = toByte(sum.r + noise);
    *out++ = toByte(sum.g + noise);
    *out++ = toByte(sum.b + noise);
  }
}

Status paint(const std::string& path, uint32_t width, uint32_t height, double pixel) {
  const tarn::ortho::GeoReference geo{40500000.0, 3512600.0, pixel, 4528};
  tarn::ortho::TiffWriter writer;
  Status status = writer.open(path, width, height, geo);
  const size_t rowBytes = size_t{width} * 3;
  std::vector<uint8_t> band(rowBytes * kBandRows);
  for (uint32_t first = 0; status && first < height; first += kBandRows) {
    const uint32_t rows = std::min(kBandRows, height - first);
    tarn::parallelFor(rows, [&](size_t r) {
      paintRow(first + static_cast<uint32_t>(r), width, 600.0, pixel, &band[r * rowBytes]);
    });
    status = writer.writeRows(first, {band.data(), rows * rowBytes});
  }
  return status ? writer.finish() : status;
}

}  // namespace

int main(int count, char** rawWords) {
  tarn::prepareStandardStreams();
  const std::vector<std::string> words = tarn::programArguments(count, rawWords);
  if (words.size() == 1 && words[0] == "--help") {
    std::fputs(kUsage, stdout);
    return 0;
  }
  int width = 8000;
  int height = 6000;
  double pixel = 0.1;
  const size_t given = words.size();
  const bool understood =
      (given == 1 || given == 3 || given == 4) && words[0][0] != '-' &&
      (given < 3 || (tarn::parseInt(words[1], width) && tarn::parseInt(words[2], height))) &&
      (given < 4 || tarn::parseDouble(words[3], pixel));
  if (!understood || width <= 0 || height <= 0 || pixel <= 0) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  // Painted beside its place and renamed, so a picture that is there is a whole one.
  const std::string& path = words[0];
  const std::string unfinished = path + ".part";
  Status status =
      paint(unfinished, static_cast<uint32_t>(width), static_cast<uint32_t>(height), pixel);
  if (status) status = tarn::replaceFile(unfinished, path);
  if (!status) {
    std::fprintf(stderr, "tarnortho: %s\n", status.message().c_str());
    if (const Status removed = tarn::removeAll(unfinished); !removed) {
      std::fprintf(stderr, "tarnortho: %s\n", removed.message().c_str());
    }
    return 1;
  }
  return 0;
}
