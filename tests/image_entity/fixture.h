// The module's own objects in the real host, with a recording image source in place of the real.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/imageadding.h"
#include "_image/moduleglobals.h"
#include "arxEntryPoint.h"
#include "base/text.h"
#include "rxdlinkr.h"
#include "tests/image_entity/recordingdivision.h"
#include "tests/image_entity/recordingdraw.h"
#include "tests/support/modulehost.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);

class EntityTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host_ = std::make_unique<tarn::test::ModuleHost>();
    ASSERT_TRUE(acrxDynamicLinker->loadModule(
        tarn::toWide(TARN_BIN_DIR "/adapter_autocad.arx").c_str(), false));
    acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
    tarn::test::RecordingDivision::registerSelf();
    tarn::test::script() = {};
    host_->printed();
  }

  void TearDown() override {
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    host_.reset();
    delete g_dataMap;
    g_dataMap = nullptr;
    tarn::image::g_refresh = {};
    tarn::image::g_suppressPixels = false;
    EXPECT_EQ(tarn::test::script().alive, 0) << "sources left behind";
  }

  CDocData& record() { return *g_dataMap->current(); }
  AcApDocument* document() { return acDocManager->curDocument(); }

  static CCadImage::Division makeDivision() { return {"N", "test", 1}; }

  /// Adds an image as the commands do, without the dialog.
  bool add(const std::wstring& path) {
    record().ensureImage();
    auto division = makeDivision();
    {
      const OpenedImage image(record(), AcDb::kForRead);
      if (!image || !image->GetimageDivision(division, path)) return false;
    }
    return tarn::image::addOpenedImage(document(), record(), path, division);
  }

  std::unique_ptr<tarn::test::ModuleHost> host_;
};
