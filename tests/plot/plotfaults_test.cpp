// Plots that the system does not let end.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include "base/file.h"
#include "base/path.h"
#include "tests/plot/plotfixture.h"

namespace tarn::test {
namespace {

std::string wholePlot(const std::string& file) {
  return plotScript("Extents", "Fit", "Center", "0", "PDF", file);
}

TEST_F(Plot, ADiskThatIsFullKeepsTheOldFile) {
  const std::string pdf = at("kept.pdf");
  ASSERT_TRUE(writeFileAtomically(pdf, "the old plot"));
  const std::string script = at("plot.scr");
  ASSERT_TRUE(writeFileAtomically(script, wholePlot(pdf)));
  const std::vector<std::string> before = listFolder(scratch_->folder());
  const Outcome outcome = runProgram(
      "/usr/bin/prlimit", {"--fsize=60000", joinPath(TARN_BIN_DIR, "cadhost"), "--headless",
                           "--profile", at("profile"), "--script", script, at("smooth.tif")});
  EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
  EXPECT_NE(outcome.output.find("cannot write: File too large"), std::string::npos)
      << outcome.output;
  EXPECT_EQ(readFile(pdf, 1000).take(), "the old plot");
  EXPECT_EQ(listFolder(scratch_->folder()), before);
}

TEST_F(Plot, WithoutTheRightToWriteNothingIsPlotted) {
  const std::string folder = at("locked");
  ASSERT_TRUE(makeFolders(folder));
  const std::string old = joinPath(folder, "old.pdf");
  ASSERT_TRUE(writeFileAtomically(old, "the old plot"));
  ASSERT_EQ(::chmod(old.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
  const std::string fresh = joinPath(folder, "fresh.pdf");
  for (const std::string& file : {old, fresh}) {
    // Root may write everywhere but over a file that nobody may write to.
    if (::geteuid() == 0 && file == fresh) continue;
    const Outcome outcome = run(wholePlot(file));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.output.find(file + ": "), std::string::npos) << outcome.output;
  }
  EXPECT_EQ(readFile(old, 1000).take(), "the old plot");
  EXPECT_EQ(::chmod(folder.c_str(), 0755), 0);
}

TEST_F(Plot, KilledAtAnyMomentItLeavesTheOldFileOrNone) {
  const std::string fresh = at("killed.pdf");
  const std::string old = at("killed_old.pdf");
  const std::string script = at("killed.scr");
  ASSERT_TRUE(writeFileAtomically(script, wholePlot(fresh) + wholePlot(old)));
  const std::vector<std::string> words = {"--headless", "--profile", at("profile"),
                                          "--script",   script,      at("smooth.tif")};
  QStringList arguments;
  for (const std::string& word : words) arguments << QString::fromStdString(word);
  const auto isWhole = [](const std::string& file) {
    const std::string bytes = readFile(file, 1u << 28).take();
    return bytes.compare(0, 5, "%PDF-") == 0 && bytes.find("%%EOF", bytes.size() - 8) != bytes.npos;
  };
  QElapsedTimer timer;
  timer.start();
  ASSERT_EQ(runProgram("cadhost", words).exitCode, 0);
  const qint64 whole = timer.elapsed();
  ASSERT_TRUE(isWhole(fresh) && isWhole(old));
  constexpr int kPoints = 20;
  for (int point = 1; point <= kPoints; ++point) {
    SCOPED_TRACE(point);
    ASSERT_TRUE(removeAll(fresh));
    ASSERT_TRUE(writeFileAtomically(old, "the old plot"));
    QProcess process;
    process.start(TARN_BIN_DIR "/cadhost", arguments);
    ASSERT_TRUE(process.waitForStarted());
    QThread::msleep(static_cast<unsigned long>(whole * point / (kPoints + 1)));
    ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
    process.waitForFinished();
    EXPECT_TRUE(fileKind(fresh) == FileKind::kMissing || isWhole(fresh));
    EXPECT_TRUE(readFile(old, 1u << 28).take() == "the old plot" || isWhole(old));
  }
}

}  // namespace
}  // namespace tarn::test
