#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "inc/iappmanager.h"
#include "inc/icadadapter.h"
#include "inc/iconfigmanager.h"
#include "inc/kcore.h"
#include "inc/kobject.h"
#include "inc/kplugin.h"
#include "inc/kvalues.h"

namespace {

TEST(Identifiers, FollowTheHashOfTheName) {
  EXPECT_EQ(kel::IObject::interfaceId(), 0xB2CC1920U);
  EXPECT_EQ(ICadAdapter::interfaceId(), 0xFEF99E92U);
  EXPECT_EQ(IConfigManager::interfaceId(), 0xB5CE449AU);
  EXPECT_STREQ(ICadAdapter::interfaceName(), "ICadAdapter");
  EXPECT_EQ(kel::interfaceIdOf(""), 0U);
  // Bytes count as signed numbers: 0xE4 is -28.
  EXPECT_EQ(kel::interfaceIdOf("\xE4"), static_cast<uint32_t>(-28));
}

class ICounted : public kel::IObject {
 public:
  KEL_INTERFACE(ICounted)
  virtual int value() = 0;

 protected:
  ~ICounted() = default;
};

int g_alive = 0;

class Counted final : public kel::Implements<Counted, ICounted> {
 public:
  static constexpr const char* kName = "test.Counted";
  Counted() { ++g_alive; }
  ~Counted() { --g_alive; }
  int value() override { return 7; }
};

struct Assertion {
  std::string message, file;
  int line;
};
std::vector<Assertion> g_assertions;

class Handles : public ::testing::Test {
 protected:
  void SetUp() override {
    g_assertions.clear();
    kel::Core::setAssertHandler([](const char* message, const char* file, int line) {
      g_assertions.push_back({message, file, line});
    });
    Counted::registerSelf();
  }
  void TearDown() override {
    kel::unregisterImplementation("N", ICounted::interfaceId());
    kel::Core::setAssertHandler(nullptr);
    EXPECT_EQ(g_alive, 0);
  }
};

TEST_F(Handles, OwnOneCountAndMove) {
  kel::Object<ICounted> first("N", "place", 1);
  ASSERT_FALSE(first.isNull());
  EXPECT_EQ(first->value(), 7);
  kel::Object<ICounted> second = first.share();
  EXPECT_EQ(second.get(), first.get());
  first.reset();
  EXPECT_EQ(g_alive, 1);
  kel::Object<ICounted> third(std::move(second));
  EXPECT_TRUE(second.isNull());  // NOLINT(bugprone-use-after-move): moved from is empty.
  third = kel::Object<ICounted>("N", "place", 2);
  EXPECT_EQ(g_alive, 1);
  EXPECT_TRUE(kel::Object<ICounted>::isNull(nullptr));
  EXPECT_TRUE(g_assertions.empty());
}

TEST_F(Handles, QueryCountsOneMore) {
  kel::Object<ICounted> object("N", "place", 1);
  void* base = nullptr;
  ASSERT_TRUE(object->queryInterface(kel::IObject::interfaceId(), &base));
  auto other = kel::Object<kel::IObject>::adopt(static_cast<kel::IObject*>(base));
  object.reset();
  EXPECT_EQ(g_alive, 1);
  EXPECT_STREQ(other->implementationName(), "test.Counted");
  EXPECT_FALSE(other->queryInterface(IConfigManager::interfaceId(), &base));
}

TEST_F(Handles, StayEmptyAndReportWhereTheyWereAsked) {
  const kel::Object<ICounted> wrongName("other", "here.cpp", 12);
  kel::unregisterImplementation("N", ICounted::interfaceId());
  const kel::Object<ICounted> gone("N", "_image/acrxentrypoint", 1009);
  EXPECT_TRUE(wrongName.isNull());
  EXPECT_TRUE(gone.isNull());
  ASSERT_EQ(g_assertions.size(), 2U);
  EXPECT_EQ(g_assertions[1].message, "ICounted");
  EXPECT_EQ(g_assertions[1].file, "_image/acrxentrypoint");
  EXPECT_EQ(g_assertions[1].line, 1009);
}

TEST(Values, VariantsReadAsTextAndNumber) {
  const struct {
    kel::Variant value;
    const char* text;
    int64_t number;
  } cases[] = {
      {{}, "", -1},          {true, "true", 1},
      {12, "12", 12},        {2.5, "2.5", 2},
      {"31", "31", 31},      {"false", "false", -1},
      {1e300, "1e+300", -1}, {"40500123.456", "40500123.456", 40500123},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(one.value.toString().str(), one.text);
    EXPECT_EQ(one.value.toInt(-1), one.number) << one.text;
  }
}

}  // namespace
