// Images by the paths that users of Windows have in their drawings.
#include <gtest/gtest.h>

#include "base/file.h"
#include "base/text.h"
#include "components/raster/rasterimage.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

class WindowsPaths : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(removeAll(kFolder));
    ASSERT_TRUE(makeFolders(folder_));
  }
  void TearDown() override { EXPECT_TRUE(removeAll(kFolder)); }

  static constexpr const char* kFolder = "D:\\tifimage";
  // The second name is in no code page together with the first.
  const std::string folder_ = std::string(kFolder) + "\\正射影像\\é";
};

TEST_F(WindowsPaths, AnImageOnADriveIsOneImageHoweverItIsSpelled) {
  const Picture picture = texture(700, 500, 3);
  for (const std::string& path : {std::string("D:\\tifimage\\image.tif"), folder_ + "\\影.tif"}) {
    FileForm form;
    form.georeferenced = false;
    writePicture(path, picture, form);
    const std::string stem = path.substr(0, path.size() - 4);
    // As a text editor writes it there.
    writeText(stem + ".TFW", "0.5\r\n0\r\n0\r\n-0.5\r\n500000.25\r\n3400000.75\r\n");
    ASSERT_TRUE(buildFor(path));
    std::string small = path;
    small[0] = 'd';
    for (const std::string& spelled : {path, small, replaceAll(path, "\\", "/")}) {
      const auto image = openImage(spelled);
      ASSERT_TRUE(image) << spelled;
      EXPECT_EQ(image->width(), 700);
      EXPECT_GT(image->levelCount(), 1U) << "the pyramid beside it is found";
      EXPECT_DOUBLE_EQ(image->geoTransform().x0, 500000);
      EXPECT_DOUBLE_EQ(image->geoTransform().y0, 3400001);
    }
  }
}

TEST_F(WindowsPaths, RefusalsNameTheFile) {
  const std::string path = folder_ + "\\没有.tif";
  const auto image = RasterImage::open(path, {});
  ASSERT_FALSE(image);
  EXPECT_EQ(image.message().find(path + ": "), 0U) << image.message();
}

}  // namespace
}  // namespace tarn::raster
