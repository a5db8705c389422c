// Images that change while they are shown: a read error that names the file, black cells, and a
// whole picture again when the file is back and opened anew. The image beside it goes on.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "base/file.h"
#include "base/path.h"
#include "components/raster/rasterimage.h"
#include "tests/hostile/hostilefiles.h"
#include "tests/support/program.h"

namespace tarn::hostile {
namespace {

using raster::RasterImage;

struct Kind {
  const char* name;
  std::vector<std::string> options;
};

struct Harm {
  const char* name;
  void (*act)(const std::string& path);
};

const Harm kHarms[] = {
    {"cut short", [](const std::string& path) { EXPECT_EQ(truncate(path.c_str(), 3000), 0); }},
    {"emptied", [](const std::string& path) { EXPECT_EQ(truncate(path.c_str(), 0), 0); }},
    {"deleted", [](const std::string& path) { EXPECT_TRUE(removeAll(path)); }},
    {"a folder",
     [](const std::string& path) {
       EXPECT_TRUE(removeAll(path));
       EXPECT_TRUE(makeFolders(path));
     }},
    {"a pipe",
     [](const std::string& path) {
       EXPECT_TRUE(removeAll(path));
       EXPECT_EQ(mkfifo(path.c_str(), 0666), 0);
     }},
    {"another file",
     [](const std::string& path) {
       EXPECT_TRUE(writeFileAtomically(path, std::string(200000, 'x')));
     }},
};

/// The message of reading the whole image; its brightest colour goes to `brightest`.
std::string readAgain(const RasterImage& image, int& brightest) {
  std::vector<uint8_t> out(static_cast<size_t>(image.width()) * image.height() * 3, 9);
  raster::ReadCounts counts;
  const Status done =
      image.read({0, 0, 1, 1, image.width(), image.height()}, false, out.data(), counts);
  brightest = *std::max_element(out.begin(), out.end());
  return done.message();
}

TEST(ChangingFiles, AreBlackWithOneMessageAndComeBack) {
  const Kind kinds[] = {{"a.tif", {}},
                        {"a.tif", {"COMPRESS=JPEG", "TILED=YES"}},
                        {"a.tif", {"COMPRESS=DEFLATE"}},
                        {"a.img", {}},
                        {"a.img", {"COMPRESSED=YES"}},
                        {"a.jpg", {}},
                        {"a.jpg", {"PROGRESSIVE=YES"}}};
  for (const Kind& kind : kinds) {
    for (const Harm& harm : kHarms) {
      for (const bool cached : {false, true}) {
        SCOPED_TRACE(std::string(kind.name) + " " + harm.name + (cached ? " cached" : ""));
        const test::Scratch scratch("tarn_changing_");
        const std::string path = scratch.at(kind.name), neighbour = scratch.at("n.tif");
        writeGood(path, kind.options);
        writeGood(neighbour);
        const std::string whole = bytesOf(path);
        const raster::OpenOptions options{{scratch.folder(), ""}, true};
        const auto image = RasterImage::open(path, options);
        const auto other = RasterImage::open(neighbour, options);
        ASSERT_TRUE(image && other) << image.message();
        int brightest = 0;
        EXPECT_TRUE(!cached || readAgain(*image.value(), brightest).empty());
        harm.act(path);
        const std::string message = readAgain(*image.value(), brightest);
        EXPECT_EQ(message.find(path + ": "), 0U) << message;
        EXPECT_EQ(brightest, 0);
        std::string note;
        EXPECT_FALSE(image.value()->buildPyramid(options.places, nullptr, note));
        EXPECT_FALSE(RasterImage::open(path, options));
        EXPECT_EQ(readAgain(*other.value(), brightest), "");
        EXPECT_GT(brightest, 100);
        ASSERT_TRUE(removeAll(path));
        writeBytes(path, whole);
        const auto back = RasterImage::open(path, options);
        ASSERT_TRUE(back) << back.message();
        EXPECT_EQ(readAgain(*back.value(), brightest), "");
        EXPECT_GT(brightest, 100);
      }
    }
  }
}

}  // namespace
}  // namespace tarn::hostile
