// Images as an office has them on its server, made by the product's own converter.
#pragma once

#include <QFile>
#include <cmath>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {

/// Fields, roads and grain: compresses about as an orthophoto does.
inline Raster groundPicture(int width, int height, int seed = 0) {
  return makeRaster(width, height, 500000, 3400000, 0.5, [seed](int x, int y, uint8_t* rgb) {
    const double wave = std::sin((x + seed * 37) * 0.013) + std::cos(y * 0.017);
    const unsigned grain =
        (static_cast<unsigned>(x) * 2654435761U ^ static_cast<unsigned>(y + seed) * 40503U) >> 20 &
        15;
    const bool road = (x + 2 * y) % 397 < 9;
    rgb[0] = static_cast<uint8_t>(road ? 200 : 90 + 30 * wave + grain);
    rgb[1] = static_cast<uint8_t>(road ? 195 : 120 + 25 * wave + grain);
    rgb[2] = static_cast<uint8_t>(road ? 190 : 70 + 20 * wave + grain);
  });
}

/// Converts an image of `scratch` into folder/NAME.tif, NAME the image's; false when it fails.
inline bool convertToCog(const std::string& image, const std::string& folder,
                         const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments = {"--format",  "cog",   "--existing",
                                        "overwrite", "--out", folder};
  arguments.insert(arguments.end(), more.begin(), more.end());
  arguments.push_back(image);
  return runProgram("tarnconvert", arguments).exitCode == 0;
}

}  // namespace tarn::test
