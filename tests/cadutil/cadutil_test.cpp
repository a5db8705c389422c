#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "acdocman.h"
#include "commoncode/cadutil/dictrecord.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/cadutil/drawingscale.h"
#include "commoncode/cadutil/message.h"
#include "tests/support/modulehost.h"

namespace {

using namespace tarn::cad;  // NOLINT(google-build-using-namespace)
using ::testing::ElementsAre;

class CadUtil : public ::testing::Test {
 protected:
  RecordPlace at(const ACHAR* key) const {
    return {L"TARNIMAGEDICT", key, acDocManager->curDocument()->database()};
  }

  tarn::test::ModuleHost host_;
};

TEST_F(CadUtil, ValuesAreReadBackAsWritten) {
  const DocumentLock lock(acDocManager->curDocument());
  ASSERT_TRUE(lock.isLocked());
  int whole = 77;
  EXPECT_FALSE(readInt(at(L"A"), whole));
  EXPECT_EQ(whole, 77);
  for (const int value : {0, -5, 2147483647}) {
    ASSERT_TRUE(writeInt(at(L"A"), value));
    ASSERT_TRUE(readInt(at(L"A"), whole));
    EXPECT_EQ(whole, value);
  }
  double real = 7;
  EXPECT_FALSE(readReal(at(L"B"), real));
  for (const double value : {0.5, 40500123.456, std::numeric_limits<double>::infinity()}) {
    ASSERT_TRUE(writeReal(at(L"B"), value));
    ASSERT_TRUE(readReal(at(L"B"), real));
    EXPECT_EQ(real, value);
  }
  // A record of another kind is not read.
  EXPECT_FALSE(readReal(at(L"A"), real));
  EXPECT_FALSE(readInt(at(L"B"), whole));
}

TEST_F(CadUtil, TextListsKeepOrderAndEmptyTexts) {
  std::vector<std::wstring> texts{L"untouched"};
  EXPECT_FALSE(readTexts(at(L"ImagePath"), texts));
  EXPECT_THAT(texts, ElementsAre(L"untouched"));
  const std::vector<std::wstring> wanted{L"/影像/b.tif", L"", L"/a a.tif", std::wstring(600, L'x')};
  ASSERT_TRUE(writeTexts(at(L"ImagePath"), wanted));
  ASSERT_TRUE(readTexts(at(L"ImagePath"), texts));
  EXPECT_EQ(texts, wanted);
  EXPECT_TRUE(eraseRecord(at(L"ImagePath")));
  EXPECT_TRUE(eraseRecord(at(L"ImagePath")));
  EXPECT_FALSE(readTexts(at(L"ImagePath"), texts));
  ASSERT_TRUE(writeTexts(at(L"ImagePath"), {L"again"}));
  ASSERT_TRUE(readTexts(at(L"ImagePath"), texts));
  EXPECT_THAT(texts, ElementsAre(L"again"));
  ASSERT_TRUE(writeTexts(at(L"ImagePath"), {}));
  EXPECT_TRUE(!readTexts(at(L"ImagePath"), texts) || texts.empty());
}

TEST_F(CadUtil, WithoutADrawingNothingIsReadOrWritten) {
  int value = 0;
  EXPECT_FALSE(readInt({L"D", L"K", nullptr}, value));
  EXPECT_FALSE(writeInt({L"D", L"K", nullptr}, 1));
  EXPECT_FALSE(eraseRecord({L"D", L"K", nullptr}));
  EXPECT_FALSE(DocumentLock(nullptr).isLocked());
}

TEST_F(CadUtil, TheDrawingScaleFallsBackToFiveHundred) {
  const struct {
    const char* userr1;
    double scale;
  } cases[] = {{"0", 500}, {"2.99", 500}, {"3", 3}, {"1000", 1000}, {"-1000", 500}};
  for (const auto& one : cases) {
    host_.run(std::string("SETVAR USERR1 ") + one.userr1);
    double scale = 0.5;
    drawingScale(scale);
    EXPECT_EQ(scale, one.scale) << one.userr1;
  }
}

TEST_F(CadUtil, MessagesPrintAnyCharacters) {
  host_.printed();
  printMessage(L"\n%1的影像已被删除!", L"/a %s %d 100%.tif");
  EXPECT_EQ(host_.printed(), "\n/a %s %d 100%.tif的影像已被删除!");
}

}  // namespace
