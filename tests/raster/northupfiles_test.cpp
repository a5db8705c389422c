#include <gdal_priv.h>
#include <gtest/gtest.h>

#include "base/file.h"
#include "base/path.h"
#include "tests/raster/byrule.h"
#include "tests/raster/warpedbygdal.h"

namespace tarn::raster {
namespace {

constexpr uint8_t kNothing = 200;

bool isKey(const uint8_t* p, int channels) {
  int low = 255, high = 0;
  for (int c = 0; c < channels; ++c)
    low = std::min<int>(low, p[c]), high = std::max<int>(high, p[c]);
  return high == 0 || low == 255;
}

/// The file's picture by the rule with a fourth band that says where there is nothing, placed by
/// what GDAL reads when it looks beside the file first.
void writePlacedCopy(const std::string& path, const std::string& copy, const Scale& scale) {
  const Picture rule = pixelsByRule(path, scale);
  Picture picture{rule.width, rule.height, 4, {}};
  for (size_t i = 0; i < rule.pixels.size(); i += size_t(rule.channels)) {
    const uint8_t* p = &rule.pixels[i];
    for (int c = 0; c < 3; ++c) picture.pixels.push_back(p[rule.channels == 1 ? 0 : c]);
    picture.pixels.push_back(isKey(p, rule.channels) ? kNothing : 0);
  }
  writePicture(copy, picture, {"GTiff", {}, false, false});
  const char* options[] = {"GEOREF_SOURCES=PAM,WORLDFILE,INTERNAL", nullptr};
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER, nullptr, options, nullptr);
  ASSERT_NE(dataset, nullptr);
  double t[6];
  if (dataset->GetGeoTransform(t) == CE_None) {
    placeByTransform(copy, {t[0], t[1], t[2], t[3], t[4], t[5]});
  } else {
    std::vector<ControlPoint> points;
    for (int i = 0; i < dataset->GetGCPCount(); ++i) {
      const GDAL_GCP& p = dataset->GetGCPs()[i];
      points.push_back({p.dfGCPPixel, p.dfGCPLine, p.dfGCPX, p.dfGCPY});
    }
    placeByPoints(copy, points);
  }
  GDALClose(dataset);
}

enum class Compare {
  kPixels,
  /// With GDAL held to the first order, which the points fit.
  kPixelsAffine,
  /// Too large for every pixel, or nothing that GDAL could warp.
  kNotesOnly
};

struct RealFile {
  const char* path;
  /// Part of its notes but for the one on scaling; null when there are no others.
  const char* note;
  Compare compare;
};

// What surveyors' programs and libraries wrote: rotated, sheared, south-up, placed by points, with
// two places that contradict each other.
const RealFile kRealFiles[] = {
    {"MapServer/MapServer/msautotest/gdal/data/grey_rot.tif", "rotated by 11.3 degrees: shown",
     Compare::kPixels},
    {"USDAForestService/gdalraster/inst/extdata/south-up.tif", nullptr, Compare::kPixels},
    {"cogeotiff/rio-tiler/tests/fixtures/inverted_lat.tif", "nothing but nodata", Compare::kPixels},
    {"cogeotiff/rio-tiler/tests/fixtures/cog_gcps.tif", "210 control points (largest residual 0.9",
     Compare::kPixels},
    {"georust/gdal/fixtures/gcp.tif", "210 control points (largest residual 0.079",
     Compare::kPixelsAffine},
    {"unitave/gdal/autotest/gcore/data/geomatrix.tif", "rotated by 73.3 degrees: shown",
     Compare::kPixels},
    {"unitave/gdal/autotest/gcore/data/byte_inconsistent_georef.tif",
     "aux.xml and in byte_inconsistent_georef.tfw differs by 100.3 pixels", Compare::kPixels},
    {"unitave/gdal/autotest/gcore/data/byte_nogeoref.tif",
     "aux.xml and in byte_nogeoref.tfw differs by 100.3 pixels", Compare::kPixels},
    {"unitave/gdal/autotest/gcore/data/byte_gcp_pixelispoint.tif", "4 control points",
     Compare::kPixels},
    {"unitave/gdal/autotest/gcore/data/byte_gcp.tif", "its only control point does not say",
     Compare::kNotesOnly},
    {"unitave/gdal/autotest/gcore/data/arcgis93_geodataxform_gcp.tif",
     "16 control points (largest residual 4.0 pixels): shown resampled", Compare::kNotesOnly},
    {"unitave/gdal/autotest/gcore/data/byte_point.tif", nullptr, Compare::kPixels},
    {"unitave/gdal/autotest/gcore/data/byte_rpc.tif", "has no georeferencing", Compare::kNotesOnly},
    {"MapServer/MapServer/msautotest/config/data/toronto.tif", nullptr, Compare::kNotesOnly},
    {"MapServer/MapServer/msautotest/wxs/data/land_shallow_topo_2048.tif", nullptr,
     Compare::kNotesOnly},
};

/// GDAL's picture has the fourth band of writePlacedCopy.
Difference compareFiles(const Picture& ours, const Picture& gdals) {
  Difference result;
  for (int y = 0; y < ours.height; ++y) {
    for (int x = 0; x < ours.width; ++x) {
      const uint8_t *a = ours.at(x, y), *b = gdals.at(x, y);
      const bool nothing = b[3] == kNothing || b[0] + b[1] + b[2] == 0;
      // Beside nothing GDAL mixes it in; the rims have a test of their own.
      if (!nothing && b[3] != 0) continue;
      ++result.compared;
      if (nothing != isKey(a, 3)) {
        ++result.outline;
      } else {
        for (int c = 0; c < 3 && !nothing; ++c)
          result.most = std::max(result.most, std::abs(a[c] - b[c]));
      }
    }
  }
  return result;
}

TEST(NorthUpFiles, LieWhereGdalsWarpPutsThem) {
  if (fileKind(TARN_DATA_DIR) != FileKind::kFolder)
    GTEST_SKIP() << "no real files in " << TARN_DATA_DIR;
  const Scratch scratch;
  for (const RealFile& file : kRealFiles) {
    SCOPED_TRACE(file.path);
    const std::string path = joinPath(TARN_DATA_DIR, file.path);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    std::string notes;
    for (const std::string& note : image->notes())
      if (note.find("scaled") == std::string::npos) notes += note + "\n";
    if (file.note) {
      EXPECT_NE(notes.find(file.note), std::string::npos) << notes;
    } else {
      EXPECT_EQ(notes, "");
    }
    if (file.compare == Compare::kNotesOnly) continue;
    const std::string copy = scratch / "copy.tif";
    const std::optional<Scale> scale = scaleSaid(*image);
    writePlacedCopy(path, copy, scale.value_or(Scale{}));
    std::vector<std::string> order;
    if (file.compare == Compare::kPixelsAffine) order = {"-order", "1"};
    const Picture gdals = warpedByGdal(copy, *image, order);
    ASSERT_EQ(gdals.channels, 4);
    const Difference difference = compareFiles(readAll(*image), gdals);
    EXPECT_LE(difference.most, scale ? 2 : 1);
    EXPECT_EQ(difference.outline, 0) << "of " << difference.compared;
    EXPECT_GT(difference.compared, image->width() * image->height() / 4);
  }
}

}  // namespace
}  // namespace tarn::raster
