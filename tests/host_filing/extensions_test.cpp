// Extension dictionaries: made, undone, copied, erased and kept in files.
#include <gtest/gtest.h>

#include "acutmem.h"
#include "dbcurve.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "host/database/observer.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingfile.h"
#include "host/filing/undolog.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

/// Hands what happens in a drawing to an undo log, as the editor does.
class Watch : public DatabaseObserver {
 public:
  explicit Watch(AcDbDatabase& database) : log(database), database_(database) {
    setDatabaseObserver(database, this);
  }
  ~Watch() override { setDatabaseObserver(database_, nullptr); }
  void objectAppended(AcDbObject& object) override { log.objectAppended(object); }
  void objectOpenedForWrite(AcDbObject& object) override { log.objectWillChange(object); }
  void headerWillChange() override { log.headerWillChange(); }
  void objectModified(AcDbObject&) override {}
  void objectErased(AcDbObject&, bool) override {}
  void drawWanted(AcDbEntity&) override {}
  UndoLog log;

 private:
  AcDbDatabase& database_;
};

class Extensions : public testing::Test {
 protected:
  AcDbDatabase& database() const { return file_->database(); }
  AcDbObjectId addLine(AcDbEntity* line) const {
    appendToModel(database(), line);
    return line->objectId();
  }
  /// The value kept with an object; nothing found is -1.
  static int valueOf(AcDbObjectId owner) {
    const AcDbObjectPointer<AcDbObject> object(owner, AcDb::kForRead);
    if (object.openStatus() != Acad::eOk) return -1;
    const AcDbObjectPointer<AcDbDictionary> dictionary(object->extensionDictionary(),
                                                       AcDb::kForRead);
    AcDbXrecord* record = nullptr;
    if (dictionary.openStatus() != Acad::eOk ||
        dictionary->getAt(L"PARCEL", record, AcDb::kForRead) != Acad::eOk) {
      return -1;
    }
    resbuf* chain = nullptr;
    record->rbChain(&chain);
    const int value = chain != nullptr ? static_cast<int>(chain->resval.rlong) : -1;
    acutRelRb(chain);
    record->close();
    return value;
  }
  static void keep(AcDbObjectId owner, int value) {
    const AcDbObjectPointer<AcDbObject> object(owner, AcDb::kForWrite);
    ASSERT_EQ(object.openStatus(), Acad::eOk);
    if (object->extensionDictionary().isNull()) {
      ASSERT_EQ(object->createExtensionDictionary(), Acad::eOk);
    }
    EXPECT_EQ(object->createExtensionDictionary(), Acad::eAlreadyInDb);
    const AcDbObjectPointer<AcDbDictionary> dictionary(object->extensionDictionary(),
                                                       AcDb::kForWrite);
    auto* record = new AcDbXrecord;
    AcDbObjectId id;
    ASSERT_EQ(dictionary->setAt(L"PARCEL", record, id), Acad::eOk);
    resbuf* chain = acutBuildList(AcDb::kDxfInt32, Adesk::Int32{value}, RTNONE);
    EXPECT_EQ(record->setFromRbChain(*chain), Acad::eOk);
    acutRelRb(chain);
    record->close();
  }
  static void erase(AcDbObjectId id, bool erasing) {
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite, true);
    ASSERT_EQ(object.openStatus(), Acad::eOk);
    EXPECT_EQ(object->erase(erasing), Acad::eOk);
  }
  AcDbObjectId modelSpace() const {
    AcDbObjectId id;
    const AcDbObjectPointer<AcDbBlockTable> blocks(database().blockTableId(), AcDb::kForRead);
    EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, id), Acad::eOk);
    return id;
  }
  /// Saves and reads again.
  void reopen() {
    auto bytes = file_->bytes();
    ASSERT_TRUE(bytes) << bytes.message();
    auto again = DrawingFile::fromBytes(bytes.take(), "again");
    ASSERT_TRUE(again) << again.message();
    file_ = again.take();
  }
  AcDbObjectId same(AcDbObjectId earlier) const {
    AcDbObjectId id;
    EXPECT_EQ(database().getAcDbObjectId(id, false, earlier.handle()), Acad::eOk);
    return id;
  }
  std::unique_ptr<DrawingFile> file_ = DrawingFile::createNew();
};

TEST_F(Extensions, areKeptInFilesOfEveryKindOfOwner) {
  AcDbObjectId owners[] = {addLine(new AcDbLine({0, 0, 0}, {1, 1, 0})), database().layerZero(),
                           modelSpace(), database().namedObjectsDictionaryId()};
  int value = 7;
  for (const AcDbObjectId& owner : owners) keep(owner, value++);
  // Once as new objects, once as objects of the file with another value, once untouched.
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    reopen();
    value = round < 2 ? 7 : 107;
    for (AcDbObjectId& owner : owners) {
      owner = same(owner);
      EXPECT_EQ(valueOf(owner), value);
      if (round == 1) keep(owner, value + 100);
      ++value;
    }
  }
}

TEST_F(Extensions, goAndComeBackWithTheirOwner) {
  Watch watch(database());
  const AcDbObjectId line = addLine(new AcDbLine({0, 0, 0}, {1, 1, 0}));
  watch.log.endStep("LINE");
  keep(line, 5);
  watch.log.endStep("KEEP");
  erase(line, true);
  watch.log.endStep("ERASE");
  const std::string erased = file_->bytes().take();
  EXPECT_EQ(erased.find("PARCEL"), std::string::npos);
  EXPECT_EQ(erased.find("XRECORD"), std::string::npos) << "nothing is left without an owner";
  watch.log.undo();
  EXPECT_EQ(valueOf(line), 5);
  watch.log.undo();
  EXPECT_EQ(valueOf(line), -1);
  {
    const AcDbObjectPointer<AcDbLine> opened(line, AcDb::kForRead);
    EXPECT_TRUE(opened->extensionDictionary().isNull());
  }
  watch.log.redo();
  EXPECT_EQ(valueOf(line), 5);
  watch.log.redo();
  EXPECT_TRUE(line.isErased());
  erase(line, false);
  EXPECT_EQ(valueOf(line), 5);
  const AcDbObjectPointer<AcDbLine> opened(line, AcDb::kForWrite);
  EXPECT_EQ(opened->releaseExtensionDictionary(), Acad::eContainerNotEmpty);
  {
    const AcDbObjectPointer<AcDbDictionary> dictionary(opened->extensionDictionary(),
                                                       AcDb::kForWrite);
    EXPECT_EQ(dictionary->remove(L"PARCEL"), Acad::eOk);
  }
  EXPECT_EQ(opened->releaseExtensionDictionary(), Acad::eOk);
  EXPECT_EQ(opened->releaseExtensionDictionary(), Acad::eNullObjectId);
  AcDbLine outside;
  EXPECT_EQ(outside.createExtensionDictionary(), Acad::eNoDatabase);
}

TEST_F(Extensions, areCopiedWithinADrawingAndIntoAnotherOne) {
  const AcDbObjectId line = addLine(new AcDbLine({0, 0, 0}, {1, 1, 0}));
  keep(line, 5);
  const auto other = DrawingFile::createNew();
  for (AcDbDatabase* target : {&database(), &other->database()}) {
    DeepCloner cloner(*target);
    AcDbEntity* copy = nullptr;
    {
      const AcDbObjectPointer<AcDbEntity> source(line, AcDb::kForRead);
      copy = cloner.clone(*source.object());
    }
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->extensionDictionary().isNull()) << "not before a drawing owns it";
    appendToModel(*target, copy);
    const AcDbObjectId id = copy->objectId();
    EXPECT_EQ(valueOf(id), 5);
    // It is a copy of its own.
    keep(id, 6);
    EXPECT_EQ(valueOf(line), 5);
  }
  reopen();
  EXPECT_EQ(valueOf(same(line)), 5);
}

TEST(Erased, membersLeaveTheirGroupsAndAnImageTakesItsReactorAlong) {
  const auto line = [](const std::string& handle) {
    return "0\nLINE\n5\n" + handle +
           "\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n1.0\n20\n2.0\n30\n0.0\n11\n3.0\n21\n4.0\n"
           "31\n0.0\n";
  };
  const std::string reactor =
      "0\nIMAGEDEF_REACTOR\n5\nD2\n330\nB3\n100\nAcDbRasterImageDefReactor\n"
      "90\n2\n330\nB3\n";
  const std::string group = "0\nGROUP\n5\nC1\n100\nAcDbGroup\n300\nfence\n70\n0\n71\n1\n";
  const std::string bytes =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1021\n9\n$HANDSEED\n5\nFF\n0\nENDSEC\n"
      "0\nSECTION\n2\nENTITIES\n" +
      line("B1") + line("B2") +
      "0\nIMAGE\n5\nB3\n100\nAcDbEntity\n8\n0\n100\nAcDbRasterImage\n90\n0\n10\n0.0\n20\n0.0\n30\n"
      "0.0\n11\n1.0\n21\n0.0\n31\n0.0\n12\n0.0\n22\n1.0\n32\n0.0\n13\n4.0\n23\n4."
      "0\n340\nD1\n70\n1\n"
      "360\nD2\n0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n"
      "0\nDICTIONARY\n5\nA\n100\nAcDbDictionary\n" +
      group + "340\nB1\n340\nB2\n340\nB3\n" +
      "0\nIMAGEDEF\n5\nD1\n100\nAcDbRasterImageDef\n90\n0\n1\nmap.tif\n10\n4.0\n20\n4.0\n" +
      reactor + "0\nENDSEC\n0\nEOF\n";
  auto opened = DrawingFile::fromBytes(bytes, "group.dxf");
  ASSERT_TRUE(opened) << opened.message();
  const auto file = opened.take();
  const AcDbObjectIdArray entities = modelEntities(file->database());
  ASSERT_EQ(entities.length(), 3);
  const auto erase = [&](int index, bool is) {
    const AcDbObjectPointer<AcDbEntity> entity(entities[index], AcDb::kForWrite, true);
    EXPECT_EQ(entity->erase(is), Acad::eOk);
  };
  erase(0, true);
  const std::string first = file->bytes().take();
  EXPECT_NE(first.find(group + "340\nB2\n340\nB3\n0\n"), std::string::npos);
  EXPECT_NE(first.find(reactor), std::string::npos);
  erase(2, true);
  const std::string second = file->bytes().take();
  EXPECT_NE(second.find(group + "340\nB2\n0\n"), std::string::npos);
  EXPECT_EQ(second.find("IMAGEDEF_REACTOR"), std::string::npos);
  EXPECT_NE(second.find("map.tif"), std::string::npos) << "other images may show it";
  erase(0, false);
  erase(2, false);
  EXPECT_EQ(file->bytes().value(), bytes) << "brought back whole";
}

}  // namespace
}  // namespace tarn::host
