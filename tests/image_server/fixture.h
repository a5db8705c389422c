// The module's own objects in the real host, beside a real web server over a folder of images.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <memory>
#include <string>
#include <vector>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "base/text.h"
#include "tests/imageclient/webserver.h"
#include "tests/support/modulehost.h"
#include "tests/support/program.h"

namespace tarn::test {

/// In the server's folder: what is under "east side", and "flat.tif" at the top.
constexpr const char* kImage = "east side/正射 100%.tif";

class ServerImages : public ::testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void SetUp() override;
  void TearDown() override;

  /// Says by the host's command that images come from this server.
  std::string useServer(const std::string& port);
  /// addImage with the answers of its chooser.
  std::string addImages(std::vector<std::string> answers);
  /// The key of an image by its path on the server.
  static std::string keyOf(const std::string& path, const std::string& port = server_->portText());
  std::vector<std::string> stored();
  CDocData& record() { return *g_dataMap->current(); }
  /// The drawing over 1000 x 600 pixels, after a regeneration for the view.
  QImage picture(const std::string& view);
  /// Part of the pixels inside the image that differ by more than 2 in a channel; 1 when there are
  /// fewer than a thousand.
  static double difference(const QImage& a, const QImage& b);
  /// UICLICK 1131 with what is typed at its prompts.
  std::string click(const std::string& action, std::vector<std::string> inputs = {});

  static Scratch* store_;
  static WebServer* server_;
  std::unique_ptr<ModuleHost> host_;
};

}  // namespace tarn::test
