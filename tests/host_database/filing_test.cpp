// What is filed comes back, and short data is an error of the filer, never a guess.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "acutmem.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "host/database/memoryfiler.h"

namespace tarn::host {
namespace {

/// One record with a value of each kind.
void fill(AcDbXrecord& record) {
  const ads_point point = {40500123.456, 3512345.678, -0.25};
  resbuf* chain =
      acutBuildList(AcDb::kDxfText, L"影像 a.tif", AcDb::kDxfXReal, 2.5, AcDb::kDxfInt32,
                    Adesk::Int32{-70000}, AcDb::kDxfInt16, 7, AcDb::kDxfXCoord, point, RTNONE);
  ASSERT_NE(chain, nullptr);
  EXPECT_EQ(record.setFromRbChain(*chain), Acad::eOk);
  acutRelRb(chain);
}

void expectFilled(const AcDbXrecord& record) {
  resbuf* chain = nullptr;
  ASSERT_EQ(record.rbChain(&chain), Acad::eOk);
  const resbuf* item = chain;
  ASSERT_NE(item, nullptr);
  EXPECT_STREQ(item->resval.rstring, L"影像 a.tif");
  item = item->rbnext;
  EXPECT_EQ(item->resval.rreal, 2.5);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rlong, -70000);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rint, 7);
  item = item->rbnext;
  EXPECT_EQ(item->resval.rpoint[0], 40500123.456);
  EXPECT_EQ(item->resval.rpoint[2], -0.25);
  EXPECT_EQ(item->rbnext, nullptr);
  acutRelRb(chain);
}

TEST(Filing, RecordsAndEntitiesComeBackWhole) {
  AcDbXrecord record;
  fill(record);
  record.setMergeStyle(AcDb::kDrcReplace);
  AcDbLine line(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  line.setColorIndex(30);
  MemoryFiler out;
  EXPECT_EQ(record.dwgOut(&out), Acad::eOk);
  EXPECT_EQ(line.dwgOut(&out), Acad::eOk);

  MemoryFiler in(out.bytes());
  AcDbXrecord record2;
  AcDbLine line2;
  ASSERT_EQ(record2.dwgIn(&in), Acad::eOk);
  ASSERT_EQ(line2.dwgIn(&in), Acad::eOk);
  expectFilled(record2);
  EXPECT_EQ(record2.mergeStyle(), AcDb::kDrcReplace);
  EXPECT_EQ(line2.endPoint().y, 5);
  EXPECT_EQ(line2.colorIndex(), 30);
  EXPECT_EQ(in.tell(), static_cast<Adesk::Int64>(out.bytes().size()));
}

TEST(Filing, EveryShortenedFileIsRefusedAndChangesNothing) {
  AcDbXrecord record;
  fill(record);
  MemoryFiler out;
  record.dwgOut(&out);
  for (size_t length = 0; length < out.bytes().size(); ++length) {
    MemoryFiler in(
        std::vector<char>(out.bytes().begin(), out.bytes().begin() + static_cast<long>(length)));
    AcDbXrecord read;
    fill(read);
    EXPECT_EQ(read.dwgIn(&in), Acad::eEndOfObject) << length;
    expectFilled(read);
    double untouched = 3;
    EXPECT_EQ(in.readDouble(&untouched), Acad::eEndOfObject);
    EXPECT_EQ(untouched, 3);
  }
}

/// An entity that files a version of its own, as entities of modules do.
class Versioned : public AcDbEntity {
 public:
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? filer->writeUInt32(version) : status;
  }
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override {
    Adesk::UInt32 read = 0;
    Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    if (status == Acad::eOk) status = filer->readUInt32(&read);
    return status == Acad::eOk && read > 1 ? Acad::eMakeMeProxy : status;
  }
  Adesk::UInt32 version = 1;
};

TEST(Filing, AnEntitysOwnRefusalPassesThrough) {
  for (const Adesk::UInt32 version : {0U, 1U, 2U}) {
    Versioned written;
    written.version = version;
    MemoryFiler out;
    ASSERT_EQ(written.dwgOut(&out), Acad::eOk);
    MemoryFiler in(out.bytes());
    Versioned read;
    EXPECT_EQ(read.dwgIn(&in), version > 1 ? Acad::eMakeMeProxy : Acad::eOk) << version;
  }
}

TEST(Filing, HostileCountsAllocateNothing) {
  std::vector<char> bytes(64, '\x7f');
  MemoryFiler in(bytes);
  AcDbBlockTableRecord block;
  EXPECT_NE(block.dwgIn(&in), Acad::eOk);
  MemoryFiler again(bytes);
  AcDbDictionary dictionary;
  EXPECT_NE(dictionary.dwgIn(&again), Acad::eOk);
}

TEST(Filing, RecordsRefuseWhatTheyCannotKeep) {
  AcDbXrecord record;
  fill(record);
  for (const int code : {RTSHORT, 1000, 0, 500}) {
    resbuf bad{};
    bad.restype = static_cast<short>(code);
    EXPECT_EQ(record.setFromRbChain(bad), Acad::eInvalidResBuf) << code;
  }
  expectFilled(record);
}

}  // namespace
}  // namespace tarn::host
