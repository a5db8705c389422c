#include "host/editor/sysvars.h"

#include <gtest/gtest.h>

#include "acedads.h"
#include "acutmem.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "tests/host_editor/scriptedhost.h"

namespace tarn::host {
namespace {

TEST(SystemVariables, haveTheirTypesAndRules) {
  ScriptedHost host;
  struct Case {
    const ACHAR* name;
    int type;
    bool readOnly;
  };
  const Case cases[] = {
      {ACRX_T("SCREENSIZE"), RTPOINT, true}, {ACRX_T("VIEWCTR"), RT3DPOINT, true},
      {ACRX_T("VIEWSIZE"), RTREAL, true},    {ACRX_T("VIEWTWIST"), RTREAL, true},
      {ACRX_T("VIEWDIR"), RT3DPOINT, true},  {ACRX_T("TILEMODE"), RTSHORT, false},
      {ACRX_T("CVPORT"), RTSHORT, false},    {ACRX_T("CMDNAMES"), RTSTR, true},
      {ACRX_T("ACADVER"), RTSTR, true},      {ACRX_T("USERR1"), RTREAL, false},
      {ACRX_T("FILEDIA"), RTSHORT, false},   {ACRX_T("LENSLENGTH"), RTREAL, true},
      {ACRX_T("FRONTZ"), RTREAL, true},      {ACRX_T("BACKZ"), RTREAL, true},
      {ACRX_T("VIEWMODE"), RTSHORT, true},   {ACRX_T("TARGET"), RT3DPOINT, true},
      {ACRX_T("EXTMIN"), RT3DPOINT, true},   {ACRX_T("DWGNAME"), RTSTR, true},
      {ACRX_T("DWGPREFIX"), RTSTR, true},    {ACRX_T("CLAYER"), RTSTR, false},
      {ACRX_T("CMDECHO"), RTSHORT, false},   {ACRX_T("viewtwist"), RTREAL, true},
  };
  for (const Case& c : cases) {
    resbuf value = {};
    ASSERT_EQ(acedGetVar(c.name, &value), RTNORM) << toUtf8(c.name);
    EXPECT_EQ(value.restype, c.type) << toUtf8(c.name);
    // Its own value, written back, is refused exactly by the read-only ones.
    EXPECT_EQ(acedSetVar(c.name, &value), c.readOnly ? RTERROR : RTNORM) << toUtf8(c.name);
    if (value.restype == RTSTR) acutDelString(value.resval.rstring);
  }
  resbuf none = {};
  EXPECT_EQ(acedGetVar(ACRX_T("NOSUCHVAR"), &none), RTERROR);
}

TEST(SystemVariables, takeOnlyValuesThatFit) {
  ScriptedHost host;
  SystemVariables& variables = host.app().variables();
  EXPECT_EQ(variables.set("USERR1", short{500}), VariableError::kNone);
  EXPECT_EQ(std::get<double>(*variables.get("userr1")), 500.0);
  EXPECT_EQ(variables.set("FILEDIA", 1.0), VariableError::kWrongType);
  EXPECT_EQ(variables.set("FILEDIA", short{2}), VariableError::kOutOfRange);
  EXPECT_EQ(variables.set("USERR1", std::string("x")), VariableError::kWrongType);
  EXPECT_EQ(variables.set("CLAYER", std::string("no such layer")), VariableError::kOutOfRange);
  EXPECT_EQ(variables.set("CLAYER", std::string("0")), VariableError::kNone);
  EXPECT_EQ(variables.set("CVPORT", short{1}), VariableError::kOutOfRange);
  EXPECT_EQ(std::get<std::string>(*variables.get("ACADVER")).substr(0, 4), "23.1");
}

TEST(SystemVariables, followTheViewAndTheDrawing) {
  ScriptedHost host;
  host.app().resizeView(1000, 500);
  host.run(
      {"ZOOM C 40500000,3500000 250", "TWIST 30", "LINE 40500010,3500020 40500030,3500070", ""});
  resbuf value = {};
  acedGetVar(ACRX_T("SCREENSIZE"), &value);
  EXPECT_EQ(value.resval.rpoint[0], 1000);
  EXPECT_EQ(value.resval.rpoint[1], 500);
  acedGetVar(ACRX_T("VIEWCTR"), &value);
  EXPECT_EQ(value.resval.rpoint[0], 40500000);
  acedGetVar(ACRX_T("VIEWSIZE"), &value);
  EXPECT_EQ(value.resval.rreal, 250);
  acedGetVar(ACRX_T("VIEWTWIST"), &value);
  EXPECT_NEAR(value.resval.rreal, 0.5235987755982988, 1e-15);
  acedGetVar(ACRX_T("EXTMAX"), &value);
  EXPECT_EQ(value.resval.rpoint[0], 40500030);
  EXPECT_EQ(value.resval.rpoint[1], 3500070);
}

TEST(SystemVariables, ofTheDrawingAreChangesThatUndoTakesBack) {
  const std::pair<const char*, const char*> kCases[] = {
      {"PDMODE", "34"},    {"PDSIZE", "2.5"},     {"LTSCALE", "3"},    {"LWDISPLAY", "1"},
      {"IMAGEFRAME", "0"}, {"WIPEOUTFRAME", "2"}, {"LIMMIN", "-1,-2"}, {"LIMMAX", "50,60"}};
  for (const auto& [name, value] : kCases) {
    SCOPED_TRACE(name);
    ScriptedHost host;
    HostDocument& drawing = host.app().documents().current();
    SystemVariables& variables = host.app().variables();
    host.run({"LINE 0,0 1,1", ""});
    const VariableValue before = *variables.get(name);
    host.run({(name + (" " + formatValue(before))).c_str()});
    EXPECT_NE(host.run({"U"}).find("LINE"), std::string::npos) << "the same again is no change";
    drawing.becameFile("");
    host.run({(std::string(name) + " " + value).c_str()});
    EXPECT_TRUE(host.good());
    EXPECT_TRUE(drawing.isModified());
    const VariableValue after = *variables.get(name);
    EXPECT_NE(formatValue(after), formatValue(before));
    drawing.becameFile("");
    host.run({"U"});
    EXPECT_EQ(formatValue(*variables.get(name)), formatValue(before));
    EXPECT_TRUE(drawing.isModified());
    host.run({"REDO"});
    EXPECT_EQ(formatValue(*variables.get(name)), formatValue(after));
  }
}

TEST(SystemVariables, setvarShowsAndChanges) {
  ScriptedHost host;
  EXPECT_NE(host.run({"SETVAR VIEWTWIST"}).find("VIEWTWIST = 0 (read only)"), std::string::npos);
  host.run({"SETVAR USERS1", "two words"});
  EXPECT_EQ(std::get<std::string>(*host.app().variables().get("USERS1")), "two words");
  host.run({"SETVAR USERR1 abc"});
  EXPECT_FALSE(host.good());
  EXPECT_NE(host.run({"SETVAR ?"}).find("SCREENSIZE"), std::string::npos);
}

}  // namespace
}  // namespace tarn::host
