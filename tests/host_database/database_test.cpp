// The open protocol, ownership, erasing, tables and dictionaries of a drawing database.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "acutmem.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "host/database/observer.h"

namespace tarn::host {
namespace {

class DatabaseTest : public testing::Test {
 protected:
  AcDbObjectId addLine(double x = 0) {
    AcDbBlockTable* blocks = nullptr;
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(database_.getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
    blocks->close();
    auto* line = new AcDbLine(AcGePoint3d(x, 1, 0), AcGePoint3d(x + 5, 9, 0));
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, line), Acad::eOk);
    line->close();
    space->close();
    return id;
  }
  AcDbDatabase database_;
};

TEST_F(DatabaseTest, OpeningKeepsTheRules) {
  const AcDbObjectId id = addLine();
  struct Case {
    AcDb::OpenMode held, wanted;
    Acad::ErrorStatus expected;
  };
  for (const Case& c : {Case{AcDb::kForRead, AcDb::kForRead, Acad::eOk},
                        Case{AcDb::kForRead, AcDb::kForWrite, Acad::eWasOpenForRead},
                        Case{AcDb::kForWrite, AcDb::kForRead, Acad::eWasOpenForWrite},
                        Case{AcDb::kForWrite, AcDb::kForWrite, Acad::eWasOpenForWrite},
                        Case{AcDb::kForRead, AcDb::kForNotify, Acad::eOk},
                        Case{AcDb::kForWrite, AcDb::kForNotify, Acad::eOk},
                        Case{AcDb::kForNotify, AcDb::kForRead, Acad::eWasOpenForNotify},
                        Case{AcDb::kForNotify, AcDb::kForNotify, Acad::eWasOpenForNotify},
                        Case{AcDb::kForNotify, AcDb::kForWrite, Acad::eWasOpenForNotify}}) {
    AcDbLine* first = nullptr;
    AcDbLine* second = nullptr;
    ASSERT_EQ(acdbOpenObject(first, id, c.held), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(second, id, c.wanted), c.expected) << c.held << " " << c.wanted;
    EXPECT_EQ(second != nullptr, c.expected == Acad::eOk);
    if (second != nullptr) second->close();
    EXPECT_EQ(first->close(), Acad::eOk);
    EXPECT_EQ(first->close(), Acad::eInvalidOpenState);
  }
  AcDbObject* object = nullptr;
  EXPECT_EQ(acdbOpenObject(object, AcDbObjectId(), AcDb::kForRead), Acad::eNullObjectId);
  AcDbLayerTable* layers = nullptr;
  EXPECT_EQ(acdbOpenObject(layers, id, AcDb::kForRead), Acad::eNotThatKindOfClass);
  AcDbEntity* entity = nullptr;
  EXPECT_EQ(acdbOpenAcDbEntity(entity, database_.layerTableId(), AcDb::kForRead),
            Acad::eNotAnEntity);
}

TEST_F(DatabaseTest, WhatIsOfNoDrawingOrOfAnotherOneIsRefused) {
  AcDbLine loose;
  EXPECT_EQ(loose.erase(), Acad::eNoDatabase);
  EXPECT_EQ(loose.close(), Acad::eInvalidOpenState);
  EXPECT_EQ(loose.upgradeOpen(), Acad::eInvalidOpenState);
  AcDbDatabase other;
  EXPECT_EQ(database_.setClayer(other.layerZero()), Acad::eWrongDatabase);
  const AcDbObjectId id = addLine();
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(line->setLayer(other.layerZero()), Acad::eWrongDatabase);
  EXPECT_EQ(line->setLayer(database_.layerTableId()), Acad::eInvalidInput);
  AcDbObjectId again;
  EXPECT_EQ(other.addAcDbObject(again, line), Acad::eAlreadyInDb);
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(other.getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(root->setAt(L"LINE", line, again), Acad::eWrongDatabase);
  EXPECT_EQ(root->setAt(L"", line, again), Acad::eInvalidKey);
  root->close();
  line->close();
}

TEST_F(DatabaseTest, ReadersAreLimitedAndUpgradesAreExclusive) {
  const AcDbObjectId id = addLine();
  AcDbLine* line = nullptr;
  for (int i = 0; i < 256; ++i) ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  AcDbLine* more = nullptr;
  EXPECT_EQ(acdbOpenObject(more, id, AcDb::kForRead), Acad::eAtMaxReaders);
  EXPECT_EQ(line->upgradeOpen(), Acad::eHadMultipleReaders);
  for (int i = 0; i < 255; ++i) line->close();
  EXPECT_EQ(line->upgradeOpen(), Acad::eOk);
  EXPECT_EQ(line->setEndPoint(AcGePoint3d(7, 7, 7)), Acad::eOk);
  EXPECT_EQ(line->downgradeOpen(), Acad::eOk);
  EXPECT_EQ(line->endPoint().z, 7);
  line->close();
}

TEST_F(DatabaseTest, BreakingTheRulesEndsTheProgramWithTheRule) {
  const AcDbObjectId id = addLine();
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_DEATH(line->setStartPoint(AcGePoint3d()), "eNotOpenForWrite");
  line->close();
  EXPECT_DEATH(line->startPoint(), "eNotOpenForRead");
}

TEST_F(DatabaseTest, ErasingMarksAndUnerasingBringsBackTheSameObject) {
  const AcDbObjectId id = addLine();
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  const AcDbLine* before = line;
  EXPECT_EQ(line->erase(), Acad::eOk);
  EXPECT_EQ(line->erase(), Acad::eWasErased);
  line->close();
  EXPECT_TRUE(id.isErased());
  EXPECT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eWasErased);
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_EQ(line->erase(false), Acad::eOk);
  EXPECT_EQ(line->erase(false), Acad::eWasNotErased);
  line->close();
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line, before);
  line->close();
}

TEST_F(DatabaseTest, AnIdOutlivesItsDrawing) {
  AcDbObjectId id;
  {
    AcDbDatabase other;
    id = other.layerZero();
    EXPECT_TRUE(id.isValid());
    acdbHostApplicationServices()->setWorkingDatabase(&other);
  }
  EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), nullptr);
  AcDbObject* object = nullptr;
  EXPECT_FALSE(id.isValid());
  EXPECT_EQ(acdbOpenObject(object, id, AcDb::kForRead), Acad::ePermanentlyErased);
}

TEST_F(DatabaseTest, ModelSpaceOwnsItsEntitiesInOrder) {
  const AcDbObjectId ids[] = {addLine(0), addLine(10), addLine(20)};
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, ids[1], AcDb::kForWrite), Acad::eOk);
  line->erase();
  line->close();
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(database_.getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(blocks->getAt(L"*MODEL_SPACE", space, AcDb::kForRead), Acad::eOk);
  blocks->close();
  AcDbBlockTableRecordIterator* made = nullptr;
  ASSERT_EQ(space->newIterator(made), Acad::eOk);
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  std::vector<AcDbObjectId> seen;
  for (; !iterator->done(); iterator->step()) {
    AcDbObjectId id;
    iterator->getEntityId(id);
    seen.push_back(id);
    EXPECT_LT(ids[0].handle().value(), id.handle().value() + 1);
  }
  EXPECT_EQ(seen, (std::vector<AcDbObjectId>{ids[0], ids[2]}));
  EXPECT_TRUE(space->isLayout());
  auto refused = std::make_unique<AcDbLine>();
  EXPECT_EQ(space->appendAcDbEntity(refused.get()), Acad::eNotOpenForWrite);
  ASSERT_EQ(acdbOpenObject(line, ids[0], AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->ownerId(), space->objectId());
  space->close();
  line->close();
}

TEST_F(DatabaseTest, TablesRefuseDoublesAndWrongRecords) {
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(database_.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* record = new AcDbLayerTableRecord;
  record->setName(L"地块");
  record->setColorIndex(3);
  AcDbObjectId id;
  EXPECT_EQ(layers->add(id, record), Acad::eOk);
  record->close();
  auto twin = std::make_unique<AcDbLayerTableRecord>();
  EXPECT_EQ(layers->add(twin.get()), Acad::eInvalidInput);
  twin->setName(L"地块");
  EXPECT_EQ(layers->add(twin.get()), Acad::eDuplicateRecordName);
  auto block = std::make_unique<AcDbBlockTableRecord>();
  block->setName(L"b");
  EXPECT_EQ(layers->addRecord(id, block.get()), Acad::eNotThatKindOfClass);
  layers->close();
  const AcDbObjectId lineId = addLine();
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, lineId, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(line->setLayer(L"no such layer"), Acad::eKeyNotFound);
  EXPECT_EQ(line->setLayer(L"地块"), Acad::eOk);
  ACHAR* name = line->layer();
  EXPECT_STREQ(name, L"地块");
  acutDelString(name);
  line->close();
}

TEST_F(DatabaseTest, DictionariesFindWithoutCaseAndReplaceByErasing) {
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(database_.getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  AcDbObjectId first;
  AcDbObjectId second;
  auto* record = new AcDbXrecord;
  ASSERT_EQ(root->setAt(L"ImagePath", record, first), Acad::eOk);
  record->close();
  EXPECT_TRUE(root->has(L"IMAGEPATH"));
  record = new AcDbXrecord;
  ASSERT_EQ(root->setAt(L"ImagePath", record, second), Acad::eOk);
  record->close();
  EXPECT_TRUE(first.isErased());
  EXPECT_EQ(root->numEntries(), 2U) << "the layouts and the new one";
  AcDbObjectId found;
  EXPECT_EQ(root->getAt(L"other", found), Acad::eKeyNotFound);
  EXPECT_EQ(root->remove(L"imagepath"), Acad::eOk);
  EXPECT_EQ(root->getAt(L"ImagePath", found), Acad::eKeyNotFound);
  root->close();
}

TEST_F(DatabaseTest, ReactorsHearOfOneObject) {
  class Counter : public AcDbObjectReactor {
   public:
    void modified(const AcDbObject*) override { events += "m"; }
    void erased(const AcDbObject*, Adesk::Boolean on) override { events += on ? "e" : "u"; }
    void goodbye(const AcDbObject*) override { events += "g"; }
    std::string events;
  } counter;
  auto other = std::make_unique<AcDbDatabase>();
  AcDbLayerTableRecord* layer = nullptr;
  ASSERT_EQ(acdbOpenObject(layer, other->layerZero(), AcDb::kForWrite), Acad::eOk);
  layer->addReactor(&counter);
  layer->addReactor(&counter);
  EXPECT_EQ(layer->setColorIndex(0), Acad::eInvalidInput);
  layer->setIsOff(true);
  layer->close();
  ASSERT_EQ(acdbOpenObject(layer, other->layerZero(), AcDb::kForWrite), Acad::eOk);
  layer->erase();
  layer->close();
  other.reset();
  EXPECT_EQ(counter.events, "meg");
}

TEST_F(DatabaseTest, ReactorsOfTheDrawingHearOfAllObjects) {
  class Listener : public AcDbDatabaseReactor {
   public:
    void objectAppended(const AcDbDatabase*, const AcDbObject*) override { events += "+"; }
    void objectOpenedForModify(const AcDbDatabase*, const AcDbObject*) override { events += "o"; }
    void objectModified(const AcDbDatabase*, const AcDbObject*) override { events += "m"; }
    void objectErased(const AcDbDatabase*, const AcDbObject*, Adesk::Boolean on) override {
      events += on ? "e" : "u";
    }
    void headerSysVarWillChange(const AcDbDatabase*, const ACHAR*) override { events += "h"; }
    void headerSysVarChanged(const AcDbDatabase*, const ACHAR* name, Adesk::Boolean) override {
      events += name == std::wstring(L"CLAYER") ? "c" : "l";
    }
    void goodbye(const AcDbDatabase*) override { events += "g"; }
    std::string events;
  } listener;
  class OfOne : public AcDbObjectReactor {
   public:
    void openedForModify(const AcDbObject*) override { events += "o"; }
    void modified(const AcDbObject*) override { events += "m"; }
    void modifiedXData(const AcDbObject*) override { events += "x"; }
    void objectClosed(const AcDbObjectId) override { events += "c"; }
    std::string events;
  } one;
  auto drawing = std::make_unique<AcDbDatabase>();
  EXPECT_EQ(drawing->addReactor(&listener), Acad::eOk);
  EXPECT_EQ(drawing->addReactor(&listener), Acad::eDuplicateKey);
  AcDbLayerTableRecord* layer = nullptr;
  ASSERT_EQ(acdbOpenObject(layer, drawing->layerZero(), AcDb::kForWrite), Acad::eOk);
  layer->addReactor(&one);
  layer->setIsOff(true);
  layer->setIsOff(false);
  EXPECT_EQ(layer->createExtensionDictionary(), Acad::eOk);
  layer->close();
  EXPECT_EQ(listener.events, "o+m");
  EXPECT_EQ(one.events, "omc");
  listener.events.clear();
  ASSERT_EQ(acdbOpenObject(layer, drawing->layerZero(), AcDb::kForWrite), Acad::eOk);
  layer->close();
  ASSERT_EQ(acdbOpenObject(layer, drawing->layerZero(), AcDb::kForWrite), Acad::eOk);
  layer->erase();
  layer->close();
  EXPECT_EQ(listener.events, "ee") << "with its dictionary";
  EXPECT_EQ(one.events, "omccc");
  EXPECT_EQ(drawing->setClayer(drawing->layerZero()), Acad::eInvalidInput);
  EXPECT_EQ(drawing->setLtscale(2), Acad::eOk);
  drawing.reset();
  EXPECT_EQ(listener.events, "eehlg");
}

TEST_F(DatabaseTest, WhatIsCancelledIsAsItWasAndNobodyHearsOfAChange) {
  class Listener : public AcDbObjectReactor {
   public:
    void modified(const AcDbObject*) override { events += "m"; }
    void erased(const AcDbObject*, Adesk::Boolean) override { events += "e"; }
    void cancelled(const AcDbObject*) override { events += "x"; }
    void objectClosed(const AcDbObjectId) override { events += "c"; }
    std::string events;
  } listener;
  const AcDbObjectId id = addLine();
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  line->addReactor(&listener);
  const AcGePoint3d start = line->startPoint();
  line->setStartPoint({7, 8, 9});
  line->setColorIndex(3);
  EXPECT_EQ(line->createExtensionDictionary(), Acad::eOk);
  const AcDbObjectId dictionary = line->extensionDictionary();
  line->erase();
  EXPECT_EQ(line->cancel(), Acad::eOk);
  EXPECT_EQ(listener.events, "xc");
  EXPECT_FALSE(id.isErased());
  EXPECT_TRUE(dictionary.isErased());
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->startPoint(), start);
  EXPECT_EQ(line->colorIndex(), 256);
  EXPECT_TRUE(line->extensionDictionary().isNull());
  EXPECT_EQ(line->cancel(), Acad::eOk) << "only read, it is closed";
  EXPECT_EQ(line->cancel(), Acad::eInvalidOpenState);
  // What comes after a cancelled change is a change again.
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  line->setStartPoint({1, 1, 1});
  line->close();
  EXPECT_EQ(listener.events, "xcmc");
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  line->removeReactor(&listener);
  line->close();
  // A new one that was never closed is gone.
  AcDbBlockTableRecord* space = nullptr;
  AcDbBlockTable* blocks = nullptr;
  ASSERT_EQ(database_.getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
  auto* made = new AcDbLine({0, 0, 0}, {1, 1, 0});
  AcDbObjectId newId;
  EXPECT_EQ(space->appendAcDbEntity(newId, made), Acad::eOk);
  EXPECT_EQ(made->cancel(), Acad::eOk);
  EXPECT_EQ(space->cancel(), Acad::eOk) << "a block is closed";
  blocks->close();
  EXPECT_TRUE(newId.isErased());
}

TEST(Status, HasItsNameAndPublicValue) {
  EXPECT_STREQ(acadErrorStatusText(Acad::eWasErased), L"eWasErased");
  EXPECT_STREQ(acadErrorStatusText(static_cast<Acad::ErrorStatus>(4711)), L"unknown status");
  EXPECT_EQ(Acad::eMakeMeProxy, 301);
}

class Recorder : public DatabaseObserver {
 public:
  void objectAppended(AcDbObject&) override { events += "+"; }
  void objectOpenedForWrite(AcDbObject&) override { events += "w"; }
  void objectModified(AcDbObject&) override { events += "m"; }
  void objectErased(AcDbObject&, bool erased) override { events += erased ? "e" : "u"; }
  void drawWanted(AcDbEntity&) override { events += "d"; }
  std::string events;
};

TEST_F(DatabaseTest, TheObserverHearsEachChangeOnce) {
  Recorder recorder;
  setDatabaseObserver(database_, &recorder);
  const AcDbObjectId id = addLine();
  EXPECT_EQ(recorder.events, "w+mm");  // the block, appended; the line and its block are closed
  recorder.events.clear();
  AcDbLine* line = nullptr;
  acdbOpenObject(line, id, AcDb::kForWrite);
  line->close();
  EXPECT_EQ(recorder.events, "w");
  acdbOpenObject(line, id, AcDb::kForWrite);
  line->setStartPoint(AcGePoint3d(1, 1, 1));
  line->setEndPoint(AcGePoint3d(2, 2, 2));
  line->close();
  acdbOpenObject(line, id, AcDb::kForRead);
  line->draw();
  line->close();
  acdbOpenObject(line, id, AcDb::kForWrite);
  line->erase();
  line->close();
  acdbOpenObject(line, id, AcDb::kForWrite, true);
  line->erase(false);
  line->erase(true);
  line->erase(false);
  line->close();
  EXPECT_EQ(recorder.events, "wwmdwewu");
  recorder.events.clear();
  acdbOpenObject(line, id, AcDb::kForRead);
  line->upgradeOpen();
  line->close();
  Adesk::Boolean wasWritable = true;
  acdbOpenObject(line, id, AcDb::kForNotify);
  line->upgradeFromNotify(wasWritable);
  EXPECT_FALSE(wasWritable);
  line->close();
  EXPECT_EQ(recorder.events, "ww") << "no way to a change goes past the observer";
  setDatabaseObserver(database_, nullptr);
}

}  // namespace
}  // namespace tarn::host
