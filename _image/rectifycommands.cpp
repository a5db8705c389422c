// The commands that open the rectification dialog.
#include <vector>

#include "_image/binding/usesite.h"
#include "_image/commands.h"
#include "_image/docdata.h"
#include "_image/imageadding.h"
#include "_image/imagedialog.h"
#include "_image/rectify/rectifyopening.h"
#include "acedads.h"
#include "commoncode/cadutil/message.h"
#include "inc/iappmanager.h"

using tarn::cad::printMessage;

namespace tarn::image {
namespace {

// Deliberate: a fixed path, for trying the dialog out.
constexpr const wchar_t* kTestImage = L"D:\\tifimage\\image.tif";

/// The only image of the document, or the one that the user names by its number; empty after a
/// message, or when the user cancels.
std::wstring chosenImage(const CDocData& record) {
  const std::vector<CDocData::Image>& images = record.images();
  if (images.empty()) {
    printMessage(L"\n当前文档没有实体请先添加影像实体");
    return {};
  }
  if (images.size() == 1) return images.front().path;
  for (size_t i = 0; i < images.size(); ++i) {
    printMessage(L"\n" + std::to_wstring(i + 1) + L": %1", images[i].path);
  }
  for (;;) {
    int number = 1;
    const int result = acedGetInt(L"\n选择要纠正的影像：<1>", &number);
    if (result != RTNORM && result != RTNONE) return {};
    if (number >= 1 && static_cast<size_t>(number) <= images.size()) return images[number - 1].path;
    printMessage(L"\n没有编号为%1的影像。", std::to_wstring(number));
  }
}

}  // namespace

void commandRectifyTestImage() {
  CDocData* record = currentRecordOrReport();
  if (!record) return;
  const auto manager = makeObject<IAppManager>(kCommandsSite);
  if (!manager.isNull()) manager->loadPlugins("plugins", 0);
  if (!openRectification(*record, kTestImage)) printMessage(L"打开影像出错");
}

void commandRectifyImage() {
  CDocData* record = currentRecordOrReport();
  if (!record) return;
  std::wstring path = imageSelectedInPanel();
  if (path.empty()) path = chosenImage(*record);
  if (!path.empty() && !openRectification(*record, path)) printMessage(L"\n打开影像出错");
}

}  // namespace tarn::image
