// Every raster of the archive of real files, by name: shown rightly, or refused for a reason.
#include <cpl_error.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/raster/rasterimage.h"
#include "tests/archive/archive_table.h"
#include "tests/archive/reference.h"
#include "tests/raster/testimages.h"

namespace tarn::test {
namespace {

using raster::RasterImage;
using raster::Window;

constexpr int kMostSide = 1200;
constexpr int64_t kMostWarped = 4 << 20;

std::string joined(const std::vector<std::string>& notes) {
  std::string all;
  for (const std::string& note : notes) all += all.empty() ? note : "; " + note;
  return all;
}

/// The numbers of the note about scaling.
Scale scaleIn(const std::string& notes) {
  Scale scale{0, 1};
  const std::string single = "holds one value only (";
  if (const size_t only = notes.find(single); only != std::string::npos) {
    scale.low = scale.high = std::strtod(notes.c_str() + only + single.size(), nullptr);
    return scale;
  }
  const size_t at = notes.find("scaled from");
  const size_t open = notes.find('(', at), middle = notes.find(" to ", open);
  if (at == std::string::npos || middle == std::string::npos) return scale;
  scale.low = std::strtod(notes.c_str() + open + 1, nullptr);
  scale.high = std::strtod(notes.c_str() + middle + 4, nullptr);
  return scale;
}

struct Difference {
  double wrong = 0;    // share of content that is more than the tolerance off
  double missing = 0;  // share of pixels where content and nothing are exchanged
};

bool isNothing(const uint8_t* rgb) {
  return (rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0) ||
         (rgb[0] == 255 && rgb[1] == 255 && rgb[2] == 255);
}

Difference compare(const Colours& expected, const std::vector<uint8_t>& ours, double tolerance) {
  Difference result;
  double content = 0;
  for (size_t i = 0; i < expected.content.size(); ++i) {
    const float* e = &expected.rgb[3 * i];
    const uint8_t* o = &ours[3 * i];
    const bool black = e[0] < 1.5F && e[1] < 1.5F && e[2] < 1.5F;
    const bool white = e[0] > 253.5F && e[1] > 253.5F && e[2] > 253.5F;
    if (!expected.content[i]) {
      if (!isNothing(o)) result.missing += 1;
      continue;
    }
    content += 1;
    if (isNothing(o) && (black || white)) continue;
    if (isNothing(o)) result.missing += 1;
    double most = 0;
    for (int c = 0; c < 3; ++c) most = std::max<double>(most, std::fabs(e[c] - o[c]));
    if (most > tolerance) result.wrong += 1;
  }
  result.wrong /= std::max(content, 1.0);
  result.missing /= std::max<double>(1, static_cast<double>(expected.content.size()));
  return result;
}

std::vector<uint8_t> readOurs(const RasterImage& image, const Piece& piece) {
  std::vector<uint8_t> out(static_cast<size_t>(piece.width) * piece.height * 3, 99);
  raster::ReadCounts counts;
  const Window window{double(piece.x), double(piece.y), 1, 1, piece.width, piece.height};
  const Status done = image.read(window, false, out.data(), counts);
  EXPECT_TRUE(done) << done.message();
  return out;
}

std::array<double, 6> sixOf(const RasterImage& image) {
  const raster::GeoTransform& t = image.geoTransform();
  return {t.x0, t.a, t.b, t.y0, t.d, t.e};
}

bool sameTransform(const std::array<double, 6>& a, const std::array<double, 6>& b) {
  for (int i = 0; i < 6; ++i) {
    if (std::fabs(a[i] - b[i]) > 1e-9 * std::max(1.0, std::fabs(a[i]))) return false;
  }
  return true;
}

void checkNorthUp(const RasterImage& image, const Reference& reference, const Scale& scale) {
  const int width = std::min(kMostSide, image.width()),
            height = std::min(kMostSide, image.height());
  const Piece piece{(image.width() - width) / 2, (image.height() - height) / 2, width, height};
  const auto expected = reference.read(piece, scale);
  ASSERT_TRUE(expected) << "GDAL cannot read it";
  const Difference off = compare(*expected, readOurs(image, piece), 2);
  EXPECT_EQ(off.wrong, 0);
  EXPECT_EQ(off.missing, 0);
}

void checkWarped(const RasterImage& image, const Reference& reference, const Scale& scale) {
  if (int64_t{image.width()} * image.height() > kMostWarped) return;
  const auto expected = reference.warp(sixOf(image), image.width(), image.height(), scale);
  ASSERT_TRUE(expected) << "GDAL cannot warp it";
  const auto ours = readOurs(image, {0, 0, image.width(), image.height()});
  // Half a level is what weights of 128ths and rounding take at a steep edge.
  const Difference off = compare(*expected, ours, 3.5);
  // Control points are fitted to a tenth of a pixel, which shows at a few steep edges.
  EXPECT_LE(off.wrong, 0.01 + 4.0 / static_cast<double>(expected->content.size()));
  // Half covered pixels of the rim may be drawn or not.
  EXPECT_LE(off.missing, 4.0 / std::min(image.width(), image.height()));
}

void checkNotes(const Row& row, const RasterImage& image) {
  const std::string notes = joined(image.notes());
  if (*row.says) {
    EXPECT_NE(notes.find(row.says), std::string::npos) << notes;
  } else {
    EXPECT_EQ(notes, "");
  }
}

void checkShown(const RasterImage& image, const std::string& path) {
  const Reference reference(path);
  ASSERT_TRUE(reference.isOpen()) << "shown, but GDAL cannot open it";
  Scale scale;
  if (reference.isDeep()) {
    scale = scaleIn(joined(image.notes()));
    const int width = std::min(kMostSide, reference.width()),
              height = std::min(kMostSide, reference.height());
    const auto outside = reference.sharesOutside({0, 0, width, height}, scale);
    // The scale comes from a reduced picture and so cuts a little more or less.
    if (width == reference.width() && height == reference.height()) {
      EXPECT_LT(std::max(outside[0], outside[1]), 0.06);
    }
  }
  const auto six = reference.transform();
  const std::array<double, 6> plain{0, 1, 0, double(image.height()), 0, -1};
  const bool placed = six || reference.controlPoints() > 0;
  if (sameTransform(sixOf(image), six ? *six : plain) && (six || !placed)) {
    checkNorthUp(image, reference, scale);
  } else {
    checkWarped(image, reference, scale);
  }
}

/// What a GDAL of 32 bits, or one with fewer compressions, does not even begin to read.
bool isBeyondThisGdal(const std::string& message) {
  if (sizeof(size_t) < 8 && message.find("Integer overflow") != std::string::npos) return true;
  const std::string missing = "missing codec ";
  const size_t at = message.find(missing);
  if (at == std::string::npos) return false;
  const size_t codec = at + missing.size();
  return !raster::gdalHas(message.substr(codec, message.find('.', codec) - codec));
}

class Archive : public testing::TestWithParam<Row> {};

TEST_P(Archive, IsShownRightlyOrRefusedWithItsReason) {
  const Row& row = GetParam();
  const std::string path = std::string(TARN_DATA_DIR) + "/" + row.path;
  if (fileKind(path) != FileKind::kRegular) GTEST_SKIP() << path << " is not here";
  CPLPushErrorHandler(CPLQuietErrorHandler);
  const auto opened = RasterImage::open(path, {{folderOf(path), ""}, true});
  if (!opened) {
    EXPECT_EQ(opened.message().compare(0, path.size(), path), 0) << opened.message();
  }
  if (!opened && isBeyondThisGdal(opened.message())) {
    CPLPopErrorHandler();
    GTEST_SKIP() << opened.message();
  }
  if (row.verdict == kRefused) {
    EXPECT_FALSE(opened);
    EXPECT_NE(opened.message().find(row.says), std::string::npos) << opened.message();
  } else {
    ASSERT_TRUE(opened) << opened.message();
    checkNotes(row, *opened.value());
    if (row.verdict == kShown) checkShown(*opened.value(), path);
    if (row.verdict == kBroken) {
      std::vector<uint8_t> out(300 * 300 * 3);
      raster::ReadCounts counts;
      const RasterImage& image = *opened.value();
      const double cell = std::max(image.width(), image.height()) / 300.0;
      const Status done = image.read({0, 0, cell, cell, 300, 300}, false, out.data(), counts);
      EXPECT_FALSE(done);
      EXPECT_NE(done.message().find(path), std::string::npos) << done.message();
    }
  }
  CPLPopErrorHandler();
}

INSTANTIATE_TEST_SUITE_P(RealFiles, Archive, testing::ValuesIn(kArchive),
                         [](const testing::TestParamInfo<Row>& row) {
                           std::string name = nameOf(row.param.path);
                           for (char& c : name) {
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           }
                           return std::to_string(row.index) + "_" + name;
                         });

TEST(ArchiveTable, NamesEveryRaster) {
  if (fileKind(TARN_DATA_DIR) != FileKind::kFolder)
    GTEST_SKIP() << "no real files in " << TARN_DATA_DIR;
  std::set<std::string> known;
  for (const Row& row : kArchive) known.insert(row.path);
  const std::set<std::string> endings{".tif", ".tiff", ".img", ".jpg"};
  const std::string root = TARN_DATA_DIR;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    const std::string path = entry.path().generic_u8string();
    if (!entry.is_regular_file() || endings.count(toLower(extensionOf(path))) == 0) continue;
    EXPECT_EQ(known.count(path.substr(root.size() + 1)), 1U) << path;
  }
}

}  // namespace
}  // namespace tarn::test
