// A plot's file when the system refuses, the user stops or the process is killed.
#include "host/plot/plotfile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QImage>
#include <algorithm>
#include <cerrno>
#include <csignal>

#include "base/file.h"
#include "base/path.h"

namespace {

/// The calls that change something on the disk; the one that makes it 0 fails or kills.
int callsUntilFault = -1;
bool faultKills = false;

bool failsNow() {
  if (callsUntilFault < 0 || --callsUntilFault != 0) return false;
  callsUntilFault = -1;
  if (faultKills) ::kill(::getpid(), SIGKILL);
  errno = ENOSPC;
  return true;
}

}  // namespace

// These stand before those of the system's library; each is the system's own call but for the
// fault.
#define TARN_BEFORE_LIBC extern "C" __attribute__((visibility("default")))

TARN_BEFORE_LIBC ssize_t pwrite(int file, const void* data, size_t size, off_t offset) {
  return failsNow() ? -1 : syscall(SYS_pwrite64, file, data, size, offset);
}
TARN_BEFORE_LIBC ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset) {
  return failsNow() ? -1 : syscall(SYS_pwrite64, file, data, size, offset);
}
TARN_BEFORE_LIBC int fsync(int file) {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}
TARN_BEFORE_LIBC int rename(const char* from, const char* to) noexcept {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}

namespace tarn::host {
namespace {

class PlotFileTest : public testing::TestWithParam<PlotDevice> {
 protected:
  void SetUp() override {
    folder_ = makeTemporaryFolder(testing::TempDir(), "plotfile").take();
    path_ = joinPath(folder_, "plan.out");
    for (int i = 0; i < 3000; ++i) line_.points.push_back({i % 97 * 1.0, i % 89 * 1.0});
    plan_.dpi = 100;
    plan_.paperWidth = plan_.paperHeight = 100;
    plan_.page.centerX = plan_.page.centerY = 50;
    plan_.page.height = 100;
    plan_.page.pixelWidth = plan_.page.pixelHeight = 394;
    plan_.clip = {0, 0, 394, 394};
  }
  void TearDown() override {
    callsUntilFault = -1;
    faultKills = false;
    EXPECT_TRUE(removeAll(folder_));
  }

  Status write(const std::function<bool()>& proceed = [] { return true; }) {
    const auto record = [this](Scene& scene) {
      for (Scene::Key key = 1; key <= 5; ++key) scene.set(key, {line_});
      return true;
    };
    return writePlot(plan_, {{record, plan_.page, plan_.clip}}, {GetParam(), path_, "plan"},
                     RenderStyle(), proceed);
  }
  std::string now() const { return readFile(path_, 1u << 24).take(); }
  bool isWhole() const {
    const std::string bytes = now();
    if (GetParam() == PlotDevice::kPng) {
      return QImage::fromData(QByteArray::fromStdString(bytes)).width() == 394;
    }
    return bytes.compare(0, 5, "%PDF-") == 0 && bytes.find("%%EOF", bytes.size() - 8) != bytes.npos;
  }
  /// Each round begins with the old file.
  void putOld() {
    ASSERT_TRUE(removeAll(folder_) && makeFolders(folder_));
    ASSERT_TRUE(writeFileAtomically(path_, "old"));
  }

  std::string folder_;
  std::string path_;
  LineItem line_;
  PlotPlan plan_;
};

TEST_P(PlotFileTest, WhicheverCallFailsTheOldFileStays) {
  int faults = 0;
  for (int n = 1;; ++n) {
    SCOPED_TRACE(n);
    putOld();
    callsUntilFault = n;
    const Status status = write();
    const bool wasReached = callsUntilFault < 0;
    callsUntilFault = -1;
    EXPECT_EQ(listFolder(folder_), std::vector<std::string>{"plan.out"});
    if (!wasReached) {
      EXPECT_TRUE(status) << status.message();
      EXPECT_TRUE(isWhole());
      break;
    }
    ++faults;
    // Only the folder is synced after the file has taken its place.
    EXPECT_TRUE(now() == "old" || isWhole());
    if (status) continue;
    EXPECT_NE(status.message().find("plan.out"), std::string::npos) << status.message();
    EXPECT_NE(status.message().find("No space left on device"), std::string::npos)
        << status.message();
  }
  EXPECT_GE(faults, 3) << "the faults are not met";
}

TEST_P(PlotFileTest, WhereverItIsKilledTheFileIsOldOrWhole) {
  int kept = 0;
  for (int n = 1;; ++n) {
    SCOPED_TRACE(n);
    putOld();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      faultKills = true;
      callsUntilFault = n;
      ::_exit(write() ? 0 : 1);
    }
    int state = 0;
    ASSERT_EQ(::waitpid(child, &state, 0), child);
    EXPECT_TRUE(now() == "old" || isWhole());
    kept += now() == "old";
    if (WIFEXITED(state)) {
      EXPECT_EQ(WEXITSTATUS(state), 0);
      EXPECT_TRUE(isWhole());
      break;
    }
  }
  EXPECT_GE(kept, 3) << "it is not killed before the end";
}

TEST_P(PlotFileTest, WheneverTheUserStopsTheOldFileStays) {
  int asked = 0;
  ASSERT_TRUE(write([&] { return ++asked; }));
  ASSERT_GT(asked, 6);
  putOld();
  for (int last = 0; last < asked; last += last + 5 < asked ? std::max(1, asked / 20) : 1) {
    int left = last;
    const Status status = write([&] { return left-- > 0; });
    EXPECT_FALSE(status);
    EXPECT_EQ(status.message(), "");
    EXPECT_EQ(now(), "old");
    EXPECT_EQ(listFolder(folder_), std::vector<std::string>{"plan.out"});
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, PlotFileTest, testing::Values(PlotDevice::kPdf, PlotDevice::kPng),
                         [](const testing::TestParamInfo<PlotDevice>& device) {
                           return device.param == PlotDevice::kPdf ? "pdf" : "png";
                         });

TEST(PlotTarget, WhatCannotBeWrittenIsKnownBefore) {
  const std::string folder = makeTemporaryFolder(testing::TempDir(), "target").take();
  const std::string locked = joinPath(folder, "locked.pdf");
  ASSERT_TRUE(writeFileAtomically(locked, "old"));
  ASSERT_EQ(::chmod(locked.c_str(), 0444), 0);
  EXPECT_TRUE(checkPlotTarget(joinPath(folder, "new.pdf")));
  EXPECT_FALSE(checkPlotTarget(""));
  for (const std::string& path : {folder, locked, joinPath(folder, "none/new.pdf")}) {
    const Status status = checkPlotTarget(path);
    EXPECT_FALSE(status) << path;
    EXPECT_NE(status.message().find(path), std::string::npos) << status.message();
  }
  EXPECT_TRUE(removeAll(folder));
}

}  // namespace
}  // namespace tarn::host
