// The pyramid build of the real program under kill -9 and on a disk that is full.

#include <gtest/gtest.h>
#include <signal.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include "base/file.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

class PyramidFaults : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(makeFolders(scratch_.at("archive")));
    raster_ = makeRaster(5000, 4000, 0, 4000, 1, [](int column, int row, uint8_t* rgb) {
      rgb[0] = static_cast<uint8_t>(40 + column / 30);
      rgb[1] = static_cast<uint8_t>(40 + row / 30);
      rgb[2] = 99;
    });
    ASSERT_TRUE(writeRaster(raster_, image()));
  }
  std::string image() const { return scratch_.at("archive/photo.tif"); }
  std::vector<std::string> arguments() const {
    return {"--size", "400x320", "--picture", scratch_.at("p.png"), image()};
  }

  // Whatever happened before, the next start shows the image as it is.
  void expectWholePicture(const Outcome& outcome) {
    ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
    const QImage picture(QString::fromStdString(scratch_.at("p.png")));
    ASSERT_FALSE(picture.isNull());
    for (const double share : {0.25, 0.5, 0.75}) {
      const QRgb got = picture.pixel(static_cast<int>(400 * share), static_cast<int>(320 * share));
      EXPECT_NEAR(qRed(got), 40 + 5000 * share / 30, 4);
      EXPECT_NEAR(qGreen(got), 40 + 4000 * share / 30, 4);
      EXPECT_NEAR(qBlue(got), 99, 1);
    }
    EXPECT_TRUE(removeAll(scratch_.at("p.png")));
  }

  Scratch scratch_{"tarn_pyr_"};
  Raster raster_;
};

TEST_F(PyramidFaults, KilledBuildsLeaveNothingAndTheNextStartIsRight) {
  QElapsedTimer timer;
  timer.start();
  expectWholePicture(runCadhost(scratch_, arguments()));
  const qint64 whole = timer.elapsed();
  int partial = 0;
  for (int point = 1; point <= 12; ++point) {
    SCOPED_TRACE(point);
    EXPECT_TRUE(removeAll(image() + ".ovr"));
    QProcess process;
    QStringList words{"--headless", "--profile", QString::fromStdString(scratch_.at("profile"))};
    for (const std::string& argument : arguments()) words << QString::fromStdString(argument);
    process.start(TARN_BIN_DIR "/cadhost", words);
    ASSERT_TRUE(process.waitForStarted());
    QThread::msleep(static_cast<unsigned long>(whole * point / 13));
    ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
    process.waitForFinished();
    partial += listFolder(scratch_.at("archive")).size() > 1;
    expectWholePicture(runCadhost(scratch_, arguments()));
    EXPECT_EQ(listFolder(scratch_.at("archive")),
              (std::vector<std::string>{"photo.tif", "photo.tif.ovr"}));
  }
  RecordProperty("builds_killed_with_files_about", partial);
}

TEST_F(PyramidFaults, FullDiskIsToldAndTheImageIsShownFromItsFile) {
  // A limit on the size of written files fails the pyramid's writes as a full disk does.
  std::vector<std::string> words{"--fsize=2000000", TARN_BIN_DIR "/cadhost", "--headless",
                                 "--profile", scratch_.at("profile")};
  for (const std::string& argument : arguments()) words.push_back(argument);
  const Outcome outcome = runProgram("/usr/bin/prlimit", words);
  EXPECT_NE(outcome.output.find("photo.tif"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("cannot write"), std::string::npos) << outcome.output;
  expectWholePicture(outcome);
  EXPECT_EQ(listFolder(scratch_.at("archive")), std::vector<std::string>{"photo.tif"});
}

}  // namespace
}  // namespace tarn::test
