// JPEG files of rows that were encoded side by side, beside those of GDAL's own driver.
#include "components/convert/jpegrows.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <cstring>

#include "base/file.h"
#include "components/convert/converter.h"
#include "tests/raster/testimages.h"

namespace tarn::convert {
namespace {

using raster::readByGdal;
using raster::Scratch;

/// By GDAL's driver; its pixels do not depend on how their codes are written down.
void writeByDriver(const std::string& from, const std::string& to, const std::vector<int>& bands) {
  GDALAllRegister();
  GDALDatasetUniquePtr source(GDALDataset::Open(from.c_str()));
  ASSERT_TRUE(source);
  const int width = source->GetRasterXSize(), height = source->GetRasterYSize();
  const int count = static_cast<int>(bands.size());
  GDALDatasetUniquePtr chosen(GetGDALDriverManager()->GetDriverByName("MEM")->Create(
      "", width, height, count, GDT_Byte, nullptr));
  std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * count);
  std::vector<int> numbers = bands;
  ASSERT_EQ(source->RasterIO(GF_Read, 0, 0, width, height, pixels.data(), width, height, GDT_Byte,
                             count, numbers.data(), 0, 0, 0, nullptr),
            CE_None);
  ASSERT_EQ(chosen->RasterIO(GF_Write, 0, 0, width, height, pixels.data(), width, height, GDT_Byte,
                             count, nullptr, 0, 0, 0, nullptr),
            CE_None);
  const char* options[] = {"QUALITY=83", nullptr};
  ASSERT_TRUE(GDALDatasetUniquePtr(GetGDALDriverManager()->GetDriverByName("JPEG")->CreateCopy(
      to.c_str(), chosen.get(), FALSE, const_cast<char**>(options), nullptr, nullptr)));
}

TEST(JpegRows, DecodeToThePixelsOfTheDriver) {
  const struct {
    int width, height, channels;
    std::vector<int> bands;  // of the conversion
  } cases[] = {
      {1301, 777, 3, {1, 2, 3}}, {1301, 777, 1, {1}}, {256, 512, 3, {1, 2, 3}},
      {17, 9, 3, {1, 2, 3}},     {1, 1, 1, {1}},      {300, 1100, 3, {3, 2, 1}},
      {300, 530, 3, {2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << " x " << c.channels);
    const Scratch scratch;
    raster::writePicture(scratch / "a.tif", raster::texture(c.width, c.height, c.channels));
    Options options;
    options.format = Format::kJpeg;
    options.quality = 83;
    options.bands = c.bands;
    options.pyramids = false;
    const auto done = convertImage(scratch / "a.tif", scratch / "b.jpg", options, nullptr);
    ASSERT_TRUE(done) << done.message();
    writeByDriver(scratch / "a.tif", scratch / "c.jpg", c.bands);
    EXPECT_EQ(readByGdal(scratch / "b.jpg").pixels, readByGdal(scratch / "c.jpg").pixels);
  }
}

TEST(JpegRows, CarryWhatTheDriverWritesInsideAndBeside) {
  const Scratch scratch;
  raster::writePicture(scratch / "a.tif", raster::smooth(400, 300, 3));
  {
    const GDALDatasetUniquePtr source(
        GDALDataset::Open((scratch / "a.tif").c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    ASSERT_TRUE(source);
    source->SetMetadataItem("EXIF_Software", "camera 7");
    source->SetMetadataItem("SITE", "测区 4");
    source->GetRasterBand(2)->SetDescription("near infrared");
    source->GetRasterBand(1)->SetNoDataValue(7);
  }
  Options options;
  options.format = Format::kJpeg;
  options.pyramids = false;
  ASSERT_TRUE(convertImage(scratch / "a.tif", scratch / "b.jpg", options, nullptr));
  const auto text = readFile(scratch / "b.jpg", 1 << 20);
  ASSERT_TRUE(text);
  EXPECT_NE(text.value().find("JFIF"), std::string::npos);
  EXPECT_NE(text.value().find("camera 7"), std::string::npos) << "EXIF inside";
  const GDALDatasetUniquePtr made(GDALDataset::Open((scratch / "b.jpg").c_str()));
  ASSERT_TRUE(made);
  EXPECT_STREQ(made->GetMetadataItem("SITE"), "测区 4");
  EXPECT_STREQ(made->GetRasterBand(2)->GetDescription(), "near infrared");
  int has = 0;
  EXPECT_EQ(made->GetRasterBand(1)->GetNoDataValue(&has), 7);
  EXPECT_EQ(listFolder(scratch.folder()),
            (std::vector<std::string>{"a.tif", "b.jgw", "b.jpg", "b.jpg.aux.xml"}));
}

TEST(JpegRows, ADamagedFileIsNoticed) {
  const Scratch scratch;
  const std::string path = scratch / "a.jpg";
  constexpr int kWidth = 600, kHeight = 700;
  const raster::Picture picture = raster::texture(kWidth, kHeight, 3);
  JpegRowWriter writer;
  ASSERT_TRUE(writer.create(path, {kWidth, kHeight, 3, 80, {}}));
  // Parts may come in any order.
  for (const int top : {256, 512, 0}) {
    ASSERT_TRUE(writer.writeRows(top, std::min(256, kHeight - top), picture.at(0, top)));
  }
  ASSERT_TRUE(writer.finish());
  ASSERT_TRUE(writer.check());
  const std::string whole = readFile(path, 1 << 24).value();
  const size_t third = whole.find("\xFF\xD2"), fourth = whole.find("\xFF\xD3");
  ASSERT_LT(third, fourth);
  ASSERT_NE(fourth, std::string::npos);
  std::string marker = whole, shorter = whole, without = whole;
  marker[third + 1] = '\xD5';
  shorter.resize(whole.size() - 1);
  without.erase(third, fourth - third).append(fourth - third, '\0');
  for (const std::string& damaged : {marker, shorter, without, whole + "x"}) {
    raster::writeText(path, damaged);
    const Status checked = writer.check();
    EXPECT_FALSE(checked);
    EXPECT_NE(checked.message().find(path), std::string::npos);
  }
}

}  // namespace
}  // namespace tarn::convert
