// usage: bench_panel IMAGE...
//
// The real window over the real module: how long the panel takes to build its list anew from the
// drawing, until the last of it has arrived at the display server. The view shows no image, so what
// is timed is the list, not the pictures. Every refresh is checked: each image has its row, and
// rows were painted. Beside the time that passed stands the processor time of the program.
#include <QApplication>
#include <QScrollBar>
#include <QTreeWidget>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "afxwin.h"
#include "bench/watch.h"
#include "host/editor/hostapp.h"
#include "host/editor/modules.h"
#include "host/ui/windowinput.h"
#include "host/window/appearance.h"
#include "host/window/canvas.h"
#include "host/window/dialogs.h"
#include "host/window/mainwindow.h"
#include "host/window/windowfrontend.h"

namespace {

using tarn::bench::Took;
using tarn::bench::Watch;

constexpr int kPanel = 1131, kOk = 1, kRefreshes = 40;

/// Counts what is painted in a widget.
class Paints final : public QObject {
 public:
  explicit Paints(QWidget& widget) { widget.installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    count += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
  int count = 0;
};

void report(const char* name, std::vector<Took> all, double Took::*which) {
  std::sort(all.begin(), all.end(),
            [which](const Took& a, const Took& b) { return a.*which < b.*which; });
  std::printf("%s median %.1f, longest %.1f ms", name, all[all.size() / 2].*which,
              all.back().*which);
}

int fail(const char* text) {
  std::fprintf(stderr, "bench_panel: %s\n", text);
  return 1;
}

/// Builds the list anew as the panel's OK does, and paints all that has changed.
void refresh(tarn::host::HostApp& app, CWnd& panel) {
  panel.SendMessage(WM_COMMAND, MAKEWPARAM(kOk, BN_CLICKED));
  app.runQueued();
  QApplication::processEvents();
  QGuiApplication::sync();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc < 2) return std::fprintf(stderr, "usage: bench_panel IMAGE...\n"), 2;
  tarn::host::applyAppearance(application);
  tarn::host::WindowFrontEnd frontEnd;
  tarn::host::DialogBackend dialogs;
  const char* profile = std::getenv("TARN_PROFILE");
  tarn::host::HostApp app(frontEnd, dialogs, profile != nullptr ? profile : "/tmp");
  tarn::host::MainWindow window(app, frontEnd, dialogs);
  window.showFullScreen();
  for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
    const tarn::Status loaded = tarn::host::loadModule(std::string(TARN_BIN_DIR "/") + name);
    if (!loaded) return fail(loaded.message().c_str());
  }
  app.runLine("OpenImageList");
  QApplication::processEvents();
  CWnd* panel = tarn::host::dialogOf(kPanel);
  auto* tree = window.findChild<QTreeWidget*>();
  if (panel == nullptr || tree == nullptr) return fail("the panel is not there");

  const std::vector<std::string> images(argv + 1, argv + argc);
  const Watch adding;
  tarn::host::dropFiles(*panel, images);
  app.runQueued();
  QApplication::processEvents();
  const Took added = adding.took();
  std::printf("%zu images dropped on the panel: %.0f ms; processor %.0f ms\n", images.size(),
              added.passed, added.worked);
  app.runLine("ZOOM C 0,0 1");
  QApplication::processEvents();

  const Paints paints(*tree->viewport());
  std::vector<Took> all;
  for (int i = 0; i < kRefreshes; ++i) {
    const int before = paints.count;
    // An emptied tree shows that the rows below are new ones.
    tree->clear();
    tree->verticalScrollBar()->setValue(0);
    const Watch watch;
    refresh(app, *panel);
    all.push_back(watch.took());
    const QTreeWidgetItem* root = tree->topLevelItem(0);
    if (root == nullptr || root->childCount() != static_cast<int>(images.size()))
      return fail("the list does not have every image");
    if (paints.count == before) return fail("the list was not painted");
  }
  report("list anew:", all, &Took::passed);
  report("; processor", all, &Took::worked);
  std::printf(" (%d refreshes of %zu images)\n", kRefreshes, images.size());
  return 0;
}
