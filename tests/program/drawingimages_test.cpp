// Pictures that a drawing names, from the program with everything that belongs to it.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>

#include "tests/support/program.h"

namespace tarn::test {
namespace {

TEST(ImageFiles, areShownWhereTheyAreFoundAndNamedWhereNot) {
  const Scratch scratch("tarn_imagefile_");
  const std::string drawing = scratch.at("plan.dxf");
  const Outcome made =
      runProgram("/usr/bin/python3",
                 {TARN_SOURCE_DIR "/tests/host_entities/entity_judge.py", "image", drawing});
  if (made.exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
  ASSERT_EQ(made.exitCode, 0) << made.output;
  // Left red, right blue; the upper half darker. It stands in the drawing by another system's path.
  QImage picture(40, 20, QImage::Format_RGB32);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 40; ++x) {
      const int value = y < 10 ? 100 : 200;
      picture.setPixel(x, y, x < 20 ? qRgb(value, 0, 0) : qRgb(0, 0, value));
    }
  }
  ASSERT_TRUE(QDir().mkpath(QString::fromStdString(scratch.at("pictures"))));
  ASSERT_TRUE(picture.save(QString::fromStdString(scratch.at("pictures/there.png"))));
  const std::string out = scratch.at("out.png");
  const Outcome outcome =
      runCadhost(scratch, {drawing, "--size", "500x400", "--view", "50,15,80", "--picture", out});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  const QImage seen(QString::fromStdString(out));
  ASSERT_EQ(seen.size(), QSize(500, 400)) << outcome.output;
  const auto at = [&](double x, double y) {
    return seen.pixel(static_cast<int>(x * 5), 399 - static_cast<int>((y + 25) * 5)) & 0xFFFFFF;
  };
  EXPECT_EQ(at(10, 15), 0x640000u);
  EXPECT_EQ(at(10, 5), 0xC80000u);
  EXPECT_EQ(at(30, 15), 0x000064u);
  EXPECT_EQ(at(30, 5), 0x0000C8u);
  const QRgb background = at(45, 45);
  EXPECT_EQ(at(65, 7), 0xC80000u);
  EXPECT_EQ(at(75, 13), 0x000064u);
  EXPECT_EQ(at(55, 10), background);
  EXPECT_EQ(at(70, 17), background);
  // A frame and a name, but no picture.
  EXPECT_EQ(at(20, 35), background);
  EXPECT_NE(at(20, 29.9), background);
  int drawn = 0;
  for (double x = 1; x < 39; x += 0.2) {
    for (double y = 31; y < 49; y += 0.2) drawn += at(x, y) != background ? 1 : 0;
  }
  EXPECT_GT(drawn, 50);
  // As bright as can be, faded away, without contrast; and no frames around what is shown.
  EXPECT_EQ(at(3, -18), 0xFFFFFFu);
  EXPECT_EQ(at(13, -18), background);
  EXPECT_EQ(at(23, -18), 0x808080u);
  EXPECT_EQ(at(60.05, 10), at(60.4, 10));
}

}  // namespace
}  // namespace tarn::test
