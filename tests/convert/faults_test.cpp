// Conversions that cannot end well: nothing is left behind, what stood there stays.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QProcess>
#include <algorithm>

#include "base/file.h"
#include "base/filelock.h"
#include "base/path.h"
#include "components/convert/batch.h"
#include "components/convert/converter.h"
#include "components/raster/buildfolder.h"
#include "tests/raster/testimages.h"

namespace tarn::convert {
namespace {

struct Way {
  const char* name;
  Format format;
  Compression compression;
};
const Way kWays[] = {{"tiles", Format::kGeoTiff, Compression::kNone},
                     {"spooled tiles", Format::kCloudTiff, Compression::kZstd},
                     {"blocks", Format::kImg, Compression::kNone},
                     {"driver", Format::kGeoTiff, Compression::kLzw},
                     {"rows", Format::kJpeg, Compression::kNone}};

class ConversionFaults : public ::testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    input_ = scratch_ / "a.tif";
    raster::writePicture(input_, raster::texture(1100, 900, 3));
    options_.format = GetParam().format;
    options_.compression = GetParam().compression;
    options_.existing = Existing::kOverwrite;
    ASSERT_TRUE(makeFolders(scratch_ / "out"));
    output_ = scratch_ / ("out/a" + extensionFor(options_.format));
  }
  /// The same conversion by the program: threads of libraries do not live on in a forked child.
  QStringList words() const {
    const auto word = [](const char* option, auto value) {
      return QString("--%1=%2").arg(option).arg(
          QString::fromStdString(wordsOf(option)[static_cast<size_t>(value)]));
    };
    return {word("format", options_.format), word("compression", options_.compression),
            "--existing=overwrite", QString::fromStdString("--out=" + (scratch_ / "out")),
            QString::fromStdString(input_)};
  }
  std::vector<std::string> names() const { return listFolder(scratch_ / "out"); }

  raster::Scratch scratch_;
  std::string input_;
  std::string output_;
  Options options_;
};

TEST_P(ConversionFaults, KilledAtAnyMoment) {
  int killed = 0;
  for (int moment = 0; moment < 4; ++moment) {
    ASSERT_TRUE(removeAll(output_));
    QProcess program;
    program.start(QString::fromStdString(joinPath(TARN_BIN_DIR, "tarnconvert")), words());
    ASSERT_TRUE(program.waitForStarted());
    usleep(15000U + static_cast<unsigned>(moment * moment) * 3000U);
    program.kill();
    ASSERT_TRUE(program.waitForFinished());
    killed += program.exitStatus() == QProcess::CrashExit ? 1 : 0;
    // Either nothing, or a whole file: a new run has nothing to do or does it all.
    const bool there = fileKind(output_) != FileKind::kMissing;
    const auto again = convertImage(input_, output_, options_, nullptr);
    ASSERT_TRUE(again) << again.message();
    EXPECT_EQ(again.value().outcome, there ? Outcome::kCurrent : Outcome::kConverted);
    for (const std::string& name : names()) EXPECT_EQ(name.find(".tarn"), std::string::npos);
  }
  EXPECT_GT(killed, 0);
}

TEST_P(ConversionFaults, StoppedOrOutOfRoomKeepsWhatWasThere) {
  raster::writeText(output_, "the old file");
  // A stop at several moments.
  for (const int calls : {1, 3}) {
    int left = calls;
    const auto stopped =
        convertImage(input_, output_, options_, [&left](double) { return --left > 0; });
    // So quick that nobody asked any more: all that was made goes again.
    if (stopped) {
      for (const std::string& name : names()) {
        ASSERT_TRUE(removeAll(joinPath(folderOf(output_), name)));
      }
      raster::writeText(output_, "the old file");
    }
    EXPECT_EQ(readFile(output_, 100).value(), "the old file");
  }
  // A disk that fills: no file may grow beyond a part of the output.
  QStringList limited = {"-c", "ulimit -f 300; exec \"$0\" \"$@\"",
                         QString::fromStdString(joinPath(TARN_BIN_DIR, "tarnconvert"))};
  QProcess program;
  program.setProcessChannelMode(QProcess::MergedChannels);
  program.start("/bin/bash", limited + words());
  ASSERT_TRUE(program.waitForFinished(60000));
  EXPECT_EQ(program.exitCode(), 1);
  EXPECT_NE(program.readAll().toStdString().find(input_ + ": was not converted: "),
            std::string::npos);
  EXPECT_EQ(readFile(output_, 100).value(), "the old file");
  EXPECT_EQ(names(), std::vector<std::string>{nameOf(output_)});
}

TEST_P(ConversionFaults, AnImageThatChangesMeanwhileIsNotConverted) {
  const auto done = convertImage(input_, output_, options_, [this](double) {
    raster::writeText(input_, "another file");
    return true;
  });
  EXPECT_FALSE(done);
  EXPECT_NE(done.message().find(input_), std::string::npos) << done.message();
  EXPECT_TRUE(names().empty());
  ASSERT_TRUE(removeAll(input_));
  const auto missing = convertImage(input_, output_, options_, nullptr);
  EXPECT_FALSE(missing);
  EXPECT_TRUE(names().empty());
}

TEST_P(ConversionFaults, AnImageRemovedMeanwhileIsNamedAndTheNextIsConverted) {
  class Remover final : public BatchObserver {
   public:
    explicit Remover(std::string image) : image_(std::move(image)) {}
    void started(size_t) override {}
    bool moved(size_t item, double part) override {
      if (item == 0 && part > 0) removed = removeAll(image_).isOk();
      return true;
    }
    void finished(size_t, const ItemResult& result) override { results.push_back(result); }
    std::vector<ItemResult> results;
    bool removed = false;

   private:
    std::string image_;
  };
  const std::string next = scratch_ / "next.tif";
  raster::writePicture(next, raster::smooth(300, 200, 3));
  options_.folder = scratch_ / "out";
  Remover observer(input_);
  const Summary summary = runBatch(planItems({input_, next}, options_), options_, observer);
  ASSERT_TRUE(observer.removed);
  ASSERT_EQ(observer.results.size(), 2U);
  EXPECT_EQ(observer.results[0].state, State::kFailed);
  EXPECT_EQ(observer.results[0].message.find(input_ + ": "), 0U) << observer.results[0].message;
  EXPECT_EQ(observer.results[1].state, State::kConverted) << observer.results[1].message;
  EXPECT_EQ(summary.text(), "1 converted, 1 failed");
  for (const std::string& name : names()) EXPECT_EQ(name.find("next."), 0U) << name;
}

TEST_P(ConversionFaults, AnotherMakerOfTheSameFileIsLeftAlone) {
  const std::string folder = raster::buildFolderPath(output_);
  ASSERT_TRUE(makeFolders(folder));
  FileLock lock;
  ASSERT_TRUE(lock.tryLock(raster::buildLockPath(folder)));
  EXPECT_FALSE(convertImage(input_, output_, options_, nullptr));
  EXPECT_EQ(fileKind(folder), FileKind::kFolder);
}

INSTANTIATE_TEST_SUITE_P(Ways, ConversionFaults, ::testing::ValuesIn(kWays), [](const auto& way) {
  std::string name = way.param.name;
  name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
  return name;
});

TEST(ConversionPlaces, WhatIsCurrentStaysAndTheRestIsAQuestionOfTheOption) {
  const raster::Scratch scratch;
  const std::string input = scratch / "in/a.tif", output = scratch / "a.tif";
  ASSERT_TRUE(makeFolders(scratch / "in"));
  raster::writePicture(input, raster::smooth(300, 200, 3));
  Options options;
  const auto convert = [&](Existing existing) {
    options.existing = existing;
    return convertImage(input, output, options, nullptr);
  };
  ASSERT_EQ(convert(Existing::kSkip).value().outcome, Outcome::kConverted);
  for (const Existing existing : {Existing::kSkip, Existing::kOverwrite, Existing::kRename})
    EXPECT_EQ(convert(existing).value().outcome, Outcome::kCurrent);

  options.compression = Compression::kNone;
  EXPECT_EQ(convert(Existing::kSkip).value().outcome, Outcome::kSkipped) << "other options";
  const auto renamed = convert(Existing::kRename);
  EXPECT_EQ(renamed.value().outcome, Outcome::kConverted);
  EXPECT_EQ(renamed.value().path, scratch / "a_2.tif");
  EXPECT_EQ(convert(Existing::kRename).value().outcome, Outcome::kCurrent);

  raster::writePicture(input, raster::smooth(310, 200, 3));
  EXPECT_EQ(convert(Existing::kSkip).value().outcome, Outcome::kSkipped) << "another image";
  raster::writeText(output + ".aux.xml",
                    "<PAMDataset><GeoTransform>0,9,0,0,0,9</GeoTransform>"
                    "</PAMDataset>");
  EXPECT_EQ(convert(Existing::kOverwrite).value().outcome, Outcome::kConverted);
  EXPECT_EQ(raster::readByGdal(output).width, 310);
  EXPECT_EQ(fileKind(output + ".aux.xml"), FileKind::kMissing) << "belonged to the old file";

  const auto itself = convertImage(input, input, options, nullptr);
  EXPECT_FALSE(itself);
  EXPECT_NE(itself.message().find("would be replaced by its own conversion"), std::string::npos);
}

}  // namespace
}  // namespace tarn::convert
