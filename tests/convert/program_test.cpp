// tarnconvert as a user runs it.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <map>
#include <set>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tests/raster/testimages.h"
#include "tests/support/program.h"

namespace tarn::convert {
namespace {

using test::Outcome;
using test::runProgram;

/// The lines of JSON in what a program wrote, by the names of their inputs.
std::map<std::string, QJsonObject> linesOf(const std::string& output) {
  std::map<std::string, QJsonObject> lines;
  for (const std::string& line : split(output, '\n')) {
    if (line.empty() || line[0] != '{') continue;
    const QJsonDocument json = QJsonDocument::fromJson(QByteArray::fromStdString(line));
    EXPECT_TRUE(json.isObject()) << line;
    lines[nameOf(json.object()["input"].toString().toStdString())] = json.object();
  }
  return lines;
}

std::string stateOf(const std::map<std::string, QJsonObject>& lines, const std::string& name) {
  const auto found = lines.find(name);
  return found == lines.end() ? "not reported" : found->second["state"].toString().toStdString();
}

TEST(Program, GoesOnAfterBadImagesAndSaysWhatWasWrong) {
  const test::Scratch scratch("tarnconvert");
  const std::string deep = scratch.at(std::string(120, 'x') + "/" + std::string(120, 'y'));
  ASSERT_TRUE(makeFolders(deep));
  ASSERT_TRUE(makeFolders(scratch.at("正射影像 🛰")));
  const raster::Picture picture = raster::smooth(80, 60, 3);
  const std::string good[] = {scratch.at("a.tif"), scratch.at("正射影像 🛰/图幅 1.tif"),
                              deep + "/" + std::string(60, 'z') + ".tif", scratch.at("q\"\n.tif")};
  for (const std::string& path : good) raster::writePicture(path, picture);
  raster::writeText(scratch.at("text.tif"), "no image at all");
  raster::writeText(scratch.at("empty.img"), "");
  const Outcome run = runProgram(
      "tarnconvert", {"--out", scratch.at("out"), "--compression=none", good[0], good[1], good[2],
                      good[3], good[0], scratch.at("text.tif"), scratch.at("empty.img"),
                      scratch.at("missing.tif"), scratch.at("none*.tif")});
  EXPECT_EQ(run.exitCode, 1);
  const auto lines = linesOf(run.output);
  for (int i = 1; i < 4; ++i) {
    EXPECT_EQ(stateOf(lines, nameOf(good[i])), "converted") << run.output;
    EXPECT_EQ(fileKind(joinPath(scratch.at("out"), nameOf(good[i]))), FileKind::kRegular);
  }
  for (const char* bad : {"text.tif", "empty.img", "missing.tif", "none*.tif"}) {
    EXPECT_EQ(stateOf(lines, bad), "failed");
    EXPECT_NE(run.output.find("tarnconvert: " + scratch.at(bad) + ": "), std::string::npos) << bad;
  }
  EXPECT_NE(run.output.find("a.tif: is named twice"), std::string::npos);
  EXPECT_NE(run.output.find("tarnconvert: 4 converted, 5 failed"), std::string::npos) << run.output;
  EXPECT_EQ(listFolder(scratch.at("out")).size(), 4U);

  // The list may come from a pipe; what is whole is left alone.
  const Outcome again =
      runProgram("tarnconvert", {"--out", scratch.at("out"), "--compression", "none", "-"},
                 good[0] + "\r\n\n" + good[1] + "\n");
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_NE(again.output.find("tarnconvert: 2 current"), std::string::npos) << again.output;
}

/// The superuser may do everything, so the program runs as somebody who may not.
std::vector<std::string> asNobody() {
  if (::geteuid() != 0) return {};
  return {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
}

TEST(Program, OneImageThatFailsLeavesNothingAndTheNextIsConverted) {
  const struct {
    const char* name;
    std::vector<std::string> runner;
    const char* locked;  ///< beside the two images; nobody may use it
    mode_t rights;
    const char* reason;
  } cases[] = {
      {"a disk that fills", {"/usr/bin/prlimit", "--fsize=400000"}, nullptr, 0, "bad.tif"},
      {"an image that nobody may read", asNobody(), "1/bad.tif", 0, "denied"},
      {"a folder that nobody may write", asNobody(), "1", 0555, "cannot be written"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    const test::Scratch scratch("tarnconvert");
    for (const char* folder : {"1", "2"}) {
      ASSERT_TRUE(makeFolders(scratch.at(folder)));
      ASSERT_EQ(::chmod(scratch.at(folder).c_str(), 0777), 0);
    }
    ASSERT_EQ(::chmod(scratch.folder().c_str(), 0777), 0);
    const std::string bad = scratch.at("1/bad.tif"), good = scratch.at("2/good.tif");
    raster::writePicture(bad, raster::texture(1100, 900, 3));
    raster::writePicture(good, raster::smooth(80, 60, 3));
    if (one.locked != nullptr) {
      ASSERT_EQ(::chmod(scratch.at(one.locked).c_str(), one.rights), 0);
    }

    std::vector<std::string> words = one.runner;
    for (const std::string& word :
         {joinPath(TARN_BIN_DIR, "tarnconvert"), std::string("--format=img"), bad, good})
      words.push_back(word);
    const std::string program = words.front();
    words.erase(words.begin());
    const Outcome run = runProgram(program, words);
    if (run.exitCode == 127 || run.exitCode == 126) GTEST_SKIP() << run.output;
    EXPECT_EQ(run.exitCode, 1) << run.output;
    const auto lines = linesOf(run.output);
    EXPECT_EQ(stateOf(lines, "bad.tif"), "failed") << run.output;
    EXPECT_EQ(stateOf(lines, "good.tif"), "converted") << run.output;
    const size_t said = run.output.find("tarnconvert: " + bad + ": ");
    ASSERT_NE(said, std::string::npos) << run.output;
    EXPECT_NE(run.output.find(one.reason, said), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("tarnconvert: 1 converted, 1 failed"), std::string::npos);
    EXPECT_EQ(listFolder(scratch.at("1")), std::vector<std::string>{"bad.tif"});
    EXPECT_EQ(fileKind(scratch.at("2/good.img")), FileKind::kRegular);
  }
}

TEST(Program, RefusesFoldersWithoutRightsAndWrongUsage) {
  const test::Scratch scratch("tarnconvert");
  raster::writePicture(scratch.at("a.tif"), raster::smooth(80, 60, 3));
  const Outcome proc = runProgram("tarnconvert", {"--out", "/proc/nothing", scratch.at("a.tif")});
  EXPECT_EQ(proc.exitCode, 1);
  EXPECT_NE(proc.output.find("/proc/nothing"), std::string::npos) << proc.output;
  raster::writeText(scratch.at("file"), "x");
  EXPECT_EQ(runProgram("tarnconvert", {"--out", scratch.at("file"), scratch.at("a.tif")}).exitCode,
            1);
  ASSERT_TRUE(makeFolders(scratch.at("no images")));
  EXPECT_EQ(runProgram("tarnconvert", {scratch.at("no images")}).exitCode, 1);
  const std::vector<std::string> wrong[] = {{},
                                            {"--format", "png", "a.tif"},
                                            {"--shard", "5/4", "a.tif"},
                                            {"--shard", "a.tif"},
                                            {"-x", "a.tif"},
                                            {"--nothing", "1", "a.tif"},
                                            {"--out"}};
  for (const auto& words : wrong) {
    const Outcome run = runProgram("tarnconvert", words);
    EXPECT_EQ(run.exitCode, 2) << run.output;
    EXPECT_NE(run.output.find("usage: tarnconvert"), std::string::npos);
  }
  EXPECT_EQ(runProgram("tarnconvert", {"--help"}).exitCode, 0);
}

TEST(Program, FourShardsAtOnceDoEveryImageOnce) {
  const test::Scratch scratch("tarnconvert");
  ASSERT_TRUE(makeFolders(scratch.at("in")));
  constexpr int kImages = 40;
  const raster::Picture picture = raster::smooth(300, 280, 3);
  for (int i = 0; i < kImages; ++i)
    raster::writePicture(scratch.at("in/tile_" + std::to_string(i) + ".tif"), picture);
  QProcess shards[4];
  for (int i = 0; i < 4; ++i) {
    const std::string shard = std::to_string(i + 1) + "/4";
    shards[i].setProcessChannelMode(QProcess::MergedChannels);
    shards[i].start(
        QString::fromStdString(joinPath(TARN_BIN_DIR, "tarnconvert")),
        {"--format", "cog", "--compression", "jpeg", "--shard", QString::fromStdString(shard),
         "--out", QString::fromStdString(scratch.at("out")),
         QString::fromStdString(scratch.at("in"))});
  }
  std::set<std::string> done;
  for (QProcess& shard : shards) {
    ASSERT_TRUE(shard.waitForFinished(120000));
    EXPECT_EQ(shard.exitCode(), 0);
    const auto lines = linesOf(shard.readAll().toStdString());
    EXPECT_GT(lines.size(), 1U);
    for (const auto& [name, line] : lines) {
      EXPECT_EQ(line["state"].toString(), "converted") << name;
      EXPECT_TRUE(done.insert(name).second) << name << " in two shards";
    }
  }
  EXPECT_EQ(done.size(), static_cast<size_t>(kImages));
  EXPECT_EQ(listFolder(scratch.at("out")).size(), static_cast<size_t>(kImages));
  // All of them once more, over the same folder: everything is whole.
  const Outcome again =
      runProgram("tarnconvert", {"--format", "cog", "--compression", "jpeg", "--out",
                                 scratch.at("out"), scratch.at("in/*.tif")});
  EXPECT_NE(again.output.find("40 current"), std::string::npos) << again.output;
}

}  // namespace
}  // namespace tarn::convert
