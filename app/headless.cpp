#include <QCoreApplication>
#include <QGuiApplication>
#include <fstream>
#include <iostream>
#include <list>

#include "app/session.h"
#include "base/log.h"
#include "host/editor/commandlineui.h"
#include "host/editor/hostapp.h"
#include "host/editor/sysvars.h"
#include "host/headless/headlessfrontend.h"

namespace tarn::app {

namespace {

/// Opens the scripts; false, with a message, when one cannot be read.
bool addInputs(const Options& options, host::HeadlessFrontEnd& frontEnd,
               std::list<std::ifstream>& scripts) {
  for (const StartInput& input : options.inputs) {
    if (input.kind == StartInput::Kind::kCommand) {
      frontEnd.addLine(input.text);
    } else if (input.text == "-") {
      frontEnd.addLines(host::linesOf(std::cin));
    } else {
      std::ifstream& script = scripts.emplace_back(input.text);
      // Reading a folder opens, but gives nothing.
      if (!script || (script.peek(), script.bad())) {
        std::cerr << "cadhost: " << input.text << ": the script cannot be read.\n";
        return false;
      }
      frontEnd.addLines(host::linesOf(script));
    }
  }
  const bool nothingElse =
      options.inputs.empty() && options.images.empty() && options.picture.empty();
  if (nothingElse) frontEnd.addLines(host::linesOf(std::cin));
  return true;
}

/// The toolkit's own remarks mean nothing to the user of a script.
void toLog(QtMsgType, const QMessageLogContext&, const QString& message) {
  logLine(message.toStdString());
}

bool writePicture(host::HostApp& app, const std::string& path) {
  if (path.empty()) return true;
  const std::string fault = app.savePicture(path);
  if (!fault.empty()) app.print("\n" + fault + "\n");
  return fault.empty();
}

}  // namespace

int runHeadless(const Options& options, int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(toLog);
  const QGuiApplication application(argc, argv);
  host::HeadlessFrontEnd::installSignals();
  host::HeadlessFrontEnd frontEnd(std::cout, host::HeadlessFrontEnd::standardOutputIsTerminal());
  host::CommandLineUi ui;
  std::list<std::ifstream> scripts;
  if (!addInputs(options, frontEnd, scripts)) return 2;

  const std::string profile = profileFolder(options);
  const Status prepared = prepareProfile(profile);
  host::HostApp app(frontEnd, ui, profile);
  if (!prepared) app.print("\n" + prepared.message() + "\n");
  app.variables().set("FILEDIA", short{0});
  app.resizeView(options.width, options.height);
  loadModules(app, QCoreApplication::applicationDirPath().toStdString());

  bool good = startDrawing(app, options);
  good = frontEnd.run(app) && good;
  good = writePicture(app, options.picture) && good;
  unloadModules();
  std::cout.flush();
  return good && std::cout ? 0 : 1;
}

}  // namespace tarn::app
