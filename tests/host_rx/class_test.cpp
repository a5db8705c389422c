#include <gtest/gtest.h>

#include <memory>

#include "rxclass.h"
#include "rxdict.h"

class RxBase : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(RxBase);
};
class RxLeaf : public RxBase {
 public:
  ACRX_DECLARE_MEMBERS(RxLeaf);
};
ACRX_NO_CONS_DEFINE_MEMBERS(RxBase, AcRxObject)
// clang-format off
ACRX_DXF_DEFINE_MEMBERS(RxLeaf, RxBase, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, RXLEAF,
LEAFAPP
|Product Desc:     A leaf
|Company:          Nobody)
// clang-format on

namespace {

TEST(RxClass, HierarchyIsConnectedInAnyOrder) {
  const AcRxClass* early = newAcRxClass(L"RxEarlyChild", L"RxLateParent");
  EXPECT_FALSE(early->isDerivedFrom(AcRxObject::desc())) << "its parent is not registered yet";
  const AcRxClass* late = newAcRxClass(L"RxLateParent", L"AcRxObject");
  acrxBuildClassHierarchy();
  EXPECT_EQ(early->myParent(), late);
  EXPECT_TRUE(early->isDerivedFrom(AcRxObject::desc()));
}

TEST(RxClass, CastsFollowTheHierarchy) {
  RxBase::rxInit();
  RxLeaf::rxInit();
  const RxLeaf leaf;
  EXPECT_TRUE(leaf.isKindOf(RxLeaf::desc()));
  EXPECT_TRUE(leaf.isKindOf(AcRxObject::desc()));
  EXPECT_EQ(RxBase::cast(&leaf), &leaf);
  const RxBase base;
  EXPECT_EQ(RxLeaf::cast(&base), nullptr);
  EXPECT_EQ(RxLeaf::cast(nullptr), nullptr);
  EXPECT_EQ(RxLeaf::desc()->myParent(), RxBase::desc());
  EXPECT_EQ(RxBase::desc()->create(), nullptr);
}

TEST(RxClass, DescriptionIsWhatTheMacroSays) {
  RxBase::rxInit();
  RxLeaf::rxInit();
  const AcRxClass* cls = RxLeaf::desc();
  EXPECT_EQ(acrxClassDictionary->at(L"rxleaf"), cls);
  EXPECT_STREQ(cls->name(), L"RxLeaf");
  EXPECT_STREQ(cls->dxfName(), L"RXLEAF");
  EXPECT_STREQ(cls->appName(), L"LEAFAPP |Product Desc: A leaf |Company: Nobody");
  int version = 0;
  int maintenance = 0;
  cls->getClassVersion(version, maintenance);
  EXPECT_EQ(version, 33);
  EXPECT_EQ(maintenance, 55);
  const std::unique_ptr<AcRxObject> made(cls->create());
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->isA(), cls);
  RxLeaf::rxInit();
  EXPECT_EQ(RxLeaf::desc(), cls) << "a second registration changes nothing";
}

TEST(RxClassDeathTest, ATakenNameAborts) {
  newAcRxClass(L"RxTaken", L"AcRxObject", 0, nullptr, L"TAKEN");
  EXPECT_EQ(newAcRxClass(L"RxTaken", L"AcRxObject", 0, nullptr, L"TAKEN"),
            acrxClassDictionary->at(L"RxTaken"))
      << "the same description is the same class";
  EXPECT_DEATH(newAcRxClass(L"RxTaken", L"AcRxObject", 0, nullptr, L"OTHER"), "Class mismatch");
  EXPECT_DEATH(
      {
        newAcRxClass(L"RxFresh", L"AcRxObject");
        acrxRegisterClassOnce(nullptr, L"RxFresh", L"AcRxObject", 0, 0, 0, nullptr, nullptr,
                              nullptr, nullptr);
      },
      "Class mismatch");
}

TEST(RxClass, DeletedClassesCanComeBack) {
  deleteAcRxClass(newAcRxClass(L"RxGone", L"AcRxObject", 0, nullptr, L"ONE"));
  EXPECT_FALSE(acrxClassDictionary->has(L"RxGone"));
  AcRxClass* again = newAcRxClass(L"RxGone", L"AcRxObject", 0, nullptr, L"TWO");
  EXPECT_STREQ(again->dxfName(), L"TWO");
}

TEST(RxDictionary, OwnsOrNot) {
  AcRxDictionary plain;
  RxBase one;
  RxBase two;
  EXPECT_EQ(plain.atPut(L"Key", &one), nullptr);
  EXPECT_EQ(plain.atPut(L"KEY", &two), &one);
  EXPECT_EQ(plain.numEntries(), 1U);
  EXPECT_EQ(plain.remove(L"key"), &two);
  EXPECT_EQ(plain.remove(L"key"), nullptr);
  AcRxDictionary owner(true);
  owner.atPut(L"a", new RxBase);
  EXPECT_EQ(owner.atPut(L"a", new RxBase), nullptr);
  EXPECT_NE(owner.atIndex(0), nullptr);
  EXPECT_EQ(owner.atIndex(1), nullptr);
}

}  // namespace
