// The pool of workers, started here as nothing else does, against a source that notes its reads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "_image/updateimagethread.h"
#include "tests/image_entity/recordingdivision.h"

namespace {

using ::testing::ElementsAre;
using Request = UpdateImageThread::Request;

class Workers : public ::testing::Test {
 protected:
  void TearDown() override { UpdateImageThread::request = Request{}; }

  /// Starts the pool and one worker more for a region, and returns the reads in order of text.
  static std::vector<std::string> readsFor(int32_t row, int32_t width, int32_t height) {
    static unsigned char buffer[4096];
    tarn::test::script() = {};
    tarn::test::script().blockBuffer = buffer;
    UpdateImageThread::request = {7,
                                  row,
                                  width,
                                  height,
                                  buffer,
                                  -2.5,
                                  kel::Object<IImageDivision>::adopt(static_cast<IImageDivision*>(
                                      tarn::test::RecordingDivision::create()))};
    UpdateImageThread stranger;
    for (UpdateImageThread& worker : UpdateImageThread::pool) worker.start();
    stranger.start();
    for (UpdateImageThread& worker : UpdateImageThread::pool) worker.wait();
    stranger.wait();
    std::vector<std::string> reads = tarn::test::script().blocks;
    std::sort(reads.begin(), reads.end());
    return reads;
  }
};

TEST_F(Workers, ReadFourStrips) {
  // Worker 1 reads the rows of worker 0; whoever is none of the first three reads the last strip.
  EXPECT_THAT(
      readsFor(100, 10, 8),
      ElementsAre("7 100 10 2 2.5 2.5 at 0", "7 100 10 2 2.5 2.5 at 20", "7 94 10 2 2.5 2.5 at 60",
                  "7 94 10 2 2.5 2.5 at 60", "7 96 10 2 2.5 2.5 at 40"));
  // Rows over when the height is no multiple of four are read by nobody.
  EXPECT_THAT(readsFor(50, 3, 11), ElementsAre("7 42 3 2 2.5 2.5 at 18", "7 42 3 2 2.5 2.5 at 18",
                                               "7 45 3 2 2.5 2.5 at 12", "7 50 3 2 2.5 2.5 at 0",
                                               "7 50 3 2 2.5 2.5 at 6"));
  EXPECT_THAT(readsFor(9, 5, 3), ::testing::Each(::testing::HasSubstr(" 5 0 2.5 2.5 at 0")));
}

TEST_F(Workers, AStoppedOneReadsNothing) {
  UpdateImageThread worker;
  worker.stop();
  tarn::test::script() = {};
  worker.start();
  worker.wait();
  EXPECT_TRUE(tarn::test::script().blocks.empty());
}

}  // namespace
