#include "tests/support/program.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <utility>

#include "base/file.h"
#include "base/path.h"

namespace tarn::test {

Scratch::Scratch(const std::string& prefix)
    : folder_(makeTemporaryFolder(QDir::tempPath().toStdString(), prefix).take()) {}

Scratch::~Scratch() {
  static_cast<void>(removeAll(folder_));
}

std::string Scratch::at(const std::string& name) const {
  return joinPath(folder_, name);
}

Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& input, int limitSeconds) {
  QStringList words;
  for (const std::string& argument : arguments) words << QString::fromStdString(argument);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  environment.remove("WAYLAND_DISPLAY");
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setProcessChannelMode(QProcess::MergedChannels);
  const QString path =
      QStandardPaths::findExecutable(QString::fromStdString(program), {TARN_BIN_DIR});
  if (path.isEmpty()) return {kNoSuchProgram, program + ": there is no such program here\n"};
  process.start(path, words);
  process.write(input.data(), static_cast<qint64>(input.size()));
  process.closeWriteChannel();
  Outcome outcome;
  if (!process.waitForFinished(limitSeconds * 1000)) {
    process.kill();
    process.waitForFinished();
    outcome.output = "[no end within the time limit]\n";
  }
  outcome.output += process.readAll().toStdString();
  outcome.exitCode =
      process.exitStatus() == QProcess::NormalExit ? process.exitCode() : 128 + process.exitCode();
  return outcome;
}

Outcome runCadhost(const Scratch& scratch, std::vector<std::string> arguments,
                   const std::string& input, int limitSeconds) {
  arguments.insert(arguments.begin(), {"--headless", "--profile", scratch.at("profile")});
  return runProgram("cadhost", arguments, input, limitSeconds);
}

}  // namespace tarn::test
