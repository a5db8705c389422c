// What is read from point files, and what is refused.
#include <cmath>
#include <functional>

#include "host/pointcloud/cloudfile.h"
#include "host/pointcloud/lasreader.h"
#include "tests/host_pointcloud/cloudfixture.h"

namespace tarn::host {
namespace {

using test::LasPointSpec;
using test::LasSpec;
using test::putAt;
using testing::HasSubstr;

using LasFiles = CloudTest;

LasSpec threePoints(int minor, int format) {
  LasSpec spec;
  spec.minor = minor;
  spec.format = format;
  spec.points = {{100, 200, 50, 10, 20, 30},
                 {300, -400, 60, 200, 100, 0},
                 {2147483647, -2147483647 - 1, -5, 1, 2, 3, true}};
  return spec;
}

TEST_F(LasFiles, EveryVersionAndFormat) {
  constexpr int kColored[] = {2, 3, 5, 7, 8, 10};
  for (int minor = 0; minor <= 4; ++minor) {
    for (int format = 0; format <= 10; ++format) {
      SCOPED_TRACE("1." + std::to_string(minor) + " format " + std::to_string(format));
      LasSpec spec = threePoints(minor, format);
      spec.extraBytes = format % 3;
      LasReader reader;
      const Status opened = reader.open(write("a.las", spec));
      ASSERT_TRUE(opened) << opened.message();
      EXPECT_EQ(reader.header().points, 3U);
      std::vector<LasPoint> points;
      ASSERT_TRUE(reader.read(1, 2, points));
      EXPECT_EQ(points[0].x, 300);
      EXPECT_EQ(points[0].y, -400);
      EXPECT_EQ(points[0].z, 60);
      const bool isColored = std::count(std::begin(kColored), std::end(kColored), format) > 0;
      EXPECT_EQ(points[0].rgb[0], isColored ? 200 * 257 : 0);
      EXPECT_FALSE(points[0].isWithheld);
      EXPECT_EQ(points[1].x, 2147483647);
      EXPECT_TRUE(points[1].isWithheld);
      EXPECT_FALSE(reader.read(2, 2, points));
    }
  }
}

TEST_F(LasFiles, ColoursOfEightBitsAndHeights) {
  const auto colorOf = [&](const LasSpec& spec, const char* name) {
    bool stopped = false;
    const auto cloud = CloudFile::load(write(name, spec), stopped);
    EXPECT_TRUE(cloud) << cloud.message();
    std::vector<unsigned> colors;
    cloud.value()->visit({-1e12, -1e12, 1e12, 1e12}, 1e-3,
                         [&](const AcGiPointCloud::Point* points, size_t count, double) {
                           for (size_t i = 0; i < count; ++i) colors.push_back(points[i].color);
                         });
    std::sort(colors.begin(), colors.end());
    return colors;
  };
  LasSpec spec = threePoints(2, 2);
  const std::vector<unsigned> expected = {0xff0a141eU, 0xffc86400U};
  EXPECT_EQ(colorOf(spec, "wide.las"), expected);
  spec.colorFactor = 1;
  EXPECT_EQ(colorOf(spec, "narrow.las"), expected);
  // Without colours, or with colours that are all black, the lowest is blue and the highest red.
  for (const int format : {0, 2}) {
    spec = threePoints(2, format);
    spec.colorFactor = 0;
    const std::vector<unsigned> colors = colorOf(spec, format == 0 ? "h.las" : "black.las");
    ASSERT_EQ(colors.size(), 2U);
    EXPECT_GT(colors[0] & 0xffU, colors[0] >> 16 & 0xffU);
    EXPECT_LT(colors[1] & 0xffU, colors[1] >> 16 & 0xffU);
  }
}

/// Each is told with the file's name and seen as a frame; nothing crashes and the host goes on.
TEST_F(LasFiles, WhatCannotBeReadIsAFrameThatSaysWhy) {
  const struct {
    const char* name;
    std::function<void(std::string&)> change;
    const char* reason;
  } cases[] = {
      {"empty.las", [](std::string& b) { b.clear(); }, "this is no LAS file"},
      {"text.las", [](std::string& b) { b = "no points here"; }, "this is no LAS file"},
      {"head.las", [](std::string& b) { b.resize(200); }, "ends inside its header"},
      {"version.las", [](std::string& b) { b[25] = 9; }, "version 1.9"},
      {"format.las", [](std::string& b) { b[104] = 11; }, "format 11"},
      {"record.las", [](std::string& b) { putAt(b, 105, uint16_t{5}); }, "5 bytes are too short"},
      {"zero.las", [](std::string& b) { putAt(b, 105, uint16_t{0}); }, "0 bytes are too short"},
      {"start.las", [](std::string& b) { putAt(b, 96, 0xffffffffU); }, "do not begin inside"},
      {"inside.las", [](std::string& b) { putAt(b, 96, 10U); }, "do not begin inside"},
      {"none.las", [](std::string& b) { putAt(b, 107, 0U); }, "it holds no points"},
      {"nan.las", [](std::string& b) { putAt(b, 131, std::nan("")); }, "no sensible number"},
      {"scale.las", [](std::string& b) { putAt(b, 139, 0.0); }, "no sensible number"},
      {"offset.las", [](std::string& b) { putAt(b, 155, 1e300); }, "no sensible number"},
      {"deleted.las",
       [](std::string& b) {
         for (size_t at = 227 + 15; at < b.size(); at += 26) b[at] = static_cast<char>(0x80);
         putAt(b, 187, std::nan(""));
       },
       "marked as deleted"},
      {"laz.laz", [](std::string& b) { b[104] = static_cast<char>(0x82); }, "compressed (LAZ)"},
      {"a.rcp", [](std::string&) {}, "kind .rcp are not public"},
      {"a.RCS", [](std::string&) {}, "kind .rcs are not public"},
      {"a.pcg", [](std::string&) {}, "kind .pcg are not public"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    std::string bytes = test::lasBytes(threePoints(2, 2));
    one.change(bytes);
    const std::string path = write(one.name, bytes);
    const std::string printed = attach(path);
    EXPECT_TRUE(host_.good());
    EXPECT_THAT(printed, HasSubstr(path + ": "));
    EXPECT_THAT(printed, HasSubstr(one.reason));
    EXPECT_TRUE(itemsOf<PointsItem>().empty());
    const auto texts = itemsOf<TextItem>();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].text.toStdString(), one.name);
    EXPECT_THAT(texts[1].text.toStdString(), HasSubstr(one.reason));
    // Told once, not at every regeneration.
    EXPECT_EQ(host_.run({"REGEN"}).find(one.reason), std::string::npos);
  }
}

TEST_F(LasFiles, WrongCountsAndBoxesDoNotHideThePoints) {
  const struct {
    const char* name;
    std::function<void(std::string&)> change;
    const char* printed;
  } cases[] = {
      {"cut.las", [](std::string& b) { b.resize(b.size() - 30); }, "cut short, 2 of its points"},
      {"count.las", [](std::string& b) { putAt(b, 107, 0xfffffff0U); },
       "of its points are missing"},
      {"box.las", [](std::string& b) { putAt(b, 187, std::nan("")); }, ""},
      {"far.las", [](std::string& b) { putAt(b, 187, -1e11); }, ""},
      {"turned.las", [](std::string& b) { putAt(b, 187, 1e9); }, ""},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    std::string bytes = test::lasBytes(threePoints(2, 2));
    one.change(bytes);
    EXPECT_THAT(attach(write(one.name, bytes)), HasSubstr(one.printed));
    ASSERT_EQ(itemsOf<PointsItem>().size(), 1U);
    size_t seen = 0;
    itemsOf<PointsItem>().front().cloud->visit(
        {0, -1000, 1000, 1000}, 1e-3,
        [&](const AcGiPointCloud::Point*, size_t count, double) { seen += count; });
    EXPECT_GE(seen, 1U);
  }
}

}  // namespace
}  // namespace tarn::host
