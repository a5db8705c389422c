// Attributes of insertions, and what other copies bring along into another drawing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "dbblockref.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kBlock[] =
    "  0\nBLOCK\n  5\nE1\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockBegin\n  2\nSTONE\n 70\n2\n "
    "10\n0.0\n"
    " 20\n0.0\n 30\n0.0\n  3\nSTONE\n  0\nENDBLK\n  5\nE2\n100\nAcDbEntity\n  8\n0\n100\n"
    "AcDbBlockEnd\n";
constexpr char kRecord[] =
    "  0\nBLOCK_RECORD\n  5\nE0\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n  "
    "2\nSTONE\n";

/// A drawing with an insertion at 1,2; `text` and `own` are what its attribute says behind its two
/// marks.
std::string withInsertion(const std::string& version, const std::string& text,
                          const std::string& own) {
  std::string bytes = newDrawingBytes(version);
  bytes.insert(bytes.find("BLOCKS\n") + 7, kBlock);
  const size_t records = bytes.find("BLOCK_RECORD\n");
  bytes.insert(bytes.find("  0\nENDTAB", records), kRecord);
  const std::string insertion =
      "  0\nINSERT\n  5\nF0\n330\n18\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockReference\n 66\n1\n"
      "  2\nSTONE\n 10\n1.0\n 20\n2.0\n 30\n0.0\n  0\nATTRIB\n  5\nF1\n330\nF0\n100\nAcDbEntity\n"
      "  8\n0\n 62\n5\n100\nAcDbText\n 10\n3.0\n 20\n4.0\n 30\n0.0\n 40\n2.5\n" +
      text + "100\nAcDbAttribute\n" + own +
      "  0\nSEQEND\n  5\nF2\n330\nF0\n100\nAcDbEntity\n  8\n0\n";
  bytes.insert(bytes.find("ENTITIES\n") + 9, insertion);
  return bytes;
}

std::unique_ptr<DrawingFile> opened(const std::string& bytes) {
  auto file = DrawingFile::fromBytes(bytes, "attributes");
  EXPECT_TRUE(file) << file.message();
  return file.take();
}

TEST(Attributes, areTheTextsThatTheirFirstMarkSays) {
  struct Case {
    const char* text;
    const char* own;
    short horizontal, vertical, generation;
  };
  const Case cases[] = {
      // Behind their own mark 71 is the kind of the attribute and 72 whether it is locked.
      {"  1\n17\n", "280\n0\n  2\nNO\n 70\n0\n 71\n2\n 72\n1\n", 0, 0, 0},
      {"  1\n17\n 71\n4\n 72\n2\n 11\n9.0\n 21\n9.0\n 31\n0.0\n",
       "  2\nNO\n 70\n0\n 71\n1\n 74\n3\n", 2, 3, 4},
      // All of the text there, as other programs have it.
      {"  1\n17\n",
       "  2\nNO\n 70\n0\n  7\nStandard\n 71\n2\n 72\n1\n 11\n9.0\n 21\n9.0\n 31\n0.0\n", 1, 0, 2},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.own);
    const std::string before = withInsertion("AC1032", each.text, each.own);
    const auto file = opened(before);
    touchEverything(file->database(), before);
    EXPECT_EQ(file->bytes().value(), before);
    const AcDbObjectPointer<AcDbBlockReference> insert(modelEntities(file->database())[0],
                                                       AcDb::kForRead);
    ASSERT_EQ(insert.openStatus(), Acad::eOk);
    ASSERT_EQ(insert->attributes().size(), 1U);
    const AcDbAttributeLine& line = insert->attributes()[0];
    EXPECT_EQ(line.tag, L"NO");
    EXPECT_EQ(line.text, L"17");
    EXPECT_EQ(line.horizontal, each.horizontal);
    EXPECT_EQ(line.vertical, each.vertical);
    EXPECT_EQ(line.generation, each.generation);
  }
}

/// The copy that the clipboard makes of the first entity of a drawing, read back from the file of
/// another one.
std::unique_ptr<DrawingFile> pastedInto(const std::string& version, DrawingFile& from) {
  const auto target = opened(newDrawingBytes("AC1015"));
  EXPECT_TRUE(target->setForm({version, false}));
  AcDbDatabase clipboard;
  const auto paste = [](AcDbDatabase& source, AcDbDatabase& into) {
    const AcDbObjectPointer<AcDbEntity> entity(modelEntities(source)[0], AcDb::kForRead);
    AcDbEntity* copy = DeepCloner(into).clone(*entity.object());
    ASSERT_NE(copy, nullptr);
    appendToModel(into, copy);
  };
  paste(from.database(), clipboard);
  paste(clipboard, target->database());
  return opened(target->bytes().take());
}

TEST(Attributes, comeAlongIntoAnotherDrawing) {
  const auto from =
      opened(withInsertion("AC1032", "  1\n宗地 17\n 72\n1\n 11\n9.0\n 21\n8.0\n 31\n0.0\n",
                           "  2\nNO\n 70\n1\n 74\n2\n"));
  for (const char* version : {"AC1015", "AC1032"}) {
    const auto again = pastedInto(version, *from);
    const AcDbObjectPointer<AcDbBlockReference> insert(modelEntities(again->database())[0],
                                                       AcDb::kForRead);
    ASSERT_EQ(insert.openStatus(), Acad::eOk);
    ASSERT_EQ(insert->attributes().size(), 1U);
    const AcDbAttributeLine& line = insert->attributes()[0];
    EXPECT_EQ(line.text, L"宗地 17");
    EXPECT_EQ(line.tag, L"NO");
    EXPECT_TRUE(line.hidden);
    EXPECT_EQ(line.color, 5);
    EXPECT_EQ(line.height, 2.5);
    EXPECT_EQ(line.alignment, AcGePoint3d(9, 8, 0));
    EXPECT_EQ(line.horizontal, 1);
    EXPECT_EQ(line.vertical, 2);
    EXPECT_EQ(modelEntities(again->database()).length(), 1);
  }
}

TEST(Attributes, ofVerticesOfACurveComeAlongToo) {
  const auto from = DrawingFile::createNew();
  auto* curve = new AcDbPolyline;
  std::vector<AcDbPolylineVertex> vertices(4);
  for (size_t i = 0; i < vertices.size(); ++i) {
    vertices[i].point = {double(i), double(i * i), 0};
    vertices[i].flags = i == 1 ? 16 : 8;
  }
  curve->setVertices(vertices);
  appendToModel(from->database(), curve);
  const auto again = pastedInto("AC1032", *from);
  const AcDbObjectPointer<AcDbPolyline> line(modelEntities(again->database())[0], AcDb::kForRead);
  ASSERT_EQ(line->vertices().size(), 4U);
  EXPECT_EQ(line->vertices()[1].flags, 16) << "a point of the frame, which is not drawn";
  EXPECT_EQ(line->vertices()[2].flags, 8);
  EXPECT_THAT(again->bytes().value(), HasSubstr("AcDb2dPolyline\n 66\n1\n 10\n"));
  EXPECT_THAT(again->bytes().value(), HasSubstr("\n 70\n4\n"));
}

TEST(Attributes, ofSeveralLinesTakeTheirTextAlong) {
  const std::string inner =
      "101\nEmbedded Object\n 70\n4\n 10\n3.0\n 20\n6.5\n 30\n0.0\n 40\n2.5\n 41\n8.0\n 71\n1\n"
      "  1\none\\Ptwo\n 11\n1.0\n 21\n0.0\n 31\n0.0\n 42\n7.0\n 43\n5.0\n 44\n1.0\n";
  const std::string bytes =
      withInsertion("AC1032", "  1\none\n", "280\n0\n  2\nNO\n 70\n0\n 71\n2\n" + inner);
  const auto file = opened(bytes);
  const auto transformed = [&](const AcGeMatrix3d& by) {
    {
      const AcDbObjectPointer<AcDbEntity> insert(modelEntities(file->database())[0],
                                                 AcDb::kForWrite);
      EXPECT_EQ(insert->transformBy(by), Acad::eOk);
    }
    return file->bytes().take();
  };
  EXPECT_THAT(
      transformed(AcGeMatrix3d::translation({10, 20, 0})),
      HasSubstr("Embedded Object\n 70\n4\n 10\n13.0\n 20\n26.5\n 30\n0.0\n 40\n2.5\n 41\n8.0\n"));
  EXPECT_THAT(
      transformed(AcGeMatrix3d::scaling(2, {10, 20, 0})),
      HasSubstr("Embedded Object\n 70\n4\n 10\n16.0\n 20\n33.0\n 30\n0.0\n 40\n5.0\n 41\n"
                "16.0\n 71\n1\n  1\none\\Ptwo\n 11\n1.0\n 21\n0.0\n 31\n0.0\n 42\n14.0\n 43\n"
                "10.0\n 44\n1.0\n"));
  const auto turned =
      transformed(AcGeMatrix3d::rotation(1.5707963267948966, AcGeVector3d::kZAxis, {10, 20, 0}));
  const auto number = [&](const char* code) {
    const size_t at = turned.find(code, turned.find("one\\Ptwo")) + std::string(code).size();
    return std::stod(turned.substr(at, 30));
  };
  EXPECT_NEAR(number("\n 11\n"), 0, 1e-12);
  EXPECT_NEAR(number("\n 21\n"), 1, 1e-12);
}

}  // namespace
}  // namespace tarn::host
