// Line types, weights, colours, transparency, thickness, styles and extended data of objects: what
// a copy keeps, what is written, what undo brings back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "acutads.h"
#include "adscodes.h"
#include "base/text.h"
#include "dbapserv.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/database/layouts.h"
#include "host/database/objectstate.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingfile.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kTables[] =
    "0\nSECTION\n2\nTABLES\n"
    "0\nTABLE\n2\nLTYPE\n5\n2\n70\n1\n"
    "0\nLTYPE\n5\nA1\n330\n2\n100\nAcDbSymbolTableRecord\n100\nAcDbLinetypeTableRecord\n2\nFENCE\n"
    "70\n0\n3\nFence __ x\n72\n65\n73\n2\n40\n12.5\n49\n7.5\n74\n0\n49\n-5.0\n74\n2\n75\n0\n340\n"
    "A2\n46\n1.5\n50\n0.0\n44\n-1.0\n45\n-0.5\n9\nx\n0\nENDTAB\n"
    "0\nTABLE\n2\nSTYLE\n5\n3\n70\n1\n"
    "0\nSTYLE\n5\nA2\n330\n3\n100\nAcDbSymbolTableRecord\n100\nAcDbTextStyleTableRecord\n2\n"
    "Kataster\n70\n0\n40\n0.0\n41\n0.75\n50\n0.0\n71\n0\n42\n2.5\n3\nromans.shx\n4\nhztxt.shx\n"
    "0\nENDTAB\n"
    "0\nTABLE\n2\nAPPID\n5\n4\n70\n1\n"
    "0\nAPPID\n5\nA3\n330\n4\n100\nAcDbSymbolTableRecord\n100\nAcDbRegAppTableRecord\n2\nPARCELS\n"
    "70\n0\n0\nENDTAB\n0\nENDSEC\n";

constexpr char kEntities[] =
    "0\nSECTION\n2\nENTITIES\n"
    "0\nLINE\n5\nB1\n100\nAcDbEntity\n8\n0\n6\nfence\n62\n5\n48\n2.50\n370\n50\n420\n1122867\n430\n"
    "BOOK$Tan\n440\n33554559\n100\nAcDbLine\n39\n3.5\n10\n1.0\n20\n2.0\n30\n0.0\n11\n3.0\n21\n4.0\n"
    "31\n0.0\n1001\nPARCELS\n1000\n地块 "
    "7\n1002\n{\n1010\n40500000.125\n1020\n2.0\n1030\n3.0\n1040\n"
    "1.50\n1070\n7\n1071\n70000\n1004\n0AFF\n1005\nB1\n1002\n}\n"
    "0\nTEXT\n5\nB2\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0.0\n20\n0.0\n40\n2.0\n1\nabc\n7\n"
    "KATASTER\n100\nAcDbText\n1001\nPARCELS\n1000\nACAD_MTEXT_COLUMNS_BEGIN\n1005\nB1\n1000\n"
    "ACAD_MTEXT_COLUMNS_END\n1070\n9\n0\nENDSEC\n0\nEOF\n";

std::string source(const std::string& version = "AC1021") {
  return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" + version +
         "\n9\n$HANDSEED\n5\nFF\n0\nENDSEC\n" + kTables + kEntities;
}

std::unique_ptr<DrawingFile> opened(const std::string& bytes) {
  auto file = DrawingFile::fromBytes(bytes, "test.dxf");
  EXPECT_TRUE(file) << file.message();
  return file.take();
}

/// The lines of a file without the blanks around codes.
std::string bare(const std::string& bytes) {
  std::string out;
  for (const std::string& line : split(bytes, '\n')) out += std::string(trim(line)) + "\n";
  return out;
}

/// Copies of all entities of one drawing in another, or in itself.
void copyAll(DrawingFile& from, DrawingFile& to) {
  DeepCloner cloner(to.database());
  for (const AcDbObjectId& id : modelEntities(from.database())) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbEntity* copy = cloner.clone(*entity.object());
    ASSERT_NE(copy, nullptr);
    appendToModel(to.database(), copy);
  }
}

/// Everything that the line of the source has beside its place.
void expectLine(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
  ASSERT_EQ(line.openStatus(), Acad::eOk);
  ACHAR* linetype = line->linetype();
  EXPECT_STREQ(linetype, L"FENCE");
  acutDelString(linetype);
  EXPECT_EQ(line->linetypeScale(), 2.5);
  EXPECT_EQ(line->lineWeight(), AcDb::kLnWt050);
  EXPECT_TRUE(line->color().isByColor());
  EXPECT_EQ(line->color().green(), 0x22);
  EXPECT_EQ(line->colorIndex(), 5);
  EXPECT_EQ(line->transparency().alpha(), 127);
  EXPECT_EQ(line->thickness(), 3.5);
  resbuf* data = line->xData(L"parcels");
  ASSERT_NE(data, nullptr);
  EXPECT_STREQ(data->rbnext->resval.rstring, L"地块 7");
  EXPECT_EQ(data->rbnext->rbnext->rbnext->resval.rpoint[0], 40500000.125);
  acutRelRb(data);
  EXPECT_EQ(line->xData(L"OTHER"), nullptr);
}

TEST(Properties, AreCopiedWithinADrawingAndIntoAnother) {
  const auto from = opened(source());
  expectLine(modelEntities(from->database())[0]);
  const auto fresh = DrawingFile::createNew();
  for (DrawingFile* target : {from.get(), fresh.get()}) {
    copyAll(*from, *target);
    const auto again = opened(target->bytes().take());
    const AcDbObjectIdArray ids = modelEntities(again->database());
    expectLine(ids[ids.length() - 2]);
    const AcDbObjectPointer<AcDbText> text(ids[ids.length() - 1], AcDb::kForRead);
    const AcDbObjectPointer<AcDbTextStyleTableRecord> style(text->line().style, AcDb::kForRead);
    ASSERT_EQ(style.openStatus(), Acad::eOk);
    const std::string bytes = bare(target->bytes().take());
    // Another drawing does not have the object that is referred to.
    const bool isSame = target == from.get();
    EXPECT_EQ(bytes.find("\n1005\n0\n") == std::string::npos, isSame);
    // A text refers to the texts that are its columns; a copy has none.
    EXPECT_EQ(bytes.find("COLUMNS_BEGIN") == std::string::npos, !isSame);
    EXPECT_EQ(bytes.find("COLUMNS_BEGIN"), bytes.rfind("COLUMNS_BEGIN"));
    // What a new drawing is given of the tables is all that the old one says.
    EXPECT_THAT(bytes,
                HasSubstr("\n73\n2\n40\n12.5\n49\n7.5\n74\n0\n49\n-5.0\n74\n2\n75\n0\n340\n"));
    EXPECT_THAT(bytes, HasSubstr("\n3\nromans.shx\n4\nhztxt.shx\n"));
    EXPECT_THAT(bytes, HasSubstr("AcDbRegAppTableRecord\n2\nPARCELS\n"));
  }
}

TEST(Properties, OnlyWhatChangesIsWrittenAnew) {
  const std::string before = source();
  const auto file = opened(before);
  touchEverything(file->database(), before);
  EXPECT_EQ(file->bytes().take(), before);
  const AcDbObjectId id = modelEntities(file->database())[0];
  Bytes state;
  {
    const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    state = objectBytes(*line.object());
    line->setColorIndex(3);
    line->setLineWeight(AcDb::kLnWtByLayer);
    line->setThickness(0);
    line->setLinetype(L"ByLayer");
    EXPECT_EQ(line->setLinetype(L"NOWHERE"), Acad::eKeyNotFound);
    resbuf* none = acutBuildList(1001, L"PARCELS", 0);
    EXPECT_EQ(line->setXData(none), Acad::eOk);
    acutRelRb(none);
  }
  const std::string changed = file->bytes().take();
  EXPECT_THAT(changed, HasSubstr("8\n0\n6\nByLayer\n62\n3\n48\n2.50\n370\n-1\n440\n33554559\n"
                                 "100\nAcDbLine\n39\n0.0\n10\n"));
  EXPECT_THAT(changed, Not(HasSubstr("1122867")));
  EXPECT_THAT(changed, Not(HasSubstr("地块")));
  // As undo does it.
  {
    const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    EXPECT_TRUE(readObjectBytes(*line.object(), state));
  }
  expectLine(id);
  EXPECT_EQ(file->bytes().take(), before);
}

TEST(Properties, ExtendedDataIsReplacedByApplication) {
  const auto file = opened(source());
  AcDbObjectPointer<AcDbLine> line(modelEntities(file->database())[0], AcDb::kForWrite);
  struct Case {
    resbuf* chain;
    Acad::ErrorStatus status;
  };
  const Case cases[] = {
      {acutBuildList(1001, L"NOBODY", 1070, 1, 0), Acad::eRegappIdNotFound},
      {acutBuildList(1070, 1, 0), Acad::eInvalidResBuf},
      {acutBuildList(1001, L"PARCELS", 70, 1, 0), Acad::eInvalidResBuf},
      {acutBuildList(1001, L"ACAD", 1070, 1, 1001, L"parcels", 1070, 2, 0), Acad::eOk},
  };
  acdbHostApplicationServices()->setWorkingDatabase(&file->database());
  EXPECT_EQ(acdbRegApp(L"ACAD"), RTNORM);
  EXPECT_EQ(acdbRegApp(L""), RTERROR);
  for (const Case& each : cases) {
    EXPECT_EQ(line->setXData(each.chain), each.status);
    acutRelRb(each.chain);
  }
  EXPECT_EQ(line->setXData(nullptr), Acad::eInvalidInput);
  line.close();
  const std::string bytes = bare(file->bytes().take());
  EXPECT_THAT(bytes, HasSubstr("\n1001\nACAD\n1070\n1\n1001\nparcels\n1070\n2\n0\nTEXT\n"));
  EXPECT_THAT(bytes, HasSubstr("AcDbRegAppTableRecord\n2\nACAD\n"));
}

TEST(Properties, PlacesAndLengthsInExtendedDataGoWithTheirEntity) {
  const std::string values =
      "1001\nPARCELS\n1010\n1.0\n1020\n2.0\n1030\n3.0\n1011\n1.0\n1021\n2.0\n1031\n3.0\n"
      "1012\n1.0\n1022\n0.0\n1032\n0.0\n1013\n0.0\n1023\n1.0\n1033\n0.0\n"
      "1040\n5.0\n1041\n6.0\n1042\n7.0\n";
  const auto changed = [&](const AcGeMatrix3d& transform) {
    std::string bytes = newDrawingBytes("AC1015");
    const std::string line =
        "  0\nLINE\n  5\nFF\n330\n18\n100\nAcDbEntity\n  8\n0\n100\nAcDbLine\n"
        " 10\n0.0\n 20\n0.0\n 30\n0.0\n 11\n1.0\n 21\n1.0\n 31\n0.0\n";
    bytes.insert(bytes.find("ENTITIES\n") + 9, line + values);
    const auto file = opened(bytes);
    {
      const AcDbObjectPointer<AcDbLine> drawn(modelEntities(file->database())[0], AcDb::kForWrite);
      EXPECT_EQ(drawn->transformBy(transform), Acad::eOk);
    }
    const std::string after = file->bytes().take();
    const size_t begin = after.find("1001\nPARCELS");
    return after.substr(begin, after.find("  0\n", begin) - begin);
  };
  EXPECT_EQ(changed(AcGeMatrix3d()), values);
  EXPECT_EQ(changed(AcGeMatrix3d::translation({10, 20, 0})),
            replaceAll(values, "1011\n1.0\n1021\n2.0", "1011\n11.0\n1021\n22.0"));
  AcGeMatrix3d twice;
  twice.setToScaling(2);
  std::string scaled =
      replaceAll(values, "1011\n1.0\n1021\n2.0\n1031\n3.0", "1011\n2.0\n1021\n4.0\n1031\n6.0");
  scaled = replaceAll(scaled, "1012\n1.0", "1012\n2.0");
  EXPECT_EQ(changed(twice), replaceAll(scaled, "1041\n6.0\n1042\n7.0", "1041\n12.0\n1042\n14.0"));
  AcGeMatrix3d mirror;
  mirror(1, 1) = -1;
  EXPECT_EQ(changed(mirror),
            replaceAll(replaceAll(values, "1021\n2.0", "1021\n-2.0"), "1023\n1.0", "1023\n-1.0"));
}

TEST(Properties, ExtendedDataOfWhatIsNoEntityIsKept) {
  auto file = DrawingFile::createNew();
  const auto objects = [&] {
    AcDbDatabase& database = file->database();
    return std::vector<AcDbObjectId>{database.layerZero(), database.namedObjectsDictionaryId(),
                                     layoutNamed(database, "Layout1").id};
  };
  const std::vector<resbuf*> chains = {acutBuildList(1001, L"ACAD", 1000, L"note", 0),
                                       acutBuildList(1001, L"ACAD", 1071, 8, 0),
                                       acutBuildList(1001, L"ACAD", 0)};
  for (resbuf* chain : chains) {
    for (const AcDbObjectId& id : objects()) {
      const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite);
      EXPECT_EQ(object->setXData(chain), Acad::eOk);
    }
    file = opened(file->bytes().take());
    for (const AcDbObjectId& id : objects()) {
      const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForRead);
      resbuf* found = object->xData();
      EXPECT_EQ(found != nullptr, chain->rbnext != nullptr);
      EXPECT_TRUE(found == nullptr || found->rbnext->restype == chain->rbnext->restype);
      acutRelRb(found);
    }
    acutRelRb(chain);
  }
}

/// Also what is kept without being understood, vertices, attributes and extended data.
TEST(Properties, WhatIsOnALayerFollowsWhenItIsRenamed) {
  const std::string before =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$HANDSEED\n5\nFF\n9\n$"
      "CLAYER\n8\nWALLS\n0\n"
      "ENDSEC\n0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n5\n1\n70\n1\n0\nLAYER\n5\n2\n100\n"
      "AcDbSymbolTableRecord\n100\nAcDbLayerTableRecord\n2\nWALLS\n70\n0\n62\n3\n6\nCONTINUOUS\n0\n"
      "ENDTAB\n0\nTABLE\n2\nAPPID\n5\n3\n70\n1\n0\nAPPID\n5\n4\n100\nAcDbSymbolTableRecord\n100\n"
      "AcDbRegAppTableRecord\n2\nPARCELS\n70\n0\n0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"
      "0\nLINE\n5\nA1\n100\nAcDbEntity\n8\nWALLS\n100\nAcDbLine\n10\n0.0\n20\n0.0\n11\n1.0\n21\n0."
      "0\n"
      "0\nLIGHT\n5\nA2\n100\nAcDbEntity\n8\nWALLS\n100\nAcDbLight\n90\n0\n"
      "0\nPOLYLINE\n5\nA3\n100\nAcDbEntity\n8\n0\n100\nAcDb2dPolyline\n66\n1\n70\n0\n"
      "0\nVERTEX\n5\nA4\n100\nAcDbEntity\n8\nWALLS\n100\nAcDbVertex\n100\nAcDb2dVertex\n10\n0."
      "0\n20\n"
      "0.0\n0\nVERTEX\n5\nA5\n100\nAcDbEntity\n8\n0\n100\nAcDbVertex\n100\nAcDb2dVertex\n10\n5."
      "0\n20\n"
      "0.0\n0\nSEQEND\n5\nA6\n100\nAcDbEntity\n8\nWALLS\n"
      "0\nLINE\n5\nA7\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0.0\n20\n0.0\n11\n1.0\n21\n0."
      "0\n1001\n"
      "PARCELS\n1003\nWALLS\n1000\nWALLS\n0\nENDSEC\n0\nEOF\n";
  const auto file = opened(before);
  {
    const AcDbObjectPointer<AcDbLayerTable> layers(file->database().layerTableId(), AcDb::kForRead);
    AcDbLayerTableRecord* walls = nullptr;
    ASSERT_EQ(layers->getAt(L"WALLS", walls, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(walls->setName(L"FENCES"), Acad::eOk);
    walls->close();
  }
  std::string expected = before;
  for (const char* where : {"\n8\nWALLS\n", "\n1003\nWALLS\n", "\n2\nWALLS\n"}) {
    const std::string from = where;
    const std::string name = "FENCES\n";
    for (size_t at = expected.find(from); at != std::string::npos; at = expected.find(from, at)) {
      expected.replace(at + from.size() - 6, 6, name);
    }
  }
  const std::string after = file->bytes().take();
  EXPECT_TRUE(sameTags(expected, after)) << after;
}

template <class Table, class Record>
void rename(AcDbObjectId tableId, const ACHAR* from, const ACHAR* to) {
  const AcDbObjectPointer<Table> table(tableId, AcDb::kForRead);
  Record* record = nullptr;
  ASSERT_EQ(table->getAt(from, record, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(record->setName(to), Acad::eOk);
  record->close();
}

/// "%L", "%S" and "%B" are a line type, a style and a block where they are named; what only reads
/// the same stays.
TEST(Properties, WhatNamesLineTypesStylesAndBlocksFollowsWhenTheyAreRenamed) {
  const std::string head = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n";
  const std::string variables =
      "\n9\n$HANDSEED\n5\nFF\n9\n$CELTYPE\n6\n%L\n9\n$TEXTSTYLE\n7\n%S\n9\n$DIMBLK\n1\n%B\n0\n"
      "ENDSEC\n0\nSECTION\n2\nTABLES\n";
  const std::string tables =
      "0\nTABLE\n2\nLTYPE\n70\n1\n0\nLTYPE\n2\n%L\n70\n0\n3\nDASH\n72\n65\n73\n0\n40\n0.0\n0\n"
      "ENDTAB\n0\nTABLE\n2\nLAYER\n70\n1\n0\nLAYER\n2\nDASH\n70\n0\n62\n3\n6\n%L\n0\nENDTAB\n"
      "0\nTABLE\n2\nSTYLE\n70\n1\n0\nSTYLE\n2\n%S\n70\n0\n40\n0.0\n41\n1.0\n50\n0.0\n3\nROMAN\n4\n"
      "\n0\nENDTAB\n";
  const std::string blockRecord =
      "0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n70\n1\n0\nBLOCK_RECORD\n5\n2\n330\n1\n100\n"
      "AcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\n%B\n0\nENDTAB\n";
  const std::string rest =
      "0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\n%B\n70\n0\n10\n0.0\n20\n0.0\n3\n%B\n"
      "0\nLINE\n8\nDASH\n6\n%L\n10\n0.0\n20\n0.0\n11\n1.0\n21\n0.0\n0\nENDBLK\n8\n0\n0\nENDSEC\n"
      "0\nSECTION\n2\nENTITIES\n0\nINSERT\n5\nA1\n8\n0\n66\n1\n2\n%B\n10\n1.0\n20\n2.0\n"
      "0\nATTRIB\n5\nA2\n8\n0\n6\n%L\n10\n0.0\n20\n0.0\n40\n1.0\n1\nTREE\n7\n%S\n2\nTREE\n70\n0\n"
      "0\nSEQEND\n5\nA3\n8\n0\n0\nTEXT\n5\nA4\n8\n0\n10\n0.0\n20\n0.0\n40\n1.0\n1\nROMAN\n7\n%S\n"
      "0\nUNKNOWN\n5\nA5\n8\nDASH\n6\n%L\n2\nTREE\n0\nENDSEC\n0\nEOF\n";
  for (const bool isOld : {true, false}) {
    SCOPED_TRACE(isOld);
    const std::string bytes = head + (isOld ? "AC1009" : "AC1015") + variables + tables +
                              (isOld ? "" : blockRecord) + rest;
    const auto named = [&](const char* line, const char* style, const char* block) {
      return replaceAll(replaceAll(replaceAll(bytes, "%L", line), "%S", style), "%B", block);
    };
    const auto file = opened(named("DASH", "ROMAN", "TREE"));
    AcDbDatabase& database = file->database();
    rename<AcDbLinetypeTable, AcDbLinetypeTableRecord>(database.linetypeTableId(), L"dash",
                                                       L"FENCE");
    rename<AcDbTextStyleTable, AcDbTextStyleTableRecord>(database.textStyleTableId(), L"ROMAN",
                                                         L"Kataster");
    rename<AcDbBlockTable, AcDbBlockTableRecord>(database.blockTableId(), L"TREE", L"\u6811");
    const std::string after = file->bytes().take();
    EXPECT_TRUE(sameTags(named("FENCE", "Kataster", "\xE6\xA0\x91"), after)) << after;
  }
}

TEST(Properties, OlderVersionsGetWhatTheyCanHold) {
  struct Case {
    const char* version;
    bool weight;
    bool color;
  };
  for (const Case& each : {Case{"AC1009", false, false},
                           {"AC1012", false, false},
                           {"AC1015", true, false},
                           {"AC1018", true, true}}) {
    const auto from = opened(source());
    const auto target = opened("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" +
                               std::string(each.version) + "\n9\n$HANDSEED\n5\nFF\n0\nENDSEC\n" +
                               kTables + "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    copyAll(*from, *target);
    const std::string bytes = bare(target->bytes().take());
    SCOPED_TRACE(each.version);
    EXPECT_EQ(bytes.find("\n370\n50\n") != std::string::npos, each.weight);
    EXPECT_EQ(bytes.find("\n420\n1122867\n") != std::string::npos, each.color);
    EXPECT_EQ(bytes.find("\n440\n33554559\n") != std::string::npos, each.color);
    EXPECT_THAT(bytes, HasSubstr("\n6\nFENCE\n"));
  }
}

}  // namespace
}  // namespace tarn::host
