// usage: bench_entities [ENTITIES] [ROUNDS] [FIGURE]
//
// A drawing of 100,000 entities as a surveyor leaves it, all in view at 1920 x 1080, in a host
// without a window: how long it takes to draw all of them anew, to paint them, and to find those in
// a window and those that a window crosses. Beside the time that passed stands the processor time,
// which other work on the machine does not change. With a figure's first word only that is
// measured.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "dbcurve.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/editor/commandlineui.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/picking.h"
#include "host/editor/regenerator.h"
#include "host/graphics/renderer.h"
#include "host/headless/headlessfrontend.h"

namespace {

using tarn::host::HostApp;

constexpr double kWide = 3000;
constexpr double kHigh = 1600;

AcDbEntity* make(int number, std::mt19937& random) {
  const auto upTo = [&](double limit) {
    return std::uniform_real_distribution<>(0, limit)(random);
  };
  const AcGePoint3d at(40500000 + upTo(kWide), 3512000 + upTo(kHigh), 0);
  const int kind = number % 20;
  if (kind < 9) return new AcDbLine(at, at + AcGeVector3d(upTo(60) - 30, upTo(60) - 30, 0));
  if (kind < 14) {
    auto* line = new AcDbPolyline;
    double angle = upTo(7);
    double x = at.x;
    double y = at.y;
    for (int i = 0; i < 12; ++i) {
      line->addVertex(x, y);
      angle += upTo(1.2) - 0.6;
      x += 6 * std::cos(angle);
      y += 6 * std::sin(angle);
    }
    return line;
  }
  if (kind < 17) return new AcDbText(at, std::to_wstring(number).c_str(), 1.8, upTo(1.5));
  if (kind < 19) return new AcDbCircle(at, AcGeVector3d::kZAxis, 0.5 + upTo(5));
  return new AcDbPoint(at);
}

std::string onlyFigure;  // empty for all

void fill(AcDbDatabase& database, int count) {
  std::mt19937 random(20);
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  database.getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  for (int i = 0; i < count; ++i) {
    AcDbEntity* entity = make(i, random);
    space->appendAcDbEntity(entity);
    entity->close();
  }
  space->close();
  blocks->close();
}

void report(const char* name, int rounds, const std::function<void()>& work) {
  if (std::strncmp(name, onlyFigure.c_str(), onlyFigure.size()) != 0) return;
  std::vector<double> passed;
  std::vector<double> worked;
  for (int i = 0; i < rounds; ++i) {
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t clock = std::clock();
    work();
    worked.push_back(1000.0 * static_cast<double>(std::clock() - clock) / CLOCKS_PER_SEC);
    const auto end = std::chrono::steady_clock::now();
    passed.push_back(std::chrono::duration<double, std::milli>(end - start).count());
  }
  std::sort(passed.begin(), passed.end());
  std::sort(worked.begin(), worked.end());
  const auto middle = static_cast<size_t>(rounds) / 2;
  std::printf("%-24s median %7.1f ms, longest %7.1f ms; processor median %7.1f ms\n", name,
              passed[middle], passed.back(), worked[middle]);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100000;
  const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 15;
  if (argc > 3) onlyFigure = argv[3];
  std::ostringstream transcript;
  tarn::host::HeadlessFrontEnd frontEnd(transcript, false);
  tarn::host::CommandLineUi ui;
  HostApp app(frontEnd, ui, "");
  fill(*app.documents().current().database(), count);
  tarn::host::HostDocument& document = app.documents().current();
  tarn::host::ViewState view = document.view();
  view.pixelWidth = 1920;
  view.pixelHeight = 1080;
  view.centerX = 40500000 + kWide / 2;
  view.centerY = 3512000 + kHigh / 2;
  view.height = kWide * 1080 / 1920 * 1.05;
  document.space().setView(view);
  app.regenerate();
  std::printf("%zu entities in view\n", document.scene().size());
  report("regeneration", rounds, [&] { app.regenerate(); });
  QImage picture(1920, 1080, QImage::Format_RGB32);
  report("painting", rounds, [&] {
    QPainter painter(&picture);
    tarn::host::render(painter, document.scene(), view, tarn::host::RenderStyle());
  });
  const auto select = [&](double share, bool crossing) {
    const tarn::host::GroundPoint a{view.centerX - kWide * share / 2,
                                    view.centerY - kHigh * share / 2};
    const tarn::host::GroundPoint b{view.centerX + kWide * share / 2,
                                    view.centerY + kHigh * share / 2};
    return tarn::host::entitiesInWindow(app, a, b, crossing).size();
  };
  for (const double share : {1.1, 0.6, 0.1}) {
    for (const bool crossing : {false, true}) {
      size_t found = 0;
      char name[64];
      std::snprintf(name, sizeof name, "%s of %.1f", crossing ? "crossing" : "window", share);
      report(name, rounds, [&] { found = select(share, crossing); });
      std::printf("  %zu found\n", found);
    }
  }
  return 0;
}
