#include <gtest/gtest.h>

#include <string>

#include "accmd.h"

namespace {

int g_ran = 0;
void first() {
  g_ran = 1;
}
void second() {
  g_ran = 2;
}
void third() {
  g_ran = 3;
}

class CommandStackTest : public testing::Test {
 protected:
  ~CommandStackTest() override {
    for (const ACHAR* group : {L"T_BASE", L"T_OLD", L"T_NEW"}) acedRegCmds->removeGroup(group);
  }
  static void add(const ACHAR* group, const ACHAR* global, const ACHAR* local,
                  AcRxFunctionPtr function, Adesk::Int32 flags = ACRX_CMD_MODAL) {
    ASSERT_EQ(acedRegCmds->addCommand(group, global, local, flags, function), Acad::eOk);
  }
  static std::wstring typed(const ACHAR* text) {
    const AcEdCommand* command = acedRegCmds->lookupTyped(text);
    if (command == nullptr) return L"none";
    return std::wstring(command->groupName()) + L"." + command->globalName();
  }
};

TEST_F(CommandStackTest, WhatATypedNameMeans) {
  add(L"T_BASE", L"TLINE", L"TLINIE", first);
  add(L"T_OLD", L"_TAdd", L"TAdd", first);
  add(L"T_OLD", L"_TRect", L"T_old_Show", first);
  add(L"T_NEW", L"tAdd", L"tAdd", second);
  struct Case {
    const ACHAR* text;
    const ACHAR* command;
  };
  const Case cases[] = {{L"TLINIE", L"T_BASE.TLINE"},
                        {L"tlinie", L"T_BASE.TLINE"},
                        {L"TLINE", L"none"},
                        {L"_TLINE", L"T_BASE.TLINE"},
                        {L"_.tline", L"T_BASE.TLINE"},
                        {L"._TLINE", L"T_BASE.TLINE"},
                        {L".TLINIE", L"T_BASE.TLINE"},
                        {L"addd", L"none"},
                        {L"TADD", L"T_NEW.tAdd"},
                        {L"_TADD", L"T_OLD._TAdd"},
                        {L"_TRect", L"T_OLD._TRect"},
                        {L"TRect", L"none"},
                        {L"T_OLD_SHOW", L"T_OLD._TRect"},
                        {L"", L"none"},
                        {L"_", L"none"}};
  for (const Case& c : cases) EXPECT_EQ(typed(c.text), c.command) << testing::PrintToString(c.text);
}

TEST_F(CommandStackTest, TheLastRegisteredWins) {
  add(L"T_OLD", L"TX", L"TX", first);
  add(L"T_NEW", L"TX", L"TX", second);
  EXPECT_EQ(typed(L"TX"), L"T_NEW.TX");
  add(L"T_OLD", L"tx", L"TX", third, ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET);
  EXPECT_EQ(typed(L"TX"), L"T_OLD.tx");
  AcArray<AcEdCommand*> commands;
  acedRegCmds->getCommands(L"t_old", commands);
  ASSERT_EQ(commands.length(), 1) << "a second registration replaces the first";
  EXPECT_EQ(commands[0]->commandFlags(), 3);
  commands[0]->functionAddr()();
  EXPECT_EQ(g_ran, 3);
  EXPECT_EQ(acedRegCmds->popGroupToTop(L"T_NEW"), Acad::eOk);
  EXPECT_EQ(typed(L"TX"), L"T_NEW.TX");
  EXPECT_EQ(acedRegCmds->removeGroup(L"T_NEW"), Acad::eOk);
  EXPECT_EQ(typed(L"TX"), L"T_OLD.tx");
  EXPECT_EQ(acedRegCmds->removeCmd(L"T_OLD", L"TX"), Acad::eOk);
  EXPECT_EQ(typed(L"TX"), L"none");
}

TEST_F(CommandStackTest, Refusals) {
  EXPECT_EQ(acedRegCmds->addCommand(L"T_OLD", L"", L"x", 0, first), Acad::eInvalidInput);
  EXPECT_EQ(acedRegCmds->addCommand(L"T_OLD", L"x", L"x", 0, nullptr), Acad::eInvalidInput);
  EXPECT_EQ(acedRegCmds->removeGroup(L"T_OLD"), Acad::eKeyNotFound);
  EXPECT_EQ(acedRegCmds->removeCmd(L"T_OLD", L"x"), Acad::eKeyNotFound);
  EXPECT_EQ(acedRegCmds->popGroupToTop(L"T_OLD"), Acad::eKeyNotFound);
}

}  // namespace
