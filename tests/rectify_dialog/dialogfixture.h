// The dialog over the real host, module, image source and rectification component.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "_image/rectify/rectifydialog.h"
#include "tests/support/modulehost.h"
#include "tests/support/rasters.h"

class CDocData;

namespace tarn::test {

/// Presses a button of every message box that opens while it lives, and notes what it said.
class BoxAnswers {
 public:
  explicit BoxAnswers(const QString& button = {});
  /// "title|text" of each box.
  std::vector<std::string> seen;

 private:
  QTimer timer_;
};

class DialogTest : public testing::Test {
 protected:
  static constexpr int kWidth = 400;
  static constexpr int kHeight = 300;
  static constexpr double kLeft = 1000;
  static constexpr double kTop = 2300;

  void SetUp() override;
  void TearDown() override;

  /// Starts the module over a host with a new, empty drawing.
  void startModule();
  void stopModule();
  /// An image of kWidth x kHeight pixels of one unit at (kLeft, kTop), white on grey ground with a
  /// red dot of 5 x 5 pixels about each of the given pixels.
  std::string makeImage(const std::string& name, const std::vector<std::pair<int, int>>& dots);
  void add(const std::string& path);
  /// Runs "rectifyImage"; null when no dialog came up.
  rectifyDialog* open();
  rectifyDialog& dialog() { return *rectifyDialog::instance(); }
  template <typename Widget>
  Widget& find(const char* name) {
    Widget* widget = dialog().findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return *widget;
  }
  void press(const char* button) { find<QPushButton>(button).click(); }
  void type(const char* edit, const QString& text);
  void addPair(double x, double y, double u, double v);
  QTableWidget& table() { return find<QTableWidget>("pointsTable"); }
  std::string cell(int row, int column);
  std::vector<std::string> sources();
  void choose(const char* mode);
  CDocData& record();
  std::vector<double> stored(const std::string& path);

  /// What the drawing shows now on kShown x kShown pixels.
  QImage picture();
  /// Ground position of the middle of what is red near a place; nothing when there is no red.
  std::optional<std::pair<double, double>> dotNear(double x, double y, double radius);
  void expectDot(double x, double y, double tolerance = 0.75);

  std::unique_ptr<ModuleHost> host_;
};

}  // namespace tarn::test
