// usage: bench_drawing FILE.dxf [ENTITIES]
//
// A drawing of 450,000 entities (105 MB), made when FILE is missing: from the file to the first
// picture, and saved after one change, as text and as binary. Beside the time that passed stands
// the processor time, which other work on the machine does not change, and the memory beside the
// size of the file.
#include <sys/resource.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <sstream>

#include "base/file.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/commandlineui.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "host/editor/hostapp.h"
#include "host/headless/headlessfrontend.h"

namespace {

/// Entities as text, in a new drawing.
std::string makeDrawing(int count) {
  std::mt19937 random(20);
  const auto upTo = [&](double limit) {
    return std::uniform_real_distribution<>(0, limit)(random);
  };
  std::string out;
  char line[400];
  const auto begin = [&](const char* type, int number, const char* mark) {
    std::snprintf(line, sizeof line,
                  "  0\n%s\n  5\n%X\n330\n18\n100\nAcDbEntity\n  8\nPARCELS%d\n100\n%s\n", type,
                  number + 4096, number % 20, mark);
    out += line;
  };
  for (int i = 0; i < count; ++i) {
    const double x = 40500000 + upTo(3000), y = 3512000 + upTo(1600);
    const int kind = i % 10;
    if (kind < 6) {
      begin("LINE", i, "AcDbLine");
      std::snprintf(line, sizeof line,
                    " 10\n%.6f\n 20\n%.6f\n 30\n0.0\n 11\n%.6f\n 21\n%.6f\n 31\n0.0\n", x, y,
                    x + upTo(60) - 30, y + upTo(60) - 30);
      out += line;
    } else if (kind < 8) {
      begin("LWPOLYLINE", i, "AcDbPolyline");
      out += " 90\n8\n 70\n0\n";
      for (int k = 0; k < 8; ++k) {
        std::snprintf(line, sizeof line, " 10\n%.6f\n 20\n%.6f\n", x + 6 * k, y + upTo(6));
        out += line;
      }
    } else {
      begin("TEXT", i, "AcDbText");
      std::snprintf(line, sizeof line,
                    " 10\n%.6f\n 20\n%.6f\n 30\n0.0\n 40\n1.8\n  1\n%d/%d\n100\nAcDbText\n", x, y,
                    i, i % 99);
      out += line;
    }
  }
  std::string bytes = tarn::host::newDrawingBytes("AC1015");
  const size_t place = bytes.find("ENTITIES\n") + 9;
  return bytes.insert(place, out);
}

long residentMiB() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  return used.ru_maxrss / 1024;
}

template <typename Work>
void report(const char* name, Work work) {
  const auto start = std::chrono::steady_clock::now();
  const std::clock_t clock = std::clock();
  work();
  const double worked = static_cast<double>(std::clock() - clock) / CLOCKS_PER_SEC;
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  std::printf("%-22s %6.2f s, processor %6.2f s, most memory %ld MiB\n", name, passed.count(),
              worked, residentMiB());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_drawing FILE.dxf [ENTITIES]\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const std::string path = tarn::absolutePath(argv[1]);
  const int count = argc > 2 ? std::atoi(argv[2]) : 450000;
  if (tarn::fileKind(path) == tarn::FileKind::kMissing) {
    const tarn::Status made = tarn::writeFileAtomically(path, makeDrawing(count));
    std::printf("made: run again to measure\n");
    return made ? 0 : 1;
  }
  std::ostringstream transcript;
  tarn::host::HeadlessFrontEnd frontEnd(transcript, false);
  tarn::host::CommandLineUi ui;
  tarn::host::HostApp app(frontEnd, ui, "");
  app.resizeView(1920, 1080);
  const long before = residentMiB();
  bool good = true;
  QImage picture(1920, 1080, QImage::Format_RGB32);
  report("open", [&] { good = tarn::host::openDrawing(app, path).isOk(); });
  report("first picture", [&] {
    QPainter painter(&picture);
    app.renderTo(painter, 1920, 1080);
  });
  const double size = static_cast<double>(tarn::fileTimes(path).size) / (1 << 20);
  std::printf("file %.1f MiB; memory for it %.1f times\n", size,
              static_cast<double>(residentMiB() - before) / size);
  AcDbDatabase& database = *app.documents().current().database();
  {
    AcDbObjectId model;
    const AcDbObjectPointer<AcDbBlockTable> blocks(database.blockTableId(), AcDb::kForRead);
    blocks->getAt(ACDB_MODEL_SPACE, model);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(model, AcDb::kForRead);
    const AcDbObjectIdArray ids = space->entityIds();
    std::printf("%d entities\n", ids.length());
    const AcDbObjectPointer<AcDbEntity> entity(ids[ids.length() / 2], AcDb::kForWrite);
    entity->transformBy(AcGeMatrix3d::translation({1, 2, 0}));
  }
  const auto save = [&](const char* name, const char* extension) {
    report(name, [&] {
      const std::string target = path + extension;
      good = tarn::host::saveDrawingAs(app, app.documents().current(), target).isOk() && good;
    });
    std::printf("memory for it %.1f times\n", static_cast<double>(residentMiB() - before) / size);
  };
  save("save", ".saved.dxf");
  tarn::host::SavedForm form = app.documents().current().drawing().form();
  form.binary = true;
  good = app.documents().current().drawing().setForm(form).isOk() && good;
  save("save as binary", ".binary.dxf");
  return good ? 0 : 1;
}
