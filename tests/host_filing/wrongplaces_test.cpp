// Objects whose tags stand where other programs, or damage, have put them: what is read from a
// place is written there.
#include <gtest/gtest.h>

#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

struct Case {
  const char* what;
  const char* version;
  std::string entity;
};

const std::string kHatch =
    "10\n0.0\n20\n0.0\n30\n0.0\n2\nANSI31\n70\n0\n71\n0\n91\n1\n92\n3\n72\n0\n73\n1\n93\n3\n"
    "10\n0.0\n20\n0.0\n10\n5.0\n20\n0.0\n10\n5.0\n20\n5.0\n97\n0\n75\n1\n76\n1\n52\n0.0\n41\n1.0\n"
    "77\n0\n78\n1\n53\n45.0\n43\n0.0\n44\n0.0\n45\n-1.0\n46\n1.0\n79\n0\n98\n0\n";
const std::string kEntity = "100\nAcDbEntity\n8\n0\n";

std::vector<Case> cases() {
  return {
      {"a hatch whose first mark is broken, and once more", "AC0507",
       "0\nHATCH\n5\nA1\n" + kEntity + "100\nAcD)Hatch\n" + kHatch.substr(0, kHatch.find("92\n")) +
           kEntity + "100\nAcDbHatch\n" + kHatch},
      {"a line with points before its mark", "AC1021",
       "0\nLINE\n5\nA1\n" + kEntity + "10\n7.0\n20\n7.0\n100\nAcDbLine\n10\n1.0\n20\n2.0\n" +
           "11\n3.0\n21\n4.0\n"},
      {"a line without points behind its mark", "AC1021",
       "0\nLINE\n5\nA1\n" + kEntity +
           "10\n7.0\n20\n7.0\n11\n8.0\n21\n9.0\n100\nAcDbLine\n39\n1.5\n"},
      {"vertices before the mark", "AC1021",
       "0\nLWPOLYLINE\n5\nA1\n" + kEntity + "10\n7.0\n20\n7.0\n100\nAcDbPolyline\n90\n2\n70\n0\n" +
           "10\n1.0\n20\n2.0\n10\n3.0\n20\n4.0\n"},
      {"angles in both parts of an arc", "AC1021",
       "0\nARC\n5\nA1\n" + kEntity +
           "100\nAcDbCircle\n10\n1.0\n20\n1.0\n40\n2.0\n50\n10.0\n51\n20.0\n" +
           "100\nAcDbArc\n50\n90.0\n51\n180.0\n"},
      {"alignments in both parts of a text", "AC1021",
       "0\nTEXT\n5\nA1\n" + kEntity + "100\nAcDbText\n10\n1.0\n20\n1.0\n40\n2.0\n1\nabc\n73\n2\n" +
           "11\n3.0\n21\n3.0\n100\nAcDbText\n73\n1\n"},
      {"points of a dimension before what is measured", "AC1021",
       "0\nDIMENSION\n5\nA1\n" + kEntity +
           "100\nAcDbDimension\n10\n1.0\n20\n1.0\n13\n9.0\n23\n9.0\n70\n1\n3\nStandard\n" +
           "100\nAcDbAlignedDimension\n13\n1.0\n23\n0.0\n14\n5.0\n24\n0.0\n"},
      {"a group that nobody closes", "AC1021",
       "0\nCIRCLE\n5\nA1\n102\n{ACAD_REACTORS\n330\n7F\n" + kEntity +
           "100\nAcDbCircle\n10\n1.0\n20\n1.0\n40\n2.0\n"},
      {"vertices behind extended data", "AC1021",
       "0\nLWPOLYLINE\n5\nA1\n" + kEntity + "100\nAcDbPolyline\n90\n2\n70\n0\n10\n1.0\n20\n2.0\n" +
           "10\n3.0\n20\n4.0\n1001\nAPP\n1000\nx\n10\n5.0\n20\n6.0\n"},
      {"a layer and a text with a byte of 0", "AC1021",
       replaceAll("0\nMTEXT\n5\nA1\n100\nAcDbEntity\n8\n%\n100\nAcDbMText\n10\n1.0\n20\n2.0\n40\n"
                  "1.0\n71\n1\n1\nfirst%second\n",
                  "%", std::string(1, '\0'))},
  };
}

std::unique_ptr<DrawingFile> opened(const std::string& bytes) {
  auto file = DrawingFile::fromBytes(bytes, "test.dxf");
  EXPECT_TRUE(file) << file.message();
  return file.take();
}

AcDbExtents extentsOf(DrawingFile& file) {
  AcDbExtents box;
  for (const AcDbObjectId& id : modelEntities(file.database())) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbExtents own;
    if (entity->getGeomExtents(own) == Acad::eOk) box.addExt(own);
  }
  return box;
}

TEST(WrongPlaces, whatIsReadFromAPlaceIsWrittenThere) {
  for (const Case& each : cases()) {
    SCOPED_TRACE(each.what);
    const std::string before = std::string("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n") +
                               each.version + "\n9\n$HANDSEED\n5\nFF\n0\nENDSEC\n" +
                               "0\nSECTION\n2\nENTITIES\n" + each.entity + "0\nENDSEC\n0\nEOF\n";
    const auto file = opened(before);
    ASSERT_EQ(modelEntities(file->database()).length(), 1);
    touchEverything(file->database(), before);
    EXPECT_TRUE(sameTags(before, file->bytes().take()));
    {
      const AcDbObjectPointer<AcDbEntity> entity(modelEntities(file->database())[0],
                                                 AcDb::kForWrite);
      ASSERT_EQ(entity->transformBy(AcGeMatrix3d::translation({100, 200, 0})), Acad::eOk);
    }
    const auto again = opened(file->bytes().take());
    EXPECT_EQ(again->database().approxNumObjects(), file->database().approxNumObjects());
    const AcDbExtents now = extentsOf(*again);
    EXPECT_EQ(now.minPoint(), extentsOf(*file).minPoint());
    EXPECT_EQ(now.maxPoint(), extentsOf(*file).maxPoint());
    EXPECT_GT(now.minPoint().x, 50);
  }
}

}  // namespace
}  // namespace tarn::host
