#include <gtest/gtest.h>

#include "acedads.h"
#include "dbents.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

TEST(Selection, holdsEveryEntityOfTheDrawing) {
  ScriptedHost host;
  ads_name set = {0, 0};
  EXPECT_EQ(acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, set), RTERROR) << "empty drawing";
  host.run({"LINE 0,0 10,0 10,10", ""});
  ASSERT_EQ(acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, set), RTNORM);
  Adesk::Int32 count = 0;
  EXPECT_EQ(acedSSLength(set, &count), RTNORM);
  EXPECT_EQ(count, 2);
  for (int i = 0; i < count; ++i) {
    ads_name name = {0, 0};
    ads_name back = {0, 0};
    AcDbObjectId id;
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acedSSName(set, i, name), RTNORM);
    ASSERT_EQ(acdbGetObjectId(id, name), Acad::eOk);
    ASSERT_EQ(acdbGetAdsName(back, id), Acad::eOk);
    EXPECT_EQ(back[0], name[0]);
    ASSERT_EQ(acdbOpenObject(entity, id, AcDb::kForRead), Acad::eOk);
    EXPECT_NE(AcDbLine::cast(entity), nullptr);
    entity->close();
  }
  ads_name none = {0, 0};
  EXPECT_EQ(acedSSName(set, count, none), RTERROR);
  EXPECT_EQ(acedSSFree(set), RTNORM);
  EXPECT_EQ(acedSSFree(set), RTERROR) << "freed already";
  EXPECT_EQ(acedSSLength(set, &count), RTERROR);
}

TEST(Selection, leavesErasedEntitiesOut) {
  ScriptedHost host;
  host.run({"LINE 0,0 10,0 10,10", "", "ERASE L", ""});
  ads_name set = {0, 0};
  Adesk::Int32 count = 0;
  ASSERT_EQ(acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, set), RTNORM);
  acedSSLength(set, &count);
  EXPECT_EQ(count, 1);
  acedSSFree(set);
}

}  // namespace
}  // namespace tarn::host
