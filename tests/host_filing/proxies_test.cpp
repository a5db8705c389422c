// Entities of classes that are not there, or are older than what was filed.
#include <gtest/gtest.h>

#include "dbobjptr.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "host/database/memoryfiler.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingfile.h"
#include "host/filing/proxies.h"
#include "rxclass.h"
#include "tests/host_filing/drawingfixture.h"

namespace tarn::host {
namespace {

/// An entity that files a version of its own, as entities of modules do.
class Probe : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(Probe);
  static Adesk::UInt32 newest;
  Adesk::UInt32 version = 1;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override {
    AcDbEntity::dwgOutFields(filer);
    return filer->writeUInt32(version);
  }
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readUInt32(&version);
    return version > newest ? Acad::eMakeMeProxy : filer->filerStatus();
  }
};
Adesk::UInt32 Probe::newest = 1;
ACRX_DXF_DEFINE_MEMBERS(Probe, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, PROBE,
                        Probes)

constexpr char kProbe[] =
    "  0\nPROBE\n  5\nFF\n330\n18\n100\nAcDbEntity\n  8\n0\n100\nProbe\n 40\n2.50\n999\nkept\n";

std::string withProbe(int flags) {
  std::string bytes = newDrawingBytes("AC1021");
  bytes.insert(bytes.find("ENTITIES\n") + 9, kProbe);
  const std::string record = "  0\nCLASS\n  1\nPROBE\n  2\nProbe\n  3\nProbes\n 90\n" +
                             std::to_string(flags) + "\n280\n0\n281\n1\n";
  return bytes.insert(bytes.find("CLASSES\n") + 8, record);
}

TEST(Proxies, standForEntitiesOfTheFileUntilTheirClassIsThere) {
  for (const int flags : {0, int{AcDbProxyEntity::kEraseAllowed}}) {
    auto opened = DrawingFile::fromBytes(withProbe(flags), "probes");
    ASSERT_TRUE(opened) << opened.message();
    AcDbDatabase& database = opened.value()->database();
    ASSERT_EQ(modelEntities(database).length(), 1);
    EXPECT_EQ(opened.value()->bytes().value(), withProbe(flags));
    const AcDbObjectPointer<AcDbProxyEntity> proxy(modelEntities(database)[0], AcDb::kForWrite);
    ASSERT_EQ(proxy.openStatus(), Acad::eOk);
    EXPECT_STREQ(proxy->originalClassName(), L"Probe");
    EXPECT_STREQ(proxy->originalDxfName(), L"PROBE");
    EXPECT_STREQ(proxy->applicationDescription(), L"Probes");
    EXPECT_EQ(proxy->proxyFlags(), flags);
    EXPECT_EQ(proxy->transformBy(AcGeMatrix3d()), Acad::eNotApplicable);
    EXPECT_EQ(DeepCloner(database).clone(*proxy.object()), nullptr);
    EXPECT_EQ(proxy->erase(), flags == 0 ? Acad::eNotApplicable : Acad::eOk);
    const bool isThere = opened.value()->bytes().value().find("2.50") != std::string::npos;
    EXPECT_EQ(isThere, flags == 0);
  }
  auto opened = DrawingFile::fromBytes(withProbe(0), "probes");
  AcDbDatabase& database = opened.value()->database();
  const AcDbObjectId id = modelEntities(database)[0];
  {
    const AcDbObjectPointer<AcDbProxyEntity> proxy(id, AcDb::kForWrite);
    EXPECT_EQ(proxy->setColorIndex(3), Acad::eOk);
  }
  EXPECT_NE(opened.value()->bytes().value().find("2.50\n999\nkept\n"), std::string::npos);
  Probe::rxInit();
  acrxBuildClassHierarchy();
  class Listener : public AcDbDatabaseReactor {
   public:
    void proxyResurrectionCompleted(const AcDbDatabase*, const ACHAR*) override { ++calls; }
    int calls = 0;
  } listener;
  database.addReactor(&listener);
  EXPECT_EQ(opened.value()->bindRegisteredClasses(), 1U);
  EXPECT_EQ(opened.value()->bindRegisteredClasses(), 0U);
  EXPECT_EQ(listener.calls, 1);
  database.removeReactor(&listener);
  EXPECT_EQ(modelEntities(database).length(), 1);
  {
    const AcDbObjectPointer<Probe> probe(id, AcDb::kForRead);
    ASSERT_EQ(probe.openStatus(), Acad::eOk);
    EXPECT_EQ(probe->colorIndex(), 3) << "what was done to the stand-in stays";
  }
  const std::string saved = opened.value()->bytes().take();
  EXPECT_NE(saved.find(" 40\n2.50\n999\nkept\n"), std::string::npos);
  EXPECT_NE(saved.find(" 62\n3\n"), std::string::npos);
}

TEST(Proxies, keepWhatANewerClassHasFiled) {
  Probe::rxInit();
  acrxBuildClassHierarchy();
  const auto file = DrawingFile::createNew();
  AcDbDatabase& database = file->database();
  auto* written = new Probe;
  written->version = 2;
  appendToModel(database, written);
  const AcDbObjectPointer<Probe> probe(written->objectId(), AcDb::kForRead);
  AcDbEntity* copy = DeepCloner(database).clone(*probe.object());
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(copy->isKindOf(AcDbProxyEntity::desc()));
  appendToModel(database, copy);
  const AcDbObjectId id = copy->objectId();
  EXPECT_EQ(resurrectFiled(database), 0U) << "the class is still older";
  Probe::newest = 2;
  EXPECT_EQ(resurrectFiled(database), 1U);
  Probe::newest = 1;
  const AcDbObjectPointer<Probe> again(id, AcDb::kForRead);
  ASSERT_EQ(again.openStatus(), Acad::eOk);
  EXPECT_EQ(again->version, 2U);
}

}  // namespace
}  // namespace tarn::host
