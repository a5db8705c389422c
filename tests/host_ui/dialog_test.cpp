#include <gtest/gtest.h>

#include "afxwin.h"
#include "base/text.h"
#include "host/ui/uibackend.h"
#include "host/ui/uiservices.h"
#include "rxmfcapi.h"

namespace tarn::host {
namespace {

/// Answers as told and keeps what it was asked.
class TellingBackend : public UiBackend {
 public:
  int messageBox(const std::string& text, const std::string&, unsigned type) override {
    lastText = text;
    lastType = type;
    return button;
  }
  size_t choose(const std::string&, const std::vector<std::string>& answers, size_t) override {
    return answers.size() - 1;
  }
  std::optional<std::vector<std::string>> fileNames(const FileRequest& request) override {
    lastRequest = request;
    return names;
  }
  std::string lastText;
  unsigned lastType = 0;
  int button = IDOK;
  FileRequest lastRequest;
  std::optional<std::vector<std::string>> names;
};

class Dialogs : public testing::Test {
 protected:
  void SetUp() override {
    installUiServices({&backend,
                       [this](const std::wstring& text) { sent += toUtf8(text) + ";"; },
                       [this] { ++focused; },
                       {}});
  }
  void TearDown() override { installUiServices({}); }
  TellingBackend backend;
  std::string sent;
  int focused = 0;
};

TEST_F(Dialogs, fileDialogHandsOverItsRequestAndWalksTheNames) {
  CFileDialog dialog(TRUE, ACRX_T("*.tif"), nullptr,
                     OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT | OFN_ALLOWMULTISELECT,
                     ACRX_T("tif文件(*.tif)|*.tif||"));
  dialog.m_ofn.nMaxFile = 5;  // more names than that come through the dialog
  EXPECT_EQ(dialog.DoModal(), IDCANCEL);
  EXPECT_EQ(dialog.GetStartPosition(), nullptr);
  backend.names = {"/a/影像 1.tif", "/a/b.tif"};
  ASSERT_EQ(dialog.DoModal(), IDOK);
  EXPECT_TRUE(backend.lastRequest.several);
  EXPECT_TRUE(backend.lastRequest.open);
  EXPECT_FALSE(backend.lastRequest.overwritePrompt) << "nothing is written by opening";
  EXPECT_EQ(backend.lastRequest.filter, "tif文件(*.tif)|*.tif||");
  EXPECT_EQ(dialog.GetPathName(), ACRX_T("/a/影像 1.tif"));
  std::string walked;
  for (POSITION p = dialog.GetStartPosition(); p != nullptr;) {
    walked += toUtf8(dialog.GetNextPathName(p).GetString()) + ";";
  }
  EXPECT_EQ(walked, "/a/影像 1.tif;/a/b.tif;");
}

TEST_F(Dialogs, boxesGiveTheButton) {
  backend.button = IDYES;
  EXPECT_EQ(AfxMessageBox(ACRX_T("没有加载"), MB_YESNO), IDYES);
  EXPECT_EQ(backend.lastText, "没有加载");
  installUiServices({});
  EXPECT_EQ(AfxMessageBox(ACRX_T("x"), MB_YESNO), IDNO);
  EXPECT_EQ(AfxMessageBox(ACRX_T("x"), MB_OKCANCEL), IDCANCEL);
  EXPECT_EQ(AfxMessageBox(ACRX_T("x")), IDOK);
  EXPECT_EQ(acedGetAcadFrame(), nullptr);
}

TEST_F(Dialogs, theFrameTakesCommandText) {
  std::u16string text = u"regen ";
  COPYDATASTRUCT data;
  data.dwData = 1;
  data.lpData = text.data();
  const auto send = [&] {
    return acedGetAcadFrame()->SendMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
  };
  data.cbData = 14;
  EXPECT_EQ(send(), 1);
  data.cbData = 12;  // the terminator is missing: the text ends with its bytes
  EXPECT_EQ(send(), 1);
  data.dwData = 7;
  EXPECT_EQ(send(), 0);
  EXPECT_EQ(acedGetAcadFrame()->SendMessage(WM_COPYDATA), 0);
  EXPECT_EQ(sent, "regen ;regen ;");
  acedGetAcadDockCmdLine()->SetFocus();
  EXPECT_EQ(focused, 1);
}

}  // namespace
}  // namespace tarn::host
