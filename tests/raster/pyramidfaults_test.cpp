#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "base/file.h"
#include "base/filelock.h"
#include "base/path.h"
#include "components/raster/buildfolder.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

class PyramidFaults : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = scratch_ / "a.tif";
    writePicture(path_, smooth(3000, 2500, 3));
  }
  bool has(const std::string& cache = "") const {
    return openImage(path_, cache)->hasPyramid({folderOf(path_), cache});
  }
  std::vector<std::string> names() const { return listFolder(scratch_.folder()); }
  void expectNothingLeft() const { EXPECT_EQ(names(), std::vector<std::string>{"a.tif"}); }

  /// Runs `work` in a child and returns its process number.
  template <typename Work>
  static pid_t inChild(const Work& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    return child;
  }

  Scratch scratch_;
  std::string path_;
};

TEST_F(PyramidFaults, KilledAtAnyMoment) {
  int killed = 0, whole = 0;
  for (int moment = 0; moment < 20; ++moment) {
    ASSERT_TRUE(removeAll(path_ + ".ovr"));
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    const pid_t child = inChild([&] {
      const auto image = RasterImage::open(path_, {{folderOf(path_), ""}, true});
      const char ready = 1;
      if (!image || write(pipes[1], &ready, 1) != 1) return 2;
      std::string note;
      return image.value()->buildPyramid({folderOf(path_), ""}, nullptr, note) ? 0 : 1;
    });
    char ready = 0;
    ASSERT_EQ(read(pipes[0], &ready, 1), 1);
    usleep(unsigned(moment) * 2500);
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ::close(pipes[0]);
    ::close(pipes[1]);
    killed += WIFSIGNALED(status);
    const bool there = fileKind(path_ + ".ovr") == FileKind::kRegular;
    const auto image = openImage(path_);
    ASSERT_TRUE(image);
    EXPECT_EQ(there, image->hasPyramid({scratch_.folder(), ""}))
        << "half a pyramid at moment " << moment;
    if (there) {
      ++whole;
      EXPECT_EQ(image->levelCount(), 5U);
      const auto pixels = readByGdal(path_, 3).pixels;
      EXPECT_GT(*std::min_element(pixels.begin(), pixels.end()), 0);
      EXPECT_EQ(names().size(), 2U);
    } else {
      expectNothingLeft();
    }
  }
  EXPECT_GT(killed, 0);
  RecordProperty("killed", killed);
  RecordProperty("whole", whole);
}

TEST_F(PyramidFaults, NoRoomOnTheDisk) {
  // A limit on the size of files makes writing fail at that point, as a full disk does.
  for (const rlim_t limit :
       {rlim_t(0), rlim_t(100), rlim_t(300000), rlim_t(6000000), rlim_t(7550000)}) {
    const pid_t child = inChild([&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit most{limit, limit};
      if (setrlimit(RLIMIT_FSIZE, &most) != 0) return 3;
      const auto image = RasterImage::open(path_, {{folderOf(path_), ""}, true});
      std::string note;
      const Status built = image.value()->buildPyramid({folderOf(path_), ""}, nullptr, note);
      if (built) return 0;
      const bool clear = built.message().find(path_) != std::string::npos &&
                         built.message().find("too large") != std::string::npos;
      std::vector<uint8_t> out(300);
      ReadCounts counts;
      const bool readable =
          image.value()->read({0, 0, 30, 30, 10, 10}, false, out.data(), counts).isOk();
      return clear && readable ? 1 : 2;
    });
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 1) << "limit " << limit;
    expectNothingLeft();
  }
}

TEST_F(PyramidFaults, StoppedByTheUser) {
  const auto image = openImage(path_);
  std::string note;
  double last = 0;
  const Status built = image->buildPyramid(
      {folderOf(path_), ""},
      [&](double part) {
        EXPECT_GT(part, last);
        last = part;
        return part < 0.5;
      },
      note);
  EXPECT_FALSE(built);
  EXPECT_NE(built.message().find("stopped"), std::string::npos);
  EXPECT_LT(last, 0.8);
  expectNothingLeft();
}

TEST_F(PyramidFaults, ImageDamagedInTheMiddle) {
  writePicture(path_, texture(3000, 2500, 3), {"GTiff", {"COMPRESS=DEFLATE", "BLOCKYSIZE=50"}});
  std::string bytes = readFile(path_, 1 << 28).value();
  for (size_t i = bytes.size() / 2; i < bytes.size() / 2 + 5000; ++i) bytes[i] = 'x';
  writeText(path_, bytes);
  const Status built = buildFor(path_);
  EXPECT_FALSE(built);
  EXPECT_NE(built.message().find(path_), std::string::npos);
  expectNothingLeft();
}

TEST_F(PyramidFaults, AFolderThatCannotBeWrittenLeadsToTheCache) {
  const std::string cache = scratch_ / "cache";
  for (const char* folder : {"/proc", "/no such folder"}) {
    std::string note;
    const auto image = openImage(path_, cache);
    ASSERT_TRUE(image->buildPyramid({folder, cache}, nullptr, note));
    EXPECT_NE(note.find(cache), std::string::npos);
    EXPECT_TRUE(has(cache));
    EXPECT_EQ(openImage(path_, cache)->levelCount(), 5U);
    EXPECT_EQ(listFolder(cache + "/pyramids").size(), 1U);
    EXPECT_FALSE(has());
    const std::string bytes = readFile(path_, 1 << 28).value();
    writeText(path_, bytes);
    EXPECT_FALSE(has(cache)) << "the cached one is stale";
    ASSERT_TRUE(removeAll(cache));
    EXPECT_FALSE(image->buildPyramid({folder, ""}, nullptr, note)) << "there is no other place";
    EXPECT_FALSE(image->buildPyramid({folder, "/proc/x"}, nullptr, note));
  }
  expectNothingLeft();
}

TEST_F(PyramidFaults, ALivingBuildIsLeftAlone) {
  const std::string folder = buildFolderPath(path_ + ".ovr");
  ASSERT_TRUE(makeFolders(folder));
  {
    FileLock lock;
    ASSERT_TRUE(lock.tryLock(buildLockPath(folder)));
    EXPECT_FALSE(has());
    EXPECT_EQ(fileKind(folder), FileKind::kFolder);
    EXPECT_FALSE(buildFor(path_)) << "two builds of one image";
    EXPECT_EQ(fileKind(folder), FileKind::kFolder);
  }
  EXPECT_FALSE(has());
  expectNothingLeft();
  EXPECT_TRUE(buildFor(path_));
}

}  // namespace
}  // namespace tarn::raster
