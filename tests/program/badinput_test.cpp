// Whatever is handed to it, the program says which file and why, and shows the good images.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "base/file.h"
#include "base/text.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

Raster flatRaster(int width, int height) {
  return makeRaster(width, height, 0, height, 1, [](int column, int row, uint8_t* rgb) {
    rgb[0] = static_cast<uint8_t>(90 + column % 60);
    rgb[1] = static_cast<uint8_t>(90 + row % 60);
    rgb[2] = 60;
  });
}

bool write(const std::string& path, const std::string& bytes) {
  return writeFileAtomically(path, bytes).isOk();
}

std::string bytesOf(const std::string& path) {
  return readFile(path, 1U << 28).value();
}

/// The lines of a transcript that name `piece`.
std::string linesNaming(const std::string& transcript, const std::string& piece) {
  std::string lines;
  for (const std::string& line : split(transcript, '\n')) {
    if (line.find(piece) != std::string::npos) lines += line + "\n";
  }
  return lines;
}

bool showsPicture(const std::string& path) {
  const QImage image(QString::fromStdString(path));
  if (image.isNull()) return false;
  const QRgb middle = image.pixel(image.width() / 2, image.height() / 2);
  return qRed(middle) >= 85 && qGreen(middle) >= 85 && qBlue(middle) >= 55 && qBlue(middle) <= 65;
}

class BadInput : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(writeRaster(flatRaster(600, 500), good())); }
  std::string good() const { return scratch_.at("good.tif"); }
  Scratch scratch_{"tarn_bad_"};
};

TEST_F(BadInput, EachBadFileIsNamedWithAReasonAndTheGoodOneIsShown) {
  const std::string whole = bytesOf(good());
  struct Case {
    const char* name;
    std::function<bool(const std::string&)> make;
  };
  const Case cases[] = {
      {"missing.tif", [](const std::string&) { return true; }},
      {"folder.tif", [](const std::string& path) { return makeFolders(path).isOk(); }},
      {"empty.tif", [](const std::string& path) { return write(path, ""); }},
      {"text.tif", [](const std::string& path) { return write(path, "this is no raster\n"); }},
      {"header.tif", [&](const std::string& path) { return write(path, whole.substr(0, 60)); }},
      {"half.tif",
       [&](const std::string& path) { return write(path, whole.substr(0, whole.size() / 2)); }},
      {"noise.img",
       [](const std::string& path) {
         return write(path, "EHFA_HEADER_TAG" + std::string(500, '\x7f'));
       }},
      {"noise.jpg",
       [](const std::string& path) {
         return write(path, "\xFF\xD8\xFF\xE0" + std::string(300, '\x11'));
       }},
      {"vrt.tif",
       [&](const std::string& path) {
         return write(
             path,
             "<VRTDataset rasterXSize=\"5\" rasterYSize=\"5\"><VRTRasterBand dataType=\"Byte\" "
             "band=\"1\"><SimpleSource><SourceFilename>" +
                 good() + "</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>");
       }},
      {"drawing.png",
       [&](const std::string& path) {
         return QImage(8, 8, QImage::Format_RGB32).save(QString::fromStdString(path));
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(c.make(scratch_.at(c.name)));
    const Outcome outcome = runCadhost(
        scratch_,
        {"--size", "300x250", "--picture", scratch_.at("p.png"), scratch_.at(c.name), good()});
    EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
    const std::string said = linesNaming(outcome.output, c.name);
    EXPECT_NE(said.find(": "), std::string::npos) << "no reason given:\n" << outcome.output;
    EXPECT_TRUE(showsPicture(scratch_.at("p.png"))) << outcome.output;
    EXPECT_TRUE(removeAll(scratch_.at("p.png")));
  }
}

TEST_F(BadInput, NamesOfAnyKindWork) {
  for (const char* name : {"with blanks in it.tif", "影像 二〇二六.tif", "map \xF0\x9F\x97\xBA.tif",
                           "100%1.tif", "semi;colon 'quote.tif", "UPPER.TIF"}) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(write(scratch_.at(name), bytesOf(good())));
    const Outcome outcome = runCadhost(
        scratch_, {"--size", "300x250", "--picture", scratch_.at("p.png"), scratch_.at(name)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    EXPECT_TRUE(showsPicture(scratch_.at("p.png"))) << outcome.output;
    EXPECT_TRUE(removeAll(scratch_.at("p.png")));
  }
}

// The superuser may write everywhere, so the program runs as somebody who may not.
Outcome runAsNobody(const Scratch& scratch, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--headless", "--profile", scratch.at("profile")});
  if (::geteuid() != 0) return runProgram("cadhost", arguments);
  arguments.insert(arguments.begin(),
                   {"--reuid=65534", "--regid=65534", "--clear-groups", TARN_BIN_DIR "/cadhost"});
  return runProgram("/usr/bin/setpriv", arguments);
}

TEST_F(BadInput, RightsThatAreMissing) {
  ASSERT_EQ(::chmod(scratch_.folder().c_str(), 0777), 0);
  ASSERT_TRUE(makeFolders(scratch_.at("archive")));
  ASSERT_TRUE(makeFolders(scratch_.at("profile")));
  ASSERT_TRUE(makeFolders(scratch_.at("out")));
  const std::string image = scratch_.at("archive/large.tif");
  ASSERT_TRUE(writeRaster(flatRaster(1500, 1200), image));
  ASSERT_TRUE(write(scratch_.at("archive/secret.tif"), bytesOf(good())));
  for (const char* open : {"profile", "out"})
    ASSERT_EQ(::chmod(scratch_.at(open).c_str(), 0777), 0);
  ASSERT_EQ(::chmod(scratch_.at("archive").c_str(), 0555), 0);
  ASSERT_EQ(::chmod(scratch_.at("archive/secret.tif").c_str(), 0), 0);

  const std::string picture = scratch_.at("out/p.png");
  const Outcome shown = runAsNobody(scratch_, {"--size", "300x250", "--picture", picture, image});
  if (shown.exitCode == 127 || shown.output.find("Permission denied") != std::string::npos) {
    GTEST_SKIP() << "another user cannot run the program here: " << shown.output;
  }
  EXPECT_EQ(shown.exitCode, 0) << shown.output;
  EXPECT_TRUE(showsPicture(picture)) << shown.output;
  EXPECT_EQ(listFolder(scratch_.at("archive")).size(), 2U) << "the read-only folder was written to";
  EXPECT_NE(linesNaming(shown.output, "large.tif").find("cache"), std::string::npos)
      << shown.output;

  const Outcome refused =
      runAsNobody(scratch_, {"--picture", picture, scratch_.at("archive/secret.tif")});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_NE(linesNaming(refused.output, "secret.tif").find("denied"), std::string::npos)
      << refused.output;

  const Outcome unwritable =
      runAsNobody(scratch_, {"--picture", scratch_.at("archive/p.png"), image});
  EXPECT_EQ(unwritable.exitCode, 1);
  EXPECT_NE(linesNaming(unwritable.output, "archive/p.png").find(": "), std::string::npos)
      << unwritable.output;
  ASSERT_EQ(::chmod(scratch_.at("archive").c_str(), 0755), 0);
}

}  // namespace
}  // namespace tarn::test
