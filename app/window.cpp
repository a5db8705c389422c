#include <QApplication>
#include <QMetaObject>
#include <QScreen>
#include <iostream>

#include "app/session.h"
#include "app/startinputs.h"
#include "base/program.h"
#include "host/editor/autosave.h"
#include "host/editor/hostapp.h"
#include "host/window/appearance.h"
#include "host/window/canvas.h"
#include "host/window/dialogs.h"
#include "host/window/mainwindow.h"
#include "host/window/windowfrontend.h"

namespace tarn::app {

namespace {

/// Gives the canvas the size of the options, in device pixels, as far as the screen has room.
void fitWindow(host::MainWindow& window, const Options& options) {
  const Options defaults;
  if (options.width != defaults.width || options.height != defaults.height) {
    const double ratio = window.devicePixelRatioF();
    const QSize wanted(qRound(options.width / ratio), qRound(options.height / ratio));
    if (window.isMaximized() || window.isFullScreen()) window.showNormal();
    window.ensurePolished();
    // What stands around the canvas has its height now, not only after the next event.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    window.resize(window.size() + wanted - window.canvas().size());
  }
  if (const QScreen* screen = window.screen()) {
    constexpr int kTitleBar = 40;  // the frame is not known before the window manager has made it
    window.resize(window.size().boundedTo(screen->availableSize() - QSize(0, kTitleBar)));
  }
}

}  // namespace

int runWindow(const Options& options, int& argc, char** argv) {
  closeOwnConsole();
  QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  QApplication::setHighDpiScaleFactorRoundingPolicy(
      Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
  QApplication application(argc, argv);
  QApplication::setApplicationName("Tarn Image");
  QApplication::setApplicationVersion(TARN_VERSION);
  host::applyAppearance(application);

  host::WindowFrontEnd frontEnd;
  host::DialogBackend dialogs;
  if (!options.log.empty()) {
    if (const Status logged = frontEnd.logTo(options.log); !logged) {
      std::cerr << "cadhost: " << logged.message() << "\n";
      return 2;
    }
  }
  const auto inputs = startInputs(options);
  if (!inputs) {
    std::cerr << "cadhost: " << inputs.message() << "\n";
    return 2;
  }
  for (const LineSource& source : inputs.value()) frontEnd.addLines(source);

  const std::string profile = profileFolder(options);
  const Status prepared = prepareProfile(profile);
  host::HostApp app(frontEnd, dialogs, profile);
  host::MainWindow window(app, frontEnd, dialogs);
  speakSystemLanguage(app);
  if (!prepared) app.print("\n" + prepared.message() + "\n");
  if (options.guide) window.showGuide(true);
  window.show();
  fitWindow(window, options);

  bool good = true;
  // The window stands before images are opened, which may take a while.
  const auto start = [&] {
    window.session().perform([&] {
      loadModules(app, QCoreApplication::applicationDirPath().toStdString());
      frontEnd.prepare();
      host::offerRecovery(app);
      good = startDrawing(app, options);
      frontEnd.runLines(app);
      good = endDrawing(app, options) && good;
    });
  };
  QMetaObject::invokeMethod(&window, start, Qt::QueuedConnection);
  const int code = QApplication::exec();
  if (code != 0) return code;
  return good && app.failedCommands() == 0 ? 0 : 1;
}

}  // namespace tarn::app
