#include <QCoreApplication>
#ifdef TARN_HAS_WINDOW
#include <QApplication>
#else
#include <QGuiApplication>
#endif
#include <iostream>

#include "app/session.h"
#include "app/startinputs.h"
#include "base/log.h"
#include "base/program.h"
#include "host/editor/autosave.h"
#include "host/editor/commandlineui.h"
#include "host/editor/hostapp.h"
#include "host/editor/sysvars.h"
#include "host/headless/headlessfrontend.h"

namespace tarn::app {

namespace {

/// The toolkit's own remarks mean nothing to the user of a script.
void toLog(QtMsgType, const QMessageLogContext&, const QString& message) {
  logLine(message.toStdString());
}

}  // namespace

int runHeadless(const Options& options, int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Without windows the toolkit looks for fonts in one folder only, on systems that have such one.
  if (const std::string fonts = systemFontFolder();
      !fonts.empty() && !qEnvironmentVariableIsSet("QT_QPA_FONTDIR"))
    qputenv("QT_QPA_FONTDIR", QString::fromStdString(fonts).toLocal8Bit());
  qInstallMessageHandler(toLog);
#ifdef TARN_HAS_WINDOW
  // Modules may have dialogs; scripts see none of them but may open them.
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
#else
  const QGuiApplication application(argc, argv);
#endif
  host::HeadlessFrontEnd::installSignals();
  host::HeadlessFrontEnd frontEnd(std::cout, standardOutputIsTerminal());
  host::CommandLineUi ui;
  if (!options.log.empty()) {
    std::cerr
        << "cadhost: --log belongs to the window; here the text goes to the standard output.\n";
    return 2;
  }
  const auto inputs = startInputs(options);
  if (!inputs) {
    std::cerr << "cadhost: " << inputs.message() << "\n";
    return 2;
  }
  for (const LineSource& source : inputs.value()) frontEnd.addLines(source);
  const bool nothingElse = options.inputs.empty() && options.images.empty() &&
                           options.drawings.empty() && options.picture.empty() &&
                           options.save.empty();
  if (nothingElse) frontEnd.addLines(host::linesOf(std::cin));

  const std::string profile = profileFolder(options);
  const Status prepared = prepareProfile(profile);
  host::HostApp app(frontEnd, ui, profile);
  speakSystemLanguage(app);
  if (!prepared) app.print("\n" + prepared.message() + "\n");
  app.variables().set("FILEDIA", short{0});
  app.resizeView(options.width, options.height);
  loadModules(app, QCoreApplication::applicationDirPath().toStdString());

  if (const std::string notice = host::recoveryNotice(app); !notice.empty()) {
    app.print("\n" + notice + "\n");
  }
  bool good = startDrawing(app, options);
  good = frontEnd.run(app) && good;
  good = endDrawing(app, options) && good;
  unloadModules();
  std::cout.flush();
  return good && std::cout ? 0 : 1;
}

}  // namespace tarn::app
