// What changes in a file when something changes in its drawing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "acutads.h"
#include "base/text.h"
#include "dbblockref.h"
#include "dbcurve.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "dbxrecrd.h"
#include "host/database/layouts.h"
#include "host/filing/drawingfile.h"
#include "host/filing/drawingsave.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"
#include "tests/host_filing/drawingfixture.h"
#include "tests/host_filing/realdrawings.h"

namespace tarn::host {
namespace {

using testing::HasSubstr;
using testing::Not;

void setTexts(AcDbDatabase& database, const ACHAR* dictionary,
              const std::vector<std::wstring>& texts) {
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(database.getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  auto* inner = new AcDbDictionary;
  AcDbObjectId id;
  EXPECT_EQ(root->setAt(dictionary, inner, id), Acad::eOk);
  auto* record = new AcDbXrecord;
  EXPECT_EQ(inner->setAt(dictionary, record, id), Acad::eOk);
  resbuf* first = nullptr;
  resbuf** next = &first;
  for (const std::wstring& text : texts) {
    *next = acutBuildList(AcDb::kDxfText, text.c_str(), 0);
    next = &(*next)->rbnext;
  }
  EXPECT_EQ(record->setFromRbChain(*first), Acad::eOk);
  acutRelRb(first);
  record->close();
  inner->close();
  root->close();
}

std::unique_ptr<DrawingFile> opened(const std::string& bytes) {
  auto file = DrawingFile::fromBytes(bytes, "test.dxf");
  EXPECT_TRUE(file) << file.message();
  return file ? file.take() : DrawingFile::createNew();
}

std::string saved(DrawingFile& file) {
  auto bytes = file.bytes();
  EXPECT_TRUE(bytes) << bytes.message();
  return bytes ? bytes.take() : std::string();
}

std::string drawing(const std::string& version, const std::string& codePage,
                    const std::string& entities) {
  return "  0\r\nSECTION\r\n  2\r\nHEADER\r\n  9\r\n$ACADVER\r\n  1\r\n" + version +
         "\r\n  9\r\n$DWGCODEPAGE\r\n  3\r\n" + codePage +
         "\r\n  9\r\n$HANDSEED\r\n  5\r\nFF\r\n  0\r\nENDSEC\r\n  0\r\nSECTION\r\n  "
         "2\r\nENTITIES\r\n" +
         replaceAll(entities, "\n", "\r\n") + "  0\r\nENDSEC\r\n  0\r\nEOF\r\n";
}

const char kLine[] =
    "  0\nLINE\n  5\n2A\n100\nAcDbEntity\n  8\n0\n100\nAcDbLine\n 10\n40500123.456\n "
    "20\n3512345.670\n"
    " 30\n0.0\n 11\n40500223.4560\n 21\n3512345.67\n 31\n0.0\n1001\nAPP\n1040\n1.50\n";

TEST(DrawingChange, onlyTheMovedObjectIsWrittenAnewAndEachDigitStays) {
  const std::string before =
      drawing("AC1018", "ANSI_936", std::string(kLine) + kLine + "999\nend\n");
  const auto file = opened(replaceAll(before, "2A\r\n100", "2A\r\n100"));
  const AcDbObjectIdArray ids = modelEntities(file->database());
  ASSERT_EQ(ids.length(), 2);
  {
    const AcDbObjectPointer<AcDbLine> line(ids[1], AcDb::kForWrite);
    EXPECT_EQ(line->startPoint().x, 40500123.456);
    line->transformBy(AcGeMatrix3d::translation({0.001, 0, 0}));
  }
  const size_t second = before.rfind("LINE");
  std::string expected = before.substr(second);
  expected = replaceAll(expected, "40500123.456\r\n", "40500123.457\r\n");
  expected = replaceAll(expected, "40500223.4560\r\n", "40500223.457\r\n");
  EXPECT_EQ(saved(*file), before.substr(0, second) + expected);
  {
    const AcDbObjectPointer<AcDbLine> line(ids[0], AcDb::kForWrite);
    line->erase();
  }
  EXPECT_THAT(saved(*file), HasSubstr("40500123.457"));
  EXPECT_THAT(saved(*file), Not(HasSubstr("40500123.456")));
  {
    const AcDbObjectPointer<AcDbLine> line(ids[0], AcDb::kForWrite, true);
    line->erase(false);
  }
  EXPECT_EQ(saved(*file), before.substr(0, second) + expected) << "brought back where it stood";
}

TEST(DrawingChange, chineseTextsOfACodePageComeBack) {
  const std::string text =
      "  0\nTEXT\n  5\n2B\n100\nAcDbEntity\n  8\n\xB2\xE2\xC1\xBF\n100\nAcDbText\n"
      " 10\n40500000.0\n 20\n1.0\n 40\n2.5\n  1\n\xB5\xD8\xBF\xE9\\U+1F5FA\n100\nAcDbText\n";
  const std::string before = drawing("AC1018", "ANSI_936", text);
  const auto file = opened(before);
  EXPECT_EQ(saved(*file), before);
  {
    const AcDbObjectPointer<AcDbText> entity(modelEntities(file->database())[0], AcDb::kForWrite);
    ACHAR* layer = entity->layer();
    EXPECT_STREQ(layer, L"测量");
    acutDelString(layer);
    EXPECT_EQ(std::wstring(entity->textString()).substr(0, 2), L"地块");
    entity->setTextString(L"界址点 é");
  }
  // What the code page has stands in its bytes; all of it is there again after reading.
  const std::string after = saved(*file);
  EXPECT_THAT(after, HasSubstr("  8\r\n\xB2\xE2\xC1\xBF\r\n"));
  EXPECT_THAT(after, HasSubstr("  1\r\n\xBD\xE7\xD6\xB7\xB5\xE3 \xA8\xA6\r\n"));
  const auto again = opened(after);
  const AcDbObjectPointer<AcDbText> entity(modelEntities(again->database())[0], AcDb::kForRead);
  EXPECT_STREQ(entity->textString(), L"界址点 é");
}

TEST(DrawingChange, recordsAndEntitiesOfANewDrawingComeBack) {
  const auto file = DrawingFile::createNew();
  AcDbDatabase& database = file->database();
  appendToModel(database, new AcDbLine({1, 2, 3}, {40500123.456, 5, 6}));
  appendToModel(database, new AcDbArc({1, 1, 0}, AcGeVector3d::kZAxis, 2, 0.5, 1.5));
  appendToModel(database, new AcDbCircle({1, 1, 0}, -AcGeVector3d::kZAxis, 2));
  appendToModel(database, new AcDbPoint({7, 8, 9}));
  appendToModel(database, new AcDbText({1, 1, 0}, L"面积 %%d", 2.5, 0.25));
  auto* flat = new AcDbPolyline;
  for (int i = 0; i < 3; ++i) flat->addVertex(i, i * i, i == 1 ? 0.5 : 0);
  flat->setClosed(true);
  appendToModel(database, flat);
  auto* inSpace = new AcDbPolyline;
  inSpace->addVertex(1, 2);
  inSpace->addVertex(3, 4);
  inSpace->setInSpace(true);
  appendToModel(database, inSpace);
  setTexts(database, L"ImagePath", {L"/地图/a.tif", L"b\nc^d"});
  ASSERT_TRUE(addLayout(database, "Sheet 7"));
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(database.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* layer = new AcDbLayerTableRecord;
  layer->setName(L"道路");
  layer->setColorIndex(3);
  layer->setIsOff(true);
  EXPECT_EQ(layers->add(layer), Acad::eOk);
  layer->close();
  layers->close();

  const std::string first = saved(*file);
  const auto again = opened(first);
  AcDbDatabase& read = again->database();
  const AcDbObjectIdArray ids = modelEntities(read);
  ASSERT_EQ(ids.length(), 7);
  const AcDbObjectPointer<AcDbLine> line(ids[0], AcDb::kForRead);
  EXPECT_EQ(line->endPoint().x, 40500123.456);
  const AcDbObjectPointer<AcDbArc> arc(ids[1], AcDb::kForRead);
  EXPECT_DOUBLE_EQ(arc->startAngle(), 0.5);
  const AcDbObjectPointer<AcDbCircle> circle(ids[2], AcDb::kForRead);
  EXPECT_TRUE(circle->center().isEqualTo({1, 1, 0}));
  EXPECT_EQ(circle->normal().z, -1);
  const AcDbObjectPointer<AcDbText> text(ids[4], AcDb::kForRead);
  EXPECT_STREQ(text->textString(), L"面积 %%d");
  const AcDbObjectPointer<AcDbPolyline> polyline(ids[5], AcDb::kForRead);
  EXPECT_TRUE(polyline->isClosed());
  EXPECT_EQ(polyline->vertices()[1].bulge, 0.5);
  const AcDbObjectPointer<AcDbPolyline> second(ids[6], AcDb::kForRead);
  EXPECT_TRUE(second->isInSpace());
  EXPECT_EQ(second->numVerts(), 2U);
  EXPECT_FALSE(layoutNamed(read, "Sheet 7").id.isNull());
  AcDbObjectId found;
  const AcDbObjectPointer<AcDbLayerTable> table(read.layerTableId(), AcDb::kForRead);
  ASSERT_EQ(table->getAt(L"道路", found), Acad::eOk);
  const AcDbObjectPointer<AcDbLayerTableRecord> road(found, AcDb::kForRead);
  EXPECT_TRUE(road->isOff());
  EXPECT_EQ(road->colorIndex(), 3);
  EXPECT_EQ(saved(*again), first) << "nothing changed since";
}

TEST(DrawingChange, recordsOfAllTablesAreFoundByTheirNames) {
  const auto file = DrawingFile::createNew();
  AcDbDatabase& database = file->database();
  const std::pair<AcDbObjectId, const wchar_t*> kRecords[] = {
      {database.dimStyleTableId(), L"standard"},  {database.viewportTableId(), L"*ACTIVE"},
      {database.textStyleTableId(), L"Standard"}, {database.linetypeTableId(), L"ByLayer"},
      {database.regAppTableId(), L"ACAD"},        {database.layerTableId(), L"0"}};
  for (const auto& [tableId, name] : kRecords) {
    const AcDbObjectPointer<AcDbSymbolTable> table(tableId, AcDb::kForRead);
    ASSERT_EQ(table.openStatus(), Acad::eOk);
    EXPECT_TRUE(table->has(name));
  }
  AcDbUCSTable* systems = nullptr;
  ASSERT_EQ(database.getSymbolTable(systems, AcDb::kForRead), Acad::eOk);
  EXPECT_FALSE(systems->has(L"site"));
  systems->close();
}

TEST(DrawingChange, aDrawingOfR12SaysWhatItCannotHold) {
  const std::string before =
      drawing("AC1009", "ANSI_1252", "  0\nLINE\n  8\n0\n 10\n1.0\n 20\n2.0\n");
  const auto file = opened(before);
  appendToModel(file->database(), new AcDbCircle({1, 1, 0}, AcGeVector3d::kZAxis, 2));
  const std::string withCircle = saved(*file);
  EXPECT_THAT(withCircle, HasSubstr("CIRCLE\r\n  8\r\n0\r\n 10\r\n1.0\r\n"));
  EXPECT_THAT(withCircle, Not(HasSubstr("AcDb")));
  appendToModel(file->database(), new AcDbMText);
  EXPECT_THAT(file->bytes().message(), HasSubstr("cannot keep objects of kind MTEXT"));
  const AcDbObjectIdArray all = modelEntities(file->database());
  {
    const AcDbObjectPointer<AcDbEntity> text(all[all.length() - 1], AcDb::kForWrite);
    text->erase();
  }
  setTexts(file->database(), L"ImagePath", {L"a.tif"});
  EXPECT_THAT(file->bytes().message(), HasSubstr("R12 cannot keep images and settings"));
}

TEST(DrawingChange, mutatedDrawingsAreReadOrRefusedWithASentence) {
  std::vector<std::string> sources = {saved(*DrawingFile::createNew())};
  for (const std::string& path : realDrawings()) {
    if (fileTimes(path).size < 30000) sources.push_back(bytesOf(path));
  }
  std::uint32_t state = 12345;
  const auto random = [&](size_t limit) {
    state = state * 1664525 + 1013904223;
    return static_cast<size_t>(state >> 8) % limit;
  };
  for (int round = 0; round < 200; ++round) {
    std::string bytes = sources[random(sources.size())];
    const size_t changes = 1 + random(12);
    for (size_t i = 0; i < changes && !bytes.empty(); ++i) {
      const size_t at = random(bytes.size());
      switch (random(4)) {
        case 0:
          bytes[at] = static_cast<char>(random(256));
          break;
        case 1:
          bytes.erase(at, 1 + random(40));
          break;
        case 2:
          bytes.insert(at, bytes.substr(random(bytes.size()), random(200)));
          break;
        default:
          bytes[at] = static_cast<char>('0' + random(10));
      }
    }
    auto file = DrawingFile::fromBytes(bytes, "mutated.dxf");
    if (!file) {
      EXPECT_THAT(file.message(), HasSubstr("mutated.dxf: "));
      continue;
    }
    touchEverything(file.value()->database(), bytes);
    const auto ids = modelEntities(file.value()->database());
    for (const AcDbObjectId& id : ids) {
      AcDbExtents extents;
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      if (entity.openStatus() == Acad::eOk) entity->getGeomExtents(extents);
    }
    const auto again = file.value()->bytes();
    if (!again) continue;
    EXPECT_TRUE(DrawingFile::fromBytes(again.value(), "again.dxf")) << round;
  }
}

TEST(DrawingSave, theOldFileIsKeptAsBackupAndAReadOnlyOneStays) {
  const std::string folder = makeTemporaryFolder(testing::TempDir(), "save").take();
  const std::string path = joinPath(folder, "plan.v2.dxf");
  EXPECT_TRUE(saveBytes(path, "one"));
  EXPECT_EQ(fileKind(backupOf(path)), FileKind::kMissing);
  EXPECT_TRUE(saveBytes(path, "two"));
  EXPECT_EQ(bytesOf(path), "two");
  EXPECT_EQ(bytesOf(joinPath(folder, "plan.v2.bak")), "one");
  using std::filesystem::perms;
  std::filesystem::permissions(std::filesystem::u8path(path),
                               perms::owner_write | perms::group_write | perms::others_write,
                               std::filesystem::perm_options::remove);
  const Status refused = saveBytes(path, "three");
  EXPECT_THAT(refused.message(), HasSubstr("plan.v2.dxf: the file is read-only"));
  EXPECT_EQ(bytesOf(path), "two");
  EXPECT_THAT(saveBytes(folder, "x").message(), HasSubstr("no file"));
  EXPECT_EQ(listFolder(folder).size(), 2U) << "nothing else is left behind";
  EXPECT_TRUE(removeAll(folder));
}

/// A vertex is no object of the database, but has a handle in the file.
TEST(DrawingChange, aNewVertexKeepsItsHandleAndTheHeaderKnowsOfIt) {
  const std::string vertex =
      "  0\nVERTEX\n  5\n%\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb2dVertex\n "
      "10\n1.0\n "
      "20\n1.0\n";
  const auto file = opened(drawing(
      "AC1015", "ANSI_1252",
      "  0\nPOLYLINE\n  5\nA0\n100\nAcDbEntity\n  8\n0\n100\nAcDb2dPolyline\n 66\n1\n 70\n0\n" +
          replaceAll(vertex, "%", "A1") + replaceAll(vertex, "%", "A2") +
          "  0\nSEQEND\n  5\nA3\n100\nAcDbEntity\n  8\n0\n"));
  {
    const AcDbObjectPointer<AcDbPolyline> line(modelEntities(file->database())[0], AcDb::kForWrite);
    ASSERT_EQ(line->addVertex(5, 5), Acad::eOk);
  }
  const std::string after = saved(*file);
  EXPECT_EQ(saved(*file), after);
  const auto parsed = TagDocument::parse(after, "test.dxf");
  ASSERT_TRUE(parsed);
  const TagDocument& document = parsed.value();
  std::uint64_t highest = 0;
  for (std::uint32_t i = 0; i < document.objectCount(); ++i) {
    if (document.typeOf(i) == "VERTEX") highest = std::max(highest, document.handleOf(i));
  }
  const Tag& seed = document.tag(document.headerVariable("$HANDSEED").begin);
  EXPECT_GT(parseHandle(document.word(seed)), highest);
  EXPECT_GT(highest, 0xA3U);
}

}  // namespace
}  // namespace tarn::host
