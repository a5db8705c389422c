#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "acedads.h"
#include "acutmem.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "tests/host_editor/drawingstate.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

/// Random changes of every kind that a drawing knows, made inside a command.
class RandomChanges {
 public:
  explicit RandomChanges(unsigned seed) : random_(seed) {}

  void make() {
    database_ = HostApp::instance()->documents().current().database();
    for (int count = pick(4); count >= 0; --count) {
      static constexpr void (RandomChanges::*kKinds[])() = {
          &RandomChanges::appendLine,   &RandomChanges::appendLine, &RandomChanges::moveLine,
          &RandomChanges::eraseLine,    &RandomChanges::addLayer,   &RandomChanges::changeLayer,
          &RandomChanges::changeClayer, &RandomChanges::storeText,  &RandomChanges::removeText,
          &RandomChanges::changeHeader, &RandomChanges::nothing};
      (this->*kKinds[pick(10)])();
    }
  }

 private:
  int pick(int most) { return std::uniform_int_distribution<>(0, most)(random_); }
  AcGePoint3d point() { return {pick(1000) / 7.0, pick(1000) / 3.0, 0}; }
  AcDbObjectId anyOf(const std::vector<AcDbObjectId>& ids) {
    return ids.empty() ? AcDbObjectId() : ids[static_cast<size_t>(pick(int(ids.size()) - 1))];
  }

  void appendLine() {
    const AcDbObjectPointer<AcDbBlockTable> blocks(database_->blockTableId(), AcDb::kForRead);
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
    auto* line = new AcDbLine(point(), point());
    AcDbObjectId id;
    ASSERT_EQ(space->appendAcDbEntity(id, line), Acad::eOk);
    space->close();
    if (pick(2) == 0) line->setEndPoint(point());
    line->close();
    lines_.push_back(id);
  }
  void moveLine() {
    const AcDbObjectPointer<AcDbLine> line(anyOf(lines_), AcDb::kForWrite);
    if (line.openStatus() != Acad::eOk) return;
    line->setStartPoint(point());
    line->setColorIndex(static_cast<Adesk::UInt16>(pick(7)));
  }
  /// An erased one is brought back.
  void eraseLine() {
    AcDbLine* line = nullptr;
    const AcDbObjectId id = anyOf(lines_);
    if (acdbOpenObject(line, id, AcDb::kForWrite, true) != Acad::eOk) return;
    line->erase(!line->isErased());
    line->close();
  }
  void addLayer() {
    const AcDbObjectPointer<AcDbLayerTable> layers(database_->layerTableId(), AcDb::kForWrite);
    auto* record = new AcDbLayerTableRecord;
    record->setName((L"图层" + std::to_wstring(layers_.size())).c_str());
    AcDbObjectId id;
    if (layers->add(id, record) != Acad::eOk) {
      delete record;  // the name is taken: its layer came back by redo
      return;
    }
    record->close();
    layers_.push_back(id);
  }
  void changeLayer() {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(anyOf(layers_), AcDb::kForWrite);
    if (layer.openStatus() != Acad::eOk) return;
    layer->setIsOff(pick(1) == 0);
    layer->setColorIndex(static_cast<Adesk::UInt16>(1 + pick(200)));
  }
  void changeClayer() { database_->setClayer(anyOf(layers_)); }
  void changeHeader() {
    database_->setLtscale(1 + pick(3));
    database_->setPdsize(pick(3));
    if (pick(3) == 0) database_->setImageFrame(static_cast<Adesk::Int16>(pick(2)));
    if (pick(3) == 0) database_->setLimmax({10.0 + pick(1), 20});
  }
  void storeText() {
    AcDbDictionary* root = nullptr;
    ASSERT_EQ(database_->getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
    auto* record = new AcDbXrecord;
    resbuf* chain = acutBuildList(AcDb::kDxfText, std::to_wstring(pick(999)).c_str(), RTNONE);
    record->setFromRbChain(*chain);
    acutRelRb(chain);
    AcDbObjectId id;
    ASSERT_EQ(root->setAt(pick(1) == 0 ? L"A" : L"B", record, id), Acad::eOk);
    record->close();
    root->close();
  }
  void removeText() {
    AcDbDictionary* root = nullptr;
    ASSERT_EQ(database_->getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
    root->remove(pick(1) == 0 ? L"A" : L"B");
    root->close();
  }
  void nothing() {}

  std::mt19937 random_;
  AcDbDatabase* database_ = nullptr;
  std::vector<AcDbObjectId> lines_, layers_;
};

RandomChanges* changes = nullptr;
void changeCommand() {
  changes->make();
}
void nestedCommand() {
  acedCommandS(RTSTR, ACRX_T("CHANGE"), RTNONE);
  acedCommandS(RTSTR, ACRX_T("LINE"), RTSTR, ACRX_T("0,0"), RTSTR, ACRX_T("5,5"), RTSTR, ACRX_T(""),
               RTNONE);
}

TEST(Undo, BackToTheBeginningAndForthToTheEnd) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    ScriptedHost host;
    RandomChanges made(seed);
    changes = &made;
    ScriptedHost::addCommand(ACRX_T("CHANGE"), changeCommand);
    ScriptedHost::addCommand(ACRX_T("NEST"), nestedCommand);
    // The state after each step; a command that changes nothing is no step.
    std::vector<DrawingState> states = {stateOf(host.app())};
    std::mt19937 random(seed);
    for (int i = 0; i < 40; ++i) {
      // Now and then some steps are undone and others follow: what was undone is gone then.
      if (random() % 8 == 0 && states.size() > 3) {
        host.run({"UNDO 2"});
        states.resize(states.size() - 2);
        ASSERT_EQ(stateOf(host.app()), states.back());
      }
      host.run({random() % 4 == 0 ? "NEST" : "CHANGE"});
      ASSERT_TRUE(host.good());
      DrawingState now = stateOf(host.app());
      if (!(now == states.back())) states.push_back(std::move(now));
    }
    for (size_t i = states.size() - 1; i-- > 0;) {
      host.run({"U"});
      ASSERT_TRUE(stateOf(host.app()) == states[i]) << i;
    }
    EXPECT_NE(host.run({"U"}).find("nothing to undo"), std::string::npos);
    for (size_t i = 1; i < states.size(); ++i) {
      host.run({"REDO"});
      ASSERT_TRUE(stateOf(host.app()) == states[i]) << i;
    }
    EXPECT_NE(host.run({"REDO"}).find("nothing to redo"), std::string::npos);
    host.run({"UNDO 1000", "MREDO All"});
    EXPECT_TRUE(stateOf(host.app()) == states.back());
  }
}

TEST(Undo, StepsGroupsAndMarks) {
  struct Case {
    std::initializer_list<const char*> lines;
    Adesk::Int32 left;  ///< lines in the drawing
    const char* printed;
  };
  const Case cases[] = {
      {{"LINE 0,0 1,1 2,2 3,3", "", "U"}, 0, "LINE"},
      {{"LINE 0,0 1,1", "", "LINE 0,0 2,2", "", "UNDO 2"}, 0, "LINE"},
      {{"LINE 0,0 1,1", "", "LINE 0,0 2,2", "", "UNDO"}, 2, "Number of steps"},
      {{"LINE 0,0 1,1", "", "UNDO BE", "LINE 0,0 2,2", "", "LINE 0,0 3,3", "", "UNDO E", "U"},
       1,
       "GROUP"},
      {{"UNDO BE", "LINE 0,0 2,2", "", "LINE 0,0 3,3", "", "U", "UNDO End", "REDO"}, 2, "LINE"},
      {{"UNDO End"}, 0, "No group is open."},
      {{"LINE 0,0 1,1", "", "UNDO Mark", "LINE 0,0 2,2", "", "LINE 0,0 3,3", "", "UNDO Back"},
       1,
       "Mark encountered."},
      {{"LINE 0,0 1,1", "", "LINE 0,0 2,2", "", "UNDO Back No"}, 2, "undo everything"},
      {{"LINE 0,0 1,1", "", "LINE 0,0 2,2", "", "UNDO Back", ""}, 0, "Everything"},
      {{"UNDO Control None", "LINE 0,0 1,1", "", "U"}, 1, "nothing to undo"},
      {{"UNDO C One", "LINE 0,0 1,1", "", "LINE 0,0 2,2", "", "UNDO 5"}, 1, "Everything"},
      {{"LINE 0,0 1,1", "", "U", "LINE 0,0 2,2", "", "REDO"}, 1, "nothing to redo"},
      {{"LINE 0,0 1,1 'ZOOM 2x", "2,2", "", "U"}, 0, "LINE"},
      {{"LINE 0,0 1,1", "", "ERASE ALL", "", "U", "U", "MREDO 1"}, 1, "LINE"},
      {{"UNDO -1", "0", "x", ""}, 0, "integer"},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    const std::string printed = host.run(c.lines);
    EXPECT_NE(printed.find(c.printed), std::string::npos) << printed;
    ads_name set = {0, 0};
    Adesk::Int32 count = 0;
    if (acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, set) == RTNORM) {
      acedSSLength(set, &count);
      acedSSFree(set);
    }
    EXPECT_EQ(count, c.left) << printed;
  }
}

TEST(Undo, ASetOfChangesOutsideCommandsIsAStepWhenItsLockEnds) {
  ScriptedHost host;
  AcDbDatabase* database = host.app().documents().current().database();
  AcApDocument* document = host.app().currentDocument();
  for (const wchar_t* name : {L"a", L"b"}) {
    ASSERT_EQ(acDocManager->lockDocument(document), Acad::eOk);
    const AcDbObjectPointer<AcDbLayerTable> layers(database->layerTableId(), AcDb::kForWrite);
    auto* record = new AcDbLayerTableRecord;
    record->setName(name);
    ASSERT_EQ(layers->add(record), Acad::eOk);
    record->close();
    layers.object()->close();
    ASSERT_EQ(acDocManager->unlockDocument(document), Acad::eOk);
  }
  host.run({"U"});
  const AcDbObjectPointer<AcDbLayerTable> layers(database->layerTableId(), AcDb::kForRead);
  EXPECT_TRUE(layers->has(L"a"));
  EXPECT_FALSE(layers->has(L"b"));
}

TEST(Undo, AnOpenObjectKeepsItsStep) {
  ScriptedHost host;
  host.run({"LINE 0,0 1,1", ""});
  const DrawingState before = stateOf(host.app());
  AcDbDatabase* database = host.app().documents().current().database();
  const AcDbObjectPointer<AcDbBlockTable> blocks(database->blockTableId(), AcDb::kForRead);
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead), Acad::eOk);
  EXPECT_NE(host.run({"U"}).find("in use"), std::string::npos);
  EXPECT_FALSE(host.good());
  space->close();
  EXPECT_EQ(stateOf(host.app()).objects, before.objects);
  host.run({"U"});
  EXPECT_TRUE(host.good());
}

}  // namespace
}  // namespace tarn::host
