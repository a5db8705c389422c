// How often images are drawn when the mouse works in the real window, counted by its statistics.
#include <QDir>
#include <QFile>
#include <QTest>

#include "base/text.h"
#include "rxdlinkr.h"
#include "tests/host_window/windowfixture.h"
#include "tests/support/program.h"

namespace tarn::test {
namespace {

constexpr int kSettled = 3 * host::Canvas::kSettleMilliseconds;

class WindowRedraw : public WindowTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(QDir(folder_.path()).mkpath("system"));
    QFile database(folder_.filePath("system/tarnconfig.db"));
    ASSERT_TRUE(database.open(QIODevice::WriteOnly));
    WindowTest::SetUp();
    if (HasFatalFailure()) return;
    for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
      const std::string path = std::string(TARN_BIN_DIR "/") + name;
      ASSERT_TRUE(acrxDynamicLinker->loadModule(toWide(path).c_str(), false)) << path;
    }
    const std::string image = folder_.filePath("a.tif").toStdString();
    ASSERT_EQ(runProgram("tarnortho", {image, "600", "400"}).exitCode, 0);
    window_->addFiles({image});
    wait(kSettled);
    ASSERT_GT(regenerations(), 0) << history().toStdString();
  }
  void TearDown() override {
    for (const char* name : {"image.arx", "adapter_autocad.arx"}) {
      acrxDynamicLinker->unloadModule(toWide(name).c_str());
    }
    WindowTest::TearDown();
  }
  /// Since the last call.
  int redraws() {
    const int all = regenerations();
    return all - std::exchange(counted_, all);
  }
  void panAndZoom() {
    drag({300, 200}, {350, 180}, 4);
    wheel({200, 200}, 1);
    wait(kSettled);
  }

 private:
  int counted_ = 0;
};

TEST_F(WindowRedraw, OnceAfterAPanAndOnceAtTheEndOfAWatchedCommand) {
  redraws();
  drag({300, 200}, {360, 220}, 5);
  EXPECT_EQ(redraws(), 1) << "the button was let go";
  wait(kSettled);
  EXPECT_EQ(redraws(), 0) << "that was all";
  for (int i = 0; i < 3; ++i) wheel({200, 200}, 1);
  EXPECT_EQ(redraws(), 0);
  wait(kSettled);
  EXPECT_EQ(redraws(), 1) << "the wheel has been still";

  int during = -1;
  const auto workInside = [&] {
    panAndZoom();
    during = redraws();
    key(Qt::Key_Escape);
  };
  play({[&] { enter("MOVE"); }, workInside});
  EXPECT_EQ(during, 0) << history().toStdString();
  EXPECT_EQ(redraws(), 1);
  wait(kSettled);
  EXPECT_EQ(redraws(), 0);

  // A command that is not watched lets the pictures follow.
  play({[&] { enter("DIST"); }, workInside});
  EXPECT_EQ(during, 2) << history().toStdString();
}

}  // namespace
}  // namespace tarn::test
