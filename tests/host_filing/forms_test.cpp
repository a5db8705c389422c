// Drawings saved in other versions and as binary, before the eyes of other readers.
#include <gtest/gtest.h>

#include <set>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dbcurve.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/filing/binarydrawing.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"
#include "tests/host_filing/judging.h"
#include "tests/host_filing/realdrawings.h"
#include "tests/support/program.h"

namespace tarn::host {
namespace {

class Forms : public Judging {
 protected:
  std::string write(const std::string& bytes) {
    return Judging::write(std::to_string(++files_) + ".dxf", bytes);
  }
  /// What a third program finds in a drawing; texts it reads by the code page in every version.
  static std::string featuresOf(const std::string& path) {
    const test::Outcome found = test::runProgram(
        "/usr/bin/ogrinfo",
        {"-q", "-dialect", "SQLite", "-sql", "SELECT ST_AsText(geometry) FROM entities", path});
    return std::to_string(found.exitCode) + found.output;
  }
  int files_ = 0;
};

TEST_F(Forms, newDrawingsOpenWithoutComplaintInEachVersion) {
  auto made = DrawingFile::createNew();
  ASSERT_EQ(made->form().version, "AC1021");
  appendToModel(made->database(), new AcDbLine({1, 2, 3}, {40500123.456, 5, 6}));
  AcDbDatabase& database = made->database();
  auto* layer = new AcDbLayerTableRecord;
  layer->setName(L"地块");
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(database.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(layers->add(layer), Acad::eOk);
  layer->close();
  layers->close();
  auto* circle = new AcDbCircle({1, 1, 0}, AcGeVector3d::kZAxis, 2);
  EXPECT_EQ(circle->setLayer(layer->objectId()), Acad::eOk);
  appendToModel(database, circle);
  std::vector<std::string> audited = {"audit"};
  std::vector<std::string> same = {"forms"};
  std::string features;
  const std::string plain = write(made->bytes().take());
  for (const std::string& version : savedVersions()) {
    for (const bool binary : {false, true}) {
      SCOPED_TRACE(version);
      const Status set = made->setForm({version, binary});
      ASSERT_TRUE(set) << set.message();
      const auto bytes = made->bytes();
      ASSERT_TRUE(bytes) << bytes.message();
      EXPECT_EQ(made->leftOut(), "");
      audited.push_back(write(bytes.value()));
      same.insert(same.end(), {plain, audited.back()});
      // Reopened it is what it was saved as, and saved again without a change the same bytes.
      const auto again = DrawingFile::fromBytes(bytes.value(), "again");
      ASSERT_TRUE(again) << again.message();
      EXPECT_TRUE(again.value()->form() == made->form());
      EXPECT_TRUE(again.value()->bytes().value() == bytes.value());
      EXPECT_EQ(modelEntities(again.value()->database()).length(), 2);
      if (binary) continue;
      // The Chinese code page is taken when it has what the drawing's own has not.
      EXPECT_EQ(bytes.value().find("ANSI_936") != std::string::npos, version < "AC1021");
      if (features.empty()) features = featuresOf(audited.back());
      EXPECT_EQ(featuresOf(audited.back()), features);
      EXPECT_EQ(features.front(), '0') << features;
    }
  }
  EXPECT_EQ(judge(audited).output, "");
  EXPECT_EQ(judge(same).output, "");
  // A sign that no Chinese page has escapes in its text, not the names of layers.
  appendToModel(database, new AcDbText({1, 1, 0}, L"\u00D8 12", 2.5, 0));
  ASSERT_TRUE(made->setForm({"AC1015", false}));
  const std::string mixed = made->bytes().take();
  EXPECT_NE(mixed.find("ANSI_936"), std::string::npos);
  EXPECT_NE(mixed.find("\\U+00D8 12"), std::string::npos);
  EXPECT_EQ(judge({"audit", write(mixed)}).output, "");
}

TEST_F(Forms, realDrawingsAreTheSameInAnotherVersionAndAsBinary) {
  std::vector<std::string> arguments = {"forms"};
  int refused = 0;
  for (const std::string& path : realDrawings()) {
    if (fileTimes(path).size > 30000) continue;
    auto opened = DrawingFile::open(path);
    if (!opened) continue;
    DrawingFile& file = *opened.value();
    SCOPED_TRACE(path);
    const SavedForm own = file.form();
    std::vector<SavedForm> forms = {{own.version, !own.binary}};
    if (!file.isOld()) forms.insert(forms.end(), {{"AC1015", false}, {"AC1032", false}});
    for (const SavedForm& form : forms) {
      if (!file.setForm(form)) ++refused;
      if (!(file.form() == form)) continue;
      const auto bytes = file.bytes();
      if (!bytes) ++refused;
      if (!bytes) continue;
      EXPECT_EQ(isBinaryDrawing(bytes.value()), form.binary);
      const std::string written = write(bytes.value());
      // The reader refuses names of layers with escapes, and forgets columns of texts in R2018.
      const bool isEscaped = bytes.value().find("\\U+039B") != std::string::npos;
      if (!isEscaped && path.find("mtext_columns") == std::string::npos) {
        arguments.insert(arguments.end(), {path, written});
      }
      const auto again = DrawingFile::fromBytes(bytes.value(), path);
      ASSERT_TRUE(again) << again.message();
      EXPECT_EQ(modelEntities(again.value()->database()).length(),
                modelEntities(file.database()).length());
      if (form.binary || own.binary) continue;
      const std::string features = featuresOf(path);
      // A file that was cut off has got its end.
      if (features.find("ERROR") == std::string::npos) {
        EXPECT_EQ(featuresOf(written), features) << form.version;
      }
    }
  }
  EXPECT_LE(refused, 4) << "solids, and numbers that are none";
  const test::Outcome found = judge(arguments);
  EXPECT_EQ(found.exitCode, 0);
  EXPECT_EQ(found.output, "");
}

TEST_F(Forms, whatAVersionDoesNotKnowIsSaidAndTheSessionKeepsIt) {
  auto file = DrawingFile::createNew();
  auto* line = new AcDbLine({1, 2, 3}, {4, 5, 6});
  AcCmColor color;
  color.setRGB(1, 2, 3);
  ASSERT_EQ(line->setColor(color), Acad::eOk);
  appendToModel(file->database(), line);
  ASSERT_TRUE(file->setForm({"AC1015", false}));
  EXPECT_EQ(file->bytes().value().find("420\n"), std::string::npos);
  EXPECT_NE(file->leftOut().find("1 value that R2000 does not know"), std::string::npos);
  ASSERT_TRUE(file->setForm({"AC1032", false}));
  EXPECT_NE(file->bytes().value().find("420\n66051\n"), std::string::npos);
  EXPECT_EQ(file->leftOut(), "");
}

TEST(FormsOfOldVersions, keepTheirCodePageWhateverEscapesSay) {
  std::string bytes = newDrawingBytes("AC1018");
  bytes.insert(
      bytes.find("ENTITIES\n") + 9,
      "  0\nTEXT\n  5\nF0\n330\n18\n100\nAcDbEntity\n  8\n0\n100\nAcDbText\n 10\n0.0\n 20\n"
      "0.0\n 40\n1.0\n  1\n\xE9\\U+4E2D\n100\nAcDbText\n");
  auto file = DrawingFile::fromBytes(bytes, "page").take();
  ASSERT_TRUE(file->setForm({"AC1015", false}));
  const std::string written = file->bytes().take();
  EXPECT_NE(written.find("ANSI_1252"), std::string::npos);
  EXPECT_NE(written.find("\n\xE9\\U+4E2D\n"), std::string::npos);
}

TEST_F(Forms, whatIsAddedMovedAndErasedIsAllThatDiffers) {
  int looked = 0;
  for (const std::string& path : realDrawings()) {
    if (looked == 5) break;
    if (fileTimes(path).size > 120000) continue;
    auto opened = DrawingFile::open(path);
    if (!opened || opened.value()->isOld() || opened.value()->form().binary) continue;
    AcDbDatabase& database = opened.value()->database();
    const AcDbObjectIdArray ids = modelEntities(database);
    const std::string before = write(opened.value()->bytes().take());
    // The reader puts the columns of a text together.
    const bool hasColumns = path.find("mtext_columns") != std::string::npos;
    if (ids.length() < 4 || hasColumns || judge({"differences", before, before}).output != "")
      continue;
    SCOPED_TRACE(path);
    bool moved = false;
    {
      const AcDbObjectPointer<AcDbEntity> erased(ids[0], AcDb::kForWrite);
      EXPECT_EQ(erased->erase(), Acad::eOk);
      const AcDbObjectPointer<AcDbEntity> other(ids[2], AcDb::kForWrite);
      moved = other->transformBy(AcGeMatrix3d::translation({1, 2, 0})) == Acad::eOk;
    }
    appendToModel(database, new AcDbLine({1, 2, 3}, {4, 5, 6}));
    const std::string after = write(opened.value()->bytes().take());
    const test::Outcome found = judge({"differences", before, after});
    EXPECT_EQ(found.exitCode, 0) << found.output;
    std::multiset<std::string> kinds;
    for (const std::string& line : split(found.output, '\n')) {
      // The reader makes up objects that it misses; an image takes its reactor with it.
      const std::string handle = "\n" + line.substr(line.rfind(' ') + 1);
      const auto isIn = [&](const std::string& file) {
        const std::string bytes = bytesOf(file);
        return bytes.find(handle + "\n") != std::string::npos ||
               bytes.find(handle + "\r") != std::string::npos;
      };
      const bool was = isIn(before);
      const bool is = isIn(after);
      if (line.empty() || (!was && !is) || line.find("IMAGEDEF_REACTOR") != std::string::npos) {
        continue;
      }
      if (line.find(" DICTIONARY ") == std::string::npos) {
        kinds.insert(was ? line.substr(0, line.find(' ')) : "new");
      }
    }
    std::multiset<std::string> expected = {"gone", "new"};
    if (moved) expected.insert("changed");
    EXPECT_EQ(kinds, expected) << found.output;
    ++looked;
  }
  if (looked == 0) GTEST_SKIP() << "no real drawings";
}

}  // namespace
}  // namespace tarn::host
