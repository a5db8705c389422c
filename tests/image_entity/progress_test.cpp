#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "_image/binding/progressscope.h"
#include "_image/settarnprogress.h"
#include "inc/kcore.h"
#include "inc/kplugin.h"

namespace {

using ::testing::ElementsAre;

std::vector<std::string> g_shown;

class NotedProgress final : public kel::Implements<NotedProgress, IProgressBar> {
 public:
  static constexpr const char* kName = "test.NotedProgress";
  ~NotedProgress() { g_shown.emplace_back("released"); }
  void setTitle(const char*) override {}
  bool isRunning() override { return true; }
  void start(const char* label, int minimum, int maximum, int flag) override {
    g_shown.push_back(std::string("start ") + label + " " + std::to_string(minimum) + " " +
                      std::to_string(maximum) + " " + std::to_string(flag));
  }
  void setLabel(const char*) override {}
  void setRange(int, int) override {}
  int minimum() override { return 0; }
  int maximum() override { return 0; }
  int position() override { return 0; }
  void step(int) override {}
  bool cancelWanted() override { return false; }
  void end() override { g_shown.emplace_back("end"); }
  void setPosition(int position) override {
    g_shown.push_back("position " + std::to_string(position));
  }
};

TEST(Progress, IsHandedOnUnchangedWhileItIsInstalled) {
  g_shown.clear();
  NotedProgress::registerSelf();
  {
    setTarnProgress progress;
    {
      const tarn::image::ProgressScope scope(&progress);
      ASSERT_EQ(kel::Core::progressBar(), &progress);
      CallBackProgressBar* callback = kel::Core::progressBar();
      callback->start("金字塔", 1, 100);
      callback->setRange(5, 6);
      callback->setPosition(777);
      callback->end();
      callback->start("again", 0, 1);
      EXPECT_TRUE(callback->text().isEmpty());
    }
    EXPECT_EQ(kel::Core::progressBar(), nullptr);
  }
  EXPECT_THAT(g_shown, ElementsAre("start 金字塔 1 100 0", "position 777", "end", "released",
                                   "start again 0 1 0", "released"));
  kel::unregisterImplementation("N", IProgressBar::interfaceId());
}

TEST(Progress, GoesOnWithoutADisplayAfterAnAssertion) {
  static std::string asserted;
  kel::Core::setAssertHandler([](const char* message, const char* file, int line) {
    asserted = std::string(message) + " " + file + " " + std::to_string(line);
  });
  setTarnProgress progress;
  progress.start("label", 0, 10);
  progress.setPosition(3);
  progress.end();
  kel::Core::setAssertHandler(nullptr);
  EXPECT_EQ(asserted, "IProgressBar _image/settarnprogress 22");
}

TEST(Progress, TheStatusBarsOwnOperationsComeAfterTheCallbacks) {
  const auto entryOf = [](auto member) {
    uintptr_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return static_cast<int>((word - 1) / sizeof(void*)) - 1;  // the destructor has two entries
  };
  EXPECT_EQ(entryOf(&CCADImageConversionProBar::startMeter), 12);
  EXPECT_EQ(entryOf(&CCADImageConversionProBar::setMeterData), 13);
}

}  // namespace
