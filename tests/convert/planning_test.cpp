// What is decided before a file is touched.
#include <gtest/gtest.h>

#include <set>

#include "base/file.h"
#include "components/convert/inputs.h"
#include "components/convert/options.h"
#include "components/convert/plan.h"
#include "tests/raster/testimages.h"

namespace tarn::convert {
namespace {

using raster::Scratch;

TEST(Options, AreSetByTheirWordsAndWrongOnesSayWhatIsRight) {
  const struct {
    const char *name, *value, *wrong;
  } kCases[] = {{"format", "COG", nullptr},
                {"format", "png", "geotiff, cog, img, jpeg"},
                {"compression", "zstd", nullptr},
                {"compression", "", "none, deflate, lzw"},
                {"quality", "100", nullptr},
                {"quality", "0", "1 to 100"},
                {"quality", "85%", "1 to 100"},
                {"bands", "3,2,1", nullptr},
                {"bands", "", nullptr},
                {"bands", "3,,1", "like 3,2,1"},
                {"bands", "0", "like 3,2,1"},
                {"pyramids", "no", nullptr},
                {"pyramids", "maybe", "yes or no"},
                {"colour", "red", "no option"}};
  for (const auto& c : kCases) {
    Options options;
    const Status set = setOption(c.name, c.value, options);
    EXPECT_EQ(set.isOk(), c.wrong == nullptr) << c.name << ' ' << c.value << ' ' << set.message();
    EXPECT_NE(set.message().find(c.wrong ? c.wrong : ""), std::string::npos) << set.message();
  }
  Options a, b;
  EXPECT_EQ(keyOf(a), keyOf(b));
  b.quality = 20;
  EXPECT_EQ(keyOf(a), keyOf(b)) << "of no use without JPEG";
  a.compression = b.compression = Compression::kJpeg;
  EXPECT_NE(keyOf(a), keyOf(b));
}

TEST(Options, ZstandardIsRefusedByNameWhereItIsNotToBeHad) {
  Options options;
  EXPECT_TRUE(checkOptions(options));
  options.compression = Compression::kZstd;
  const Status fits = checkOptions(options);
  EXPECT_EQ(fits.isOk(), raster::gdalHas("ZSTD"));
  EXPECT_EQ(fits.message().find("Zstandard"), fits ? std::string::npos : 0U) << fits.message();
}

TEST(Inputs, FoldersAndPatternsStandForTheirImages) {
  const Scratch scratch;
  for (const char* name :
       {"a.tif", "b.TIF", "c.img", "d.txt", ".hidden.tif", "sub/e.jpg", "sub2/f.jpg", "[x].tif"}) {
    ASSERT_TRUE(makeFolders(scratch / "sub"));
    ASSERT_TRUE(makeFolders(scratch / "sub2"));
    raster::writeText(scratch / name, "x");
  }
  const auto names = [&](const std::string& input) {
    std::string all;
    for (std::string path : expandInputs({scratch / input}))
      all += path.substr(scratch.folder().size() + 1) + " ";
    return all;
  };
  EXPECT_EQ(names(""), "[x].tif a.tif b.TIF c.img ");
  EXPECT_EQ(names("*.tif"), "[x].tif a.tif ");
  EXPECT_EQ(names("[ab].*"), "a.tif b.TIF ");
  EXPECT_EQ(names("[!a].tif"), "[!a].tif ") << "matches nothing, so it stays";
  EXPECT_EQ(names("[x].tif"), "[x].tif ") << "a file of that name";
  EXPECT_EQ(names("sub*/?.jpg"), "sub/e.jpg sub2/f.jpg ");
  EXPECT_EQ(names("none*.tif"), "none*.tif ");
}

TEST(Inputs, EveryOutputHasOneImage) {
  Options options;
  options.folder = "/out";
  std::vector<std::string> inputs = {"/x/a.tif", "/y/a.tif", "/x/a.tif", "/x/a.img"};
  auto items = planItems(inputs, options);
  EXPECT_EQ(items[0].output, "/out/a.tif");
  EXPECT_EQ(items[0].problem, "");
  EXPECT_EQ(items[1].problem, "another image of the list becomes /out/a.tif, too");
  EXPECT_EQ(items[2].problem, "is named twice");
  options.existing = Existing::kRename;
  items = planItems(inputs, options);
  EXPECT_EQ(items[1].output, "/out/a_2.tif");
  EXPECT_EQ(items[3].output, "/out/a_3.tif");
  options.folder.clear();
  options.format = Format::kImg;
  EXPECT_EQ(planItems({"/a.tif"}, options)[0].output, "/a.img");
  EXPECT_EQ(planItems({"b/a.tif"}, options)[0].output, "b/a.img");
}

TEST(Inputs, PartsShareThemOut) {
  std::vector<size_t> counts(4);
  for (int i = 0; i < 1000; ++i) {
    const unsigned part = partOf("/data/tile_" + std::to_string(i) + ".tif", 4);
    ASSERT_GE(part, 1U);
    ASSERT_LE(part, 4U);
    ++counts[part - 1];
  }
  for (const size_t count : counts) EXPECT_NEAR(static_cast<double>(count), 250, 60);
  EXPECT_EQ(partOf("/data/tile_1.tif", 1000003), 374880U) << "the same on every machine and day";
}

raster::ImageFacts factsOf(const char* type, int bits, int bands) {
  raster::ImageFacts facts;
  facts.driver = "GTiff";
  facts.width = 1000;
  facts.height = 1000;
  facts.bands.resize(static_cast<size_t>(bands));
  for (raster::BandFacts& band : facts.bands) {
    band.type = type;
    band.bits = bits;
  }
  return facts;
}

TEST(Planning, JpegTakesWhatItCanHold) {
  Options options;
  options.compression = Compression::kJpeg;
  const auto plan = [&](const raster::ImageFacts& facts) {
    return planConversion(facts, raster::decidePresentation(facts).value(), options);
  };
  EXPECT_FALSE(plan(factsOf("Byte", 8, 3)).value().shown);
  EXPECT_EQ(plan(factsOf("Byte", 8, 3)).value().writer, Writer::kTiles);
  const auto deep = plan(factsOf("UInt16", 16, 3)).value();
  EXPECT_TRUE(deep.shown);
  EXPECT_NE(deep.notes.front().find("16 bits"), std::string::npos);
  raster::ImageFacts palette = factsOf("Byte", 8, 1);
  palette.bands[0].palette = {{1, 2, 3, 255}};
  EXPECT_TRUE(plan(palette).value().shown);
  options.format = Format::kJpeg;
  raster::ImageFacts wide = factsOf("Byte", 8, 3);
  wide.width = 70000;
  EXPECT_EQ(plan(wide).message(), "is 70000 x 1000 pixels; a JPEG holds at most 65500 a side");
  options.bands = {4};
  EXPECT_EQ(plan(factsOf("Byte", 8, 3)).message(), "has only 3 bands");
}

TEST(Planning, FewBitsAndPalettesAreNotPredicted) {
  Options options;
  options.compression = Compression::kLzw;
  const auto has = [&](const raster::ImageFacts& facts, const char* text) {
    const Plan plan =
        planConversion(facts, raster::decidePresentation(facts).value(), options).take();
    return std::find(plan.creation.begin(), plan.creation.end(), text) != plan.creation.end();
  };
  EXPECT_TRUE(has(factsOf("Byte", 8, 3), "PREDICTOR=2"));
  EXPECT_TRUE(has(factsOf("Float32", 32, 1), "PREDICTOR=3"));
  EXPECT_FALSE(has(factsOf("Byte", 1, 1), "PREDICTOR=2"));
}

}  // namespace
}  // namespace tarn::convert
