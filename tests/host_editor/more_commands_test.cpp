// Layers, the clipboard, inquiries and scripts.
#include <gtest/gtest.h>

#include "base/file.h"
#include "base/path.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "tests/host_editor/drawnlines.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

using Lines = std::initializer_list<const char*>;

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(LayerCommand, doesWhatItsOptionsSay) {
  struct Case {
    Lines lines;
    const char* listed;
  };
  const Case cases[] = {
      {{"LAYER N", "walls,doors", "?", ""}, "\"doors\"  colour 7  on\n"},
      {{"LAYER M", "墙", "?", ""}, "\"墙\"  colour 7  on  current\n"},
      {{"LAYER N", "a", "S", "A", "C 3", "a", "?", ""}, "\"a\"  colour 3  on  current\n"},
      {{"LAYER N", "a", "OFF", "a", "F", "a", "LO", "a", "?", ""},
       "\"a\"  colour 7  off  frozen  locked\n"},
      {{"LAYER N", "a", "OFF", "*", "ON", "*", "?", ""}, "\"a\"  colour 7  on\n"},
      {{"LAYER N", "a*b", "X"}, "\"a*b\" is no layer name"},
      {{"LAYER S", "nowhere", "X"}, "There is no layer \"nowhere\"."},
      {{"LAYER F", "0", "X"}, "The current layer cannot be frozen."},
      {{"LAYER C 256", "X"}, "Colours are numbers from 1 to 255."},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    const std::string printed = host.run(c.lines);
    EXPECT_TRUE(contains(printed, c.listed)) << printed;
    EXPECT_TRUE(host.good()) << printed;
    host.run({"U"});
    const std::string after = host.run({"LAYER ?", ""});
    EXPECT_TRUE(contains(after, "\"0\"  colour 7  on  current")) << after;
    EXPECT_FALSE(contains(after, "\"a\"")) << after;
  }
}

TEST(LayerCommand, whatIsOffIsNotDrawnAndComesBackByUndo) {
  ScriptedHost host;
  host.run({"LINE 0,0 10,0", ""});
  const Scene& scene = host.app().documents().current().scene();
  EXPECT_EQ(scene.size(), 1U);
  host.run({"LAYER OFF", "0", ""});
  EXPECT_EQ(scene.size(), 0U);
  host.run({"U"});
  EXPECT_EQ(scene.size(), 1U);
}

TEST(Clipboard, carriesEntitiesAndTheirLayersIntoAnotherDrawing) {
  ScriptedHost host;
  EXPECT_TRUE(contains(host.run({"PASTECLIP"}), "The clipboard is empty."));
  host.run(
      {"LAYER M", "walls", "C 5", "walls", "", "LINE 10,20 30,20 30,40", "", "COPYCLIP ALL", ""});
  EXPECT_EQ(drawnLines(host.app()), "10,20>30,20 30,20>30,40") << "they stay where they are";
  host.run({"ERASE ALL", "", "PASTECLIP 0,0"});
  EXPECT_EQ(drawnLines(host.app()), "0,0>20,0 20,0>20,20");

  HostDocument& other = host.app().documents().create();
  host.run({"PASTECLIP 1,1"});
  EXPECT_EQ(drawnLines(host.app()), "1,1>21,1 21,1>21,21");
  const AcDbObjectPointer<AcDbLayerTable> layers(other.database()->layerTableId(), AcDb::kForRead);
  AcDbLayerTableRecord* walls = nullptr;
  ASSERT_EQ(layers->getAt(L"walls", walls, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(walls->colorIndex(), 5);
  const AcDbObjectPointer<AcDbEntity> line(currentSpaceEntities(other).front(), AcDb::kForRead);
  EXPECT_EQ(line->layerId(), walls->objectId());
  walls->close();
}

TEST(Clipboard, layersComeWithAllThatTheySay) {
  ScriptedHost host;
  host.run({"LAYER M", "walls", "", "LINE 10,20 30,20", ""});
  AcDbDatabase& from = *host.app().documents().current().database();
  {
    const AcDbObjectPointer<AcDbLinetypeTable> types(from.linetypeTableId(), AcDb::kForWrite);
    auto* dashed = new AcDbLinetypeTableRecord;
    dashed->setName(L"Zaun");
    dashed->setDashes({3, -1});
    AcDbObjectId id;
    ASSERT_EQ(types->add(id, dashed), Acad::eOk);
    dashed->close();
    const AcDbObjectPointer<AcDbLayerTableRecord> walls(from.clayer(), AcDb::kForWrite);
    walls->setLinetypeObjectId(id);
    walls->setLineWeight(AcDb::kLnWt050);
    walls->setIsPlottable(false);
    AcCmColor color;
    color.setColorIndex(3);
    color.setRGB(1, 2, 3);
    EXPECT_EQ(walls->setColor(color), Acad::eOk);
  }
  host.run({"COPYCLIP ALL", ""});
  HostDocument& other = host.app().documents().create();
  host.run({"PASTECLIP 1,1"});
  // As it stands in the file of the other drawing.
  const auto again = DrawingFile::fromBytes(other.drawing().bytes().take(), "again");
  ASSERT_TRUE(again) << again.message();
  const AcDbObjectPointer<AcDbLayerTable> layers(again.value()->database().layerTableId(),
                                                 AcDb::kForRead);
  AcDbLayerTableRecord* walls = nullptr;
  ASSERT_EQ(layers->getAt(L"walls", walls, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(walls->lineWeight(), AcDb::kLnWt050);
  EXPECT_FALSE(walls->isPlottable());
  EXPECT_TRUE(walls->color().isByColor());
  EXPECT_EQ(walls->color().green(), 2);
  const AcDbObjectPointer<AcDbLinetypeTableRecord> type(walls->linetypeObjectId(), AcDb::kForRead);
  ASSERT_EQ(type.openStatus(), Acad::eOk);
  const ACHAR* name = L"";
  type->getName(name);
  EXPECT_STREQ(name, L"Zaun");
  walls->close();
}

TEST(Inquiry, tellsWhatIsThere) {
  struct Case {
    Lines lines;
    const char* printed;
  };
  const Case cases[] = {
      {{"ID 40500123.456,3512345.678"}, "X = 40500123.456  Y = 3512345.678  Z = 0"},
      {{"DIST 0,0 3,4"}, "Distance = 5  angle = 53.13"},
      {{"DIST END 1,0 END 9,0"}, "Distance = 10  angle = 0"},
      {{"LIST L", ""}, "LINE  layer \"0\"  handle "},
      {{"LIST L", ""}, "from 0,0,0 to 10,0,0, length 10"},
      {{"HELP"}, "Change: MOVE (M), COPY (CO), ROTATE (RO)"},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    host.app().resizeView(400, 400);
    host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", ""});
    const std::string printed = host.run(c.lines);
    EXPECT_TRUE(contains(printed, c.printed)) << printed;
  }
}

TEST(Script, runsItsLinesLikeTypedOnes) {
  ScriptedHost host;
  const std::string path = joinPath(testing::TempDir(), "lines.scr");
  ASSERT_TRUE(writeFileAtomically(path,
                                  "; a remark\r\nLINE 0,0 1,1 2,2\r\n\r\nLINE\n5,5\n6,6\n\n"
                                  "USERS1 two words\nERASE L\n\n"));
  const std::string line = "SCRIPT \"" + path + "\"";
  host.run({line.c_str()});
  EXPECT_EQ(drawnLines(host.app()), "0,0>1,1 1,1>2,2");
  EXPECT_EQ(std::get<std::string>(*host.app().variables().get("USERS1")), "two words");
  EXPECT_TRUE(removeAll(path));
}

TEST(Pngout, writesThePicture) {
  ScriptedHost host;
  const std::string path = joinPath(testing::TempDir(), "shot.png");
  EXPECT_TRUE(removeAll(path));
  EXPECT_TRUE(contains(host.run({("PNGOUT " + path).c_str()}), "written."));
  EXPECT_EQ(fileKind(path), FileKind::kRegular);
  // An existing file is only replaced when that is wanted.
  host.run({("PNGOUT " + path).c_str(), "No"});
  EXPECT_TRUE(removeAll(path));
}

}  // namespace
}  // namespace tarn::host
