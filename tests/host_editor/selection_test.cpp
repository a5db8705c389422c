#include <gtest/gtest.h>

#include "acedads.h"
#include "acutmem.h"
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

Adesk::Int32 countOf(const ACHAR* mode, const resbuf* filter, const ads_real* a = nullptr,
                     const ads_real* b = nullptr) {
  ads_name set = {0, 0};
  Adesk::Int32 count = 0;
  const int result = acedSSGet(mode, a, b, filter, set);
  if (result != RTNORM) return result;
  acedSSLength(set, &count);
  acedSSFree(set);
  return count;
}

TEST(Selection, modesAndFilters) {
  ScriptedHost host;
  host.app().resizeView(400, 400);
  host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", "", "LINE 0,5 10,5", "", "LINE 20,0 20,10", ""});
  const ads_real low[] = {-1, -1, 0};
  const ads_real high[] = {11, 6, 0};
  const ads_real on[] = {20, 3, 0};
  const struct {
    const ACHAR* mode;
    const ads_real *a, *b;
    Adesk::Int32 expected;
  } modes[] = {
      {ACRX_T("_X"), nullptr, nullptr, 3},
      {ACRX_T("a"), nullptr, nullptr, 3},
      {ACRX_T("W"), low, high, 2},
      {ACRX_T("C"), low, low, RTERROR},
      {ACRX_T("P"), nullptr, nullptr, 2},
      {nullptr, on, nullptr, 1},
      {ACRX_T("I"), nullptr, nullptr, RTERROR},
      {ACRX_T("L"), nullptr, nullptr, 1},
      {ACRX_T("Q"), nullptr, nullptr, RTERROR},
      {ACRX_T("W"), low, nullptr, RTERROR},
  };
  for (const auto& c : modes) EXPECT_EQ(countOf(c.mode, nullptr, c.a, c.b), c.expected);

  const struct {
    resbuf* filter;
    Adesk::Int32 expected;
  } filters[] = {
      {acutBuildList(RTDXF0, ACRX_T("LINE"), RTNONE), 3},
      {acutBuildList(RTDXF0, ACRX_T("ARC,l?n*"), RTNONE), 3},
      {acutBuildList(RTDXF0, ACRX_T("ARC"), RTNONE), RTERROR},
      {acutBuildList(RTDXF0, ACRX_T("LINE"), 8, ACRX_T("0"), 62, 256, 67, 0, RTNONE), 3},
      {acutBuildList(8, ACRX_T("walls"), RTNONE), RTERROR},
      {acutBuildList(-4, ACRX_T("<OR"), RTDXF0, ACRX_T("ARC"), 8, ACRX_T("0"), -4, ACRX_T("OR>"),
                     RTNONE),
       3},
      {acutBuildList(-4, ACRX_T("<not"), RTDXF0, ACRX_T("LINE"), -4, ACRX_T("not>"), RTNONE),
       RTERROR},
      {acutBuildList(-4, ACRX_T("<or"), RTDXF0, ACRX_T("LINE"), RTNONE), RTERROR},
      {acutBuildList(40, 1.0, RTNONE), RTERROR},
  };
  for (const auto& c : filters) {
    EXPECT_EQ(countOf(ACRX_T("X"), c.filter), c.expected);
    acutRelRb(c.filter);
  }
}

TEST(Selection, setsAreChangedByEntityNames) {
  ScriptedHost host;
  host.run({"LINE 0,0 10,0 10,10", ""});
  ads_name all = {0, 0};
  ads_name own = {0, 0};
  ads_name first = {0, 0};
  ads_name second = {0, 0};
  Adesk::Int32 count = 0;
  ASSERT_EQ(acedSSGet(ACRX_T("X"), nullptr, nullptr, nullptr, all), RTNORM);
  acedSSName(all, 0, first);
  acedSSName(all, 1, second);
  EXPECT_EQ(acedSSAdd(first, nullptr, own), RTNORM);
  EXPECT_EQ(acedSSMemb(second, own), RTERROR);
  EXPECT_EQ(acedSSAdd(second, own, own), RTNORM);
  EXPECT_EQ(acedSSAdd(second, own, own), RTNORM) << "twice is once";
  EXPECT_EQ(acedSSMemb(second, own), RTNORM);
  acedSSLength(own, &count);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(acedSSDel(first, own), RTNORM);
  EXPECT_EQ(acedSSDel(first, own), RTERROR);
  acedSSLength(own, &count);
  EXPECT_EQ(count, 1);
  acedSSFree(own);
  acedSSFree(all);
}

ads_name picked = {0, 0};
int pickResult = 0;
void pickCommand() {
  ads_point point = {0, 0, 0};
  acedInitGet(0, ACRX_T("Other"));
  pickResult = acedEntSel(ACRX_T("Which: "), picked, point);
}

TEST(Selection, oneEntityIsPicked) {
  ScriptedHost host;
  host.app().resizeView(400, 400);
  ScriptedHost::addCommand(ACRX_T("PICK"), pickCommand);
  host.run({"ZOOM C 5,5 40", "LINE 0,0 10,0", ""});
  const struct {
    const char* line;
    int expected;
  } cases[] = {{"PICK 3,0", RTNORM}, {"PICK 30,30", RTERROR}, {"PICK O", RTKWORD}};
  for (const auto& c : cases) {
    host.run({c.line});
    EXPECT_EQ(pickResult, c.expected) << c.line;
  }
  host.run({"PICK", ""});
  EXPECT_EQ(pickResult, RTERROR);
  host.run({"PICK"});
  EXPECT_EQ(pickResult, RTCAN);
}

}  // namespace
}  // namespace tarn::host
