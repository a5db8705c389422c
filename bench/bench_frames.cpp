// usage: bench_frames DRAWING.dxf [FRAMES]
//
// The real window over the real module: how long a drawing takes to its first picture, and how long
// a frame takes while it is panned and zoomed over pictures that are already there. A frame is one
// mouse event, the painting it brings and its arrival at the display server. Beside the time that
// passed stands the processor time of the program, which other work on the machine does not change.
#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "base/file.h"
#include "bench/watch.h"
#include "host/editor/drawingfiles.h"
#include "host/editor/hostapp.h"
#include "host/editor/modules.h"
#include "host/editor/sysvars.h"
#include "host/window/appearance.h"
#include "host/window/canvas.h"
#include "host/window/dialogs.h"
#include "host/window/mainwindow.h"
#include "host/window/windowfrontend.h"

namespace {

using tarn::bench::Took;
using tarn::bench::Watch;
using tarn::host::Canvas;

constexpr double kOneOfSixty = 1000.0 / 60;  ///< milliseconds

void show(Canvas& canvas) {
  canvas.repaint();
  QGuiApplication::sync();
}

void reportOne(const char* name, std::vector<Took> frames, double Took::*which) {
  std::sort(frames.begin(), frames.end(),
            [which](const Took& a, const Took& b) { return a.*which < b.*which; });
  std::printf("%s median %.2f, 95 of 100 within %.2f, longest %.2f ms", name,
              frames[frames.size() / 2].*which, frames[frames.size() * 95 / 100].*which,
              frames.back().*which);
}

void report(const char* name, const std::vector<Took>& frames) {
  reportOne(name, frames, &Took::passed);
  reportOne("; processor", frames, &Took::worked);
  const auto inTime = std::count_if(frames.begin(), frames.end(),
                                    [](const Took& one) { return one.passed <= kOneOfSixty; });
  std::printf("; %.1f of 100 within a sixtieth of a second (%zu frames)\n",
              100.0 * static_cast<double>(inTime) / static_cast<double>(frames.size()),
              frames.size());
  if (std::getenv("TARN_EACH_FRAME") == nullptr) return;
  for (const Took& frame : frames) std::printf(" %.1f", frame.worked);
  std::printf("\n");
}

std::vector<Took> timed(Canvas& canvas, int frames, const std::function<void(int)>& event) {
  std::vector<Took> all;
  for (int i = 0; i < frames; ++i) {
    const Watch watch;
    event(i);
    show(canvas);
    all.push_back(watch.took());
  }
  return all;
}

void sendMouse(Canvas& canvas, QEvent::Type type, QPoint at, Qt::MouseButton button) {
  const Qt::MouseButtons held =
      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MiddleButton;
  QMouseEvent event(type, at, canvas.mapToGlobal(at), button, held, Qt::NoModifier);
  QApplication::sendEvent(&canvas, &event);
}

/// A hand that goes round with the middle button down: a hundred frames end where they began.
std::vector<Took> pan(Canvas& canvas, int frames) {
  QPoint at = canvas.rect().center();
  sendMouse(canvas, QEvent::MouseButtonPress, at, Qt::MiddleButton);
  auto all = timed(canvas, frames, [&](int i) {
    const QPoint along = i / 25 % 2 == 0 ? QPoint(11, 2) : QPoint(-3, 7);
    at += i / 25 % 4 < 2 ? along : -along;
    sendMouse(canvas, QEvent::MouseMove, at, Qt::NoButton);
  });
  sendMouse(canvas, QEvent::MouseButtonRelease, at, Qt::MiddleButton);
  return all;
}

/// The wheel turned eight notches in and eight out, at changing places.
std::vector<Took> zoom(Canvas& canvas, int frames) {
  return timed(canvas, frames, [&](int i) {
    const QPoint at(canvas.width() * (3 + i / 16 % 5) / 10, canvas.height() * (3 + i / 16 % 3) / 8);
    QWheelEvent event(at, canvas.mapToGlobal(at), {}, {0, i % 16 < 8 ? 120 : -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
  });
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_frames DRAWING.dxf [FRAMES]\n");
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const int frames = argc > 2 ? std::max(20, std::atoi(argv[2])) : 400;
  tarn::host::applyAppearance(application);
  tarn::host::WindowFrontEnd frontEnd;
  tarn::host::DialogBackend dialogs;
  const char* profile = std::getenv("TARN_PROFILE");
  tarn::host::HostApp app(frontEnd, dialogs, profile != nullptr ? profile : "/tmp");
  tarn::host::MainWindow window(app, frontEnd, dialogs);
  window.showFullScreen();
  for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
    const tarn::Status loaded = tarn::host::loadModule(std::string(TARN_BIN_DIR "/") + name);
    if (!loaded) std::fprintf(stderr, "%s\n", loaded.message().c_str());
  }
  QApplication::processEvents();
  Canvas& canvas = window.canvas();
  canvas.setMinimumSize(1920, 1080);
  QApplication::processEvents();
  show(canvas);

  const Watch opening;
  const tarn::Status opened = tarn::host::openDrawing(app, tarn::absolutePath(argv[1]));
  if (!opened) {
    std::fprintf(stderr, "%s\n", opened.message().c_str());
    return 1;
  }
  app.runQueued();
  show(canvas);
  const Took took = opening.took();
  std::printf("canvas %dx%d\nopen and first picture %.0f ms; processor %.0f ms\n", canvas.width(),
              canvas.height(), took.passed, took.worked);
  // Pictures that are there only move: none is fetched anew, however slow the machine is today.
  app.variables().set("REGENMODE", short{0});
  // Once near, where details are seen, and once with everything in view.
  for (const auto& [name, factor] : {std::pair{"all", 1.0}, std::pair{"near", 6.0}}) {
    app.zoomExtents();
    app.zoomAt({canvas.width() / 2.0, canvas.height() / 2.0}, factor);
    const Watch watch;
    app.regenerate();
    show(canvas);
    const Took regenerated = watch.took();
    std::printf("view: %s; regenerated in %.0f ms; processor %.0f ms\n", name, regenerated.passed,
                regenerated.worked);
    report("pan", pan(canvas, frames));
    report("zoom", zoom(canvas, frames));
  }
  return 0;
}
