// Damaged drawings through the door that the program uses: each is opened, shown, changed and
// written, or refused. The damage follows from the file's number.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QGuiApplication>
#include <cstdlib>
#include <random>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "tests/host_editor/scriptedhost.h"
#include "tests/hostile/apart.h"
#include "tests/hostile/hostilefiles.h"
#include "tests/support/program.h"

namespace tarn::hostile {
namespace {

using host::DrawingFile;

constexpr char kSeeds[] = TARN_SOURCE_DIR "/fuzz/corpus/drawing";

/// What numbers, names and codes are damaged into.
constexpr const char* kValues[] = {
    "0",       "-1",      "1",          "2",          "255",    "256",
    "65535",   "70000",   "2147483647", "4294967295", "1e308",  "-1e308",
    "nan",     "inf",     "1e-9",       "",           "*",      "FFFFFFFFFFFFFFFF",
    "SECTION", "ENDSEC",  "EOF",        "TREE",       "AC1009", "{",
    "}",       "10",      "100",        "SEQEND",     "VERTEX", "5",
    "330",     "AC1032x", "90",         "40",         "42",     "\\U+FFFF^"};

std::string damaged(const std::string& bytes, uint32_t number) {
  std::mt19937 random(number);
  std::vector<std::string> lines = split(bytes, '\n');
  const auto place = [&] { return random() % lines.size(); };
  for (uint32_t times = 1 + random() % 5; times > 0 && lines.size() > 4; --times) {
    const size_t at = place();
    const size_t count = std::min<size_t>(lines.size() - at, 2 * (1 + random() % 8));
    const auto first = lines.begin() + static_cast<std::ptrdiff_t>(at);
    const auto end = first + static_cast<std::ptrdiff_t>(count);
    switch (random() % 10) {
      case 0:
        lines.erase(first, end);
        break;
      case 1: {
        const std::vector<std::string> run(first, end);
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place()), run.begin(), run.end());
        break;
      }
      case 2:
        std::swap(lines[at], lines[place()]);
        break;
      case 3:
        if (!lines[at].empty())
          lines[at][random() % lines[at].size()] ^= static_cast<char>(1 << random() % 8);
        break;
      case 4:
        if (random() % 8 == 0) lines.resize(at);
        break;
      default:
        lines[at] = kValues[random() % std::size(kValues)];
    }
  }
  std::string out;
  for (const std::string& line : lines) out += line + "\n";
  return out;
}

/// The host of a child process; never destroyed, as the child ends without it.
host::ScriptedHost& theHost() {
  static host::ScriptedHost* made = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "drawings";
    static char* arguments[] = {name, nullptr};
    new QGuiApplication(count, arguments);
    auto* one = new host::ScriptedHost;
    one->app().resizeView(300, 200);
    return one;
  }();
  return *made;
}

/// Every entity counts as changed, so that all of it is written anew.
void changeEverything(AcDbDatabase& database) {
  AcDbBlockTable* blocks = nullptr;
  if (database.getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return;
  AcDbBlockTableRecord* space = nullptr;
  if (blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead) == Acad::eOk) {
    for (const AcDbObjectId& id : space->entityIds()) {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
      if (entity.openStatus() == Acad::eOk)
        entity->transformBy(AcGeMatrix3d::translation({1, 2, 0}));
    }
    space->close();
  }
  blocks->close();
}

/// False when the file was refused. What was written must be read again.
bool openChangeAndWrite(const std::string& path) {
  host::HostApp& app = theHost().app();
  if (!host::openDrawing(app, path)) return false;
  app.zoomExtents();
  host::HostDocument& document = app.documents().current();
  changeEverything(*document.database());
  app.regenerate();
  const auto bytes = document.drawing().bytes();
  app.documents().close(document);
  if (!bytes) return true;
  const auto again = DrawingFile::fromBytes(bytes.value(), "again");
  if (!again) {
    std::printf("%s\n", again.message().c_str());
    std::fflush(stdout);
    _exit(8);
  }
  return true;
}

TEST(DamagedDrawings, areReadOrRefused) {
  const test::Scratch scratch("tarn_drawings_");
  const std::string path = scratch.at("a.dxf");
  std::vector<std::string> seeds;
  for (const std::string& name : listFolder(kSeeds)) {
    seeds.push_back(readFile(joinPath(kSeeds, name), 1 << 20).take());
  }
  seeds.push_back(host::newDrawingBytes("AC1021"));
  const auto first = runApart(static_cast<int>(seeds.size()), 100, [&](int i) {
    writeBytes(path, seeds[static_cast<size_t>(i)]);
    if (!openChangeAndWrite(path)) _exit(9);
  });
  ASSERT_TRUE(first.empty()) << first[0].index << " " << first[0].how;
  const char* asked = std::getenv("TARN_MUTATIONS");
  const int count = asked != nullptr ? std::atoi(asked) : 500;
  const auto seedOf = [&](int i) { return seeds[static_cast<size_t>(i) % seeds.size()]; };
  const auto faults = runApart(count, 250, [&](int i) {
    writeBytes(path, damaged(seedOf(i), static_cast<uint32_t>(i)));
    openChangeAndWrite(path);
  });
  for (const Fault& fault : faults) {
    const std::string kept =
        joinPath(testing::TempDir(), "tarn-drawing-" + std::to_string(fault.index) + ".dxf");
    writeBytes(kept, damaged(seedOf(fault.index), static_cast<uint32_t>(fault.index)));
    ADD_FAILURE() << "mutation " << fault.index << " " << fault.how
                  << "; the damaged file is kept as " << kept;
  }
}

}  // namespace
}  // namespace tarn::hostile
