#include <cpl_error.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include "base/file.h"
#include "base/text.h"
#include "components/raster/guardedfiles.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

std::string refusal(const std::string& path) {
  const auto opened = RasterImage::open(path, {{path.substr(0, path.rfind('/')), ""}, true});
  return opened ? "" : opened.message();
}

std::string bytesOf(const std::string& path) {
  const auto bytes = readFile(path, 1 << 28);
  EXPECT_TRUE(bytes);
  return bytes ? bytes.value() : "";
}

/// Writes through GDAL with `change` applied to the open file.
template <typename Change>
void writeChanged(const std::string& path, int bands, GDALDataType type, const Change& change) {
  GDALAllRegister();
  GDALDataset* dataset = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
      path.c_str(), 20, 10, bands, type, nullptr);
  ASSERT_NE(dataset, nullptr);
  change(*dataset);
  GDALClose(dataset);
}

TEST(Refusals, EachNamesTheFileAndTheReason) {
  const Scratch scratch;
  writePicture(scratch / "good.tif", texture(300, 200, 3));
  writePicture(scratch / "good.jpg", texture(300, 200, 3), {"JPEG", {}});
  writePicture(scratch / "good.img", texture(300, 200, 3), {"HFA", {}});
  const auto cut = [&](const char* from, const char* to, double part) {
    const std::string bytes = bytesOf(scratch / from);
    writeText(scratch / to, bytes.substr(0, size_t(bytes.size() * part)));
  };
  cut("good.tif", "half.tif", 0.5);
  cut("good.tif", "nearly_nothing.tif", 0.0005);
  cut("good.jpg", "half.jpg", 0.5);
  cut("good.img", "half.img", 0.5);
  // The size of a part stands in the last of the six numbers before its name.
  std::string swollen = bytesOf(scratch / "good.img");
  swollen.replace(swollen.find("Layer_2") - 4, 4, std::string("\x00\x00\x51\x13", 4));
  writeText(scratch / "swollen.img", swollen);
  writeText(scratch / "empty.tif", "");
  writeText(scratch / "text.tif",
            "This is not a picture at all, but it is long enough to be looked at.");
  writeText(scratch / "vrt.tif",
            "<VRTDataset rasterXSize=\"300\" rasterYSize=\"200\"><VRTRasterBand dataType=\"Byte\" "
            "band=\"1\">"
            "<SimpleSource><SourceFilename>" +
                scratch / "good.tif" +
                "</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>");
  writeText(scratch / "wms.tif",
            "<GDAL_WMS><Service "
            "name=\"TMS\"><ServerUrl>http://127.0.0.1:1/</ServerUrl></Service></GDAL_WMS>");
  writePicture(scratch / "png.tif", texture(30, 20, 3), {"PNG", {}});
  ASSERT_TRUE(makeFolders(scratch / "folder.tif"));
  writeChanged(scratch / "complex.tif", 1, GDT_CFloat32, [](GDALDataset&) {});

  const std::pair<const char*, const char*> expected[] = {
      {"missing.tif", "cannot be found"},
      {"folder.tif", "folder"},
      {"empty.tif", "empty"},
      {"text.tif", "no TIFF, IMG or JPG"},
      {"vrt.tif", "no TIFF, IMG or JPG"},
      {"wms.tif", "no TIFF, IMG or JPG"},
      {"png.tif", "no TIFF, IMG or JPG"},
      {"half.tif", "cut short"},
      {"nearly_nothing.tif", ""},
      {"half.jpg", "cut short"},
      {"half.img", "cut short"},
      {"swollen.img", "larger than the whole file"},
      {"complex.tif", "complex"},
  };
  for (const auto& [name, reason] : expected) {
    const std::string message = refusal(scratch / name);
    EXPECT_NE(message.find(scratch / name), std::string::npos) << name << ": " << message;
    EXPECT_NE(message.find(reason), std::string::npos) << name << ": " << message;
    EXPECT_EQ(message.find("/vsi"), std::string::npos) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
  }
  EXPECT_NE(refusal("/vsimem/x.tif"), "");
  EXPECT_NE(refusal("/vsizip/" + scratch / "good.tif"), "");
  EXPECT_NE(refusal("/dev/null"), "");
  EXPECT_EQ(refusal(scratch / "good.tif"), "");
}

TEST(Guard, NamesWithBlanksAndOtherScripts) {
  const Scratch scratch;
  for (const char* name : {"two words.tif", "正射影像 2024.tif", "🛰️.tif", "a%20b&c;d.tif"}) {
    writePicture(scratch / name, texture(300, 200, 3), {"GTiff", {"COMPRESS=LZW"}});
    const auto image = openImage(scratch / name);
    ASSERT_TRUE(image) << name;
    EXPECT_EQ(largestDifference(readAll(*image), readByGdal(scratch / name)), 0);
  }
}

TEST(Guard, OnlySideFilesOfTheImageAreSeen) {
  for (const char* name :
       {"a b.tif", "a b.tif.aux.xml", "a b.tfw", "A B.TFW", "a b.ige", "a b.tif.ovr"}) {
    EXPECT_TRUE(isSideFileName("a b.tif", name)) << name;
  }
  for (const char* name :
       {"b.tif", "a bc.tif", "../a b.tif", "a b.x/../../etc/passwd", "/etc/passwd", ""}) {
    EXPECT_FALSE(isSideFileName("a b.tif", name)) << name;
  }
}

TEST(Guard, OverviewFilesElsewhereAreNotRead) {
  // The other file would be a good overview; were it used, the averages would come out dark.
  const Scratch scratch;
  const std::string elsewhere = scratch / "elsewhere.tif";
  Picture dark = smooth(500, 400, 3);
  std::fill(dark.pixels.begin(), dark.pixels.end(), 3);
  writePicture(elsewhere, dark);
  for (const char* where : {"inside", "beside"}) {
    for (const std::string& target :
         {elsewhere, std::string("/vsicurl/http://127.0.0.1:1/x.tif")}) {
      const std::string path = scratch / "a.tif";
      ASSERT_TRUE(removeAll(path + ".aux.xml"));
      writePicture(path, smooth(1000, 800, 3));
      if (std::string(where) == "inside") {
        auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE);
        dataset->SetMetadataItem("OVERVIEW_FILE", target.c_str(), "OVERVIEWS");
        GDALClose(dataset);
      } else {
        writeText(path + ".aux.xml",
                  "<PAMDataset><Metadata domain=\"OVERVIEWS\"><MDI key=\"OVERVIEW_FILE\">" +
                      target + "</MDI></Metadata></PAMDataset>");
      }
      const auto image = openImage(path);
      ASSERT_TRUE(image);
      EXPECT_EQ(image->levelCount(), 1U);
      EXPECT_GT(readWindow(*image, {0, 0, 4, 4, 100, 100}).at(50, 50)[0], 10);
      ASSERT_EQ(image->notes().size(), 1U);
      EXPECT_NE(image->notes()[0].find("overviews"), std::string::npos);
    }
  }
}

TEST(Guard, PyramidThatIsNoTiffIsNotRead) {
  const Scratch scratch;
  writePicture(scratch / "a.tif", smooth(1000, 800, 3));
  writePicture(scratch / "other.tif", smooth(500, 400, 3));
  writeText(scratch / "a.tif.ovr",
            "<VRTDataset rasterXSize=\"500\" rasterYSize=\"400\"><VRTRasterBand dataType=\"Byte\" "
            "band=\"1\"><SimpleSource>"
            "<SourceFilename>" +
                scratch / "other.tif" +
                "</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>");
  const auto image = openImage(scratch / "a.tif");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->levelCount(), 1U);
  EXPECT_FALSE(image->hasPyramid({scratch.folder(), ""}));
}

TEST(Guard, ImgThatNamesAnotherFileIsNotFollowed) {
  const Scratch scratch;
  writePicture(scratch / "a.img", texture(300, 200, 1), {"HFA", {"USE_SPILL=YES"}});
  EXPECT_EQ(
      largestDifference(readAll(*openImage(scratch / "a.img")), readByGdal(scratch / "a.img")), 0);
  // The same bytes, but the named file now stands for something that is not the image's own.
  std::string bytes = bytesOf(scratch / "a.img");
  ASSERT_NE(bytes.find("a.ige"), std::string::npos);
  writeText(scratch / "b.ige", bytesOf(scratch / "a.ige"));
  writeText(scratch / "c.img", replaceAll(bytes, "a.ige", "b.ige"));
  EXPECT_NE(refusal(scratch / "c.img"), "");
}

TEST(Guard, GdalStaysSilent) {
  const Scratch scratch;
  writeText(scratch / "text.tif", "II*\0 damaged beyond repair");
  ::testing::internal::CaptureStderr();
  EXPECT_NE(refusal(scratch / "text.tif"), "");
  writePicture(scratch / "a.tif", texture(600, 400, 3), {"GTiff", {"COMPRESS=DEFLATE"}});
  const auto image = openImage(scratch / "a.tif");
  std::string bytes = bytesOf(scratch / "a.tif");
  for (size_t i = bytes.size() / 2; i < bytes.size() / 2 + 5000; ++i) bytes[i] = 'x';
  writeText(scratch / "b.tif", bytes);
  if (const auto damaged = RasterImage::open(scratch / "b.tif", {{scratch.folder(), ""}, true})) {
    std::vector<uint8_t> out(600 * 400 * 3, 5);
    ReadCounts counts;
    const Status done = damaged.value()->read({0, 0, 1, 1, 600, 400}, false, out.data(), counts);
    EXPECT_FALSE(done);
    EXPECT_NE(done.message().find("b.tif"), std::string::npos);
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 0) << "black after a failure";
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarn::raster
