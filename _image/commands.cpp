#include "_image/commands.h"

#include <cwchar>
#include <iterator>
#include <string>
#include <vector>

#include "_image/binding/progressscope.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/displaysettings.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imagedockbar.h"
#include "_image/imageserver.h"
#include "_image/settarnprogress.h"
#include "accmd.h"
#include "acdocman.h"
#include "aced.h"
#include "acedads.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/cadutil/message.h"
#include "imageclient/tarnclientmanager.h"
#include "inc/ibatchimageconversion.h"
#include "inc/icadadapter.h"

using tarn::cad::printMessage;

namespace tarn::image {
namespace {

constexpr const ACHAR* kGroup = L"TARNIMAGE";
constexpr int kPickFirst = ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET;
constexpr int kRedraw = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr size_t kPromptCharacters = 1024;

struct Command {
  const ACHAR* name;
  int flags;
  void (*function)();
};

constexpr Command kFirstCommand = {L"tarnimage", kRedraw, commandTarnImage};
constexpr Command kFurtherCommands[] = {
    {L"addImage", kRedraw, commandAddImage},
    {L"loadCloud", kPickFirst, commandLoadCloud},
    {L"rectifyImage", kPickFirst, commandRectifyImage},
    {L"OpenImageList", kRedraw, commandOpenImageList},
    {L"testimage", kRedraw, commandTestImage},
    {L"EraseInvalidImage", kRedraw, commandEraseInvalidImage},
    {L"ImageConversion", kRedraw, commandImageConversion},
    {L"SetImageClarityRatio", kRedraw, commandSetImageClarityRatio},
    {L"SetImageOffsetRatio", kRedraw, commandSetImageOffsetRatio},
};

void registerCommand(const Command& command) {
  acedRegCmds->addCommand(kGroup, command.name, command.name, command.flags, command.function);
}

/// Lets the user choose an image and adds it. `isNetwork`: whether it is one of a server.
void addChosenImage(CDocData& record, bool& isNetwork) {
  record.ensureImage();
  auto division = makeObject<IImageDivision>(kCommandsSite);
  acutPrintf(L"%d", static_cast<int>(record.images().size()));
  if (division.isNull()) printMessage(L"null0");
  TarnClientManager* client = nullptr;
  std::wstring path;
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || !image->GetImageDataFile(client, division, isNetwork)) {
      printMessage(L"获取数据失败");
      return;
    }
    path = image->currentImage();
  }
  AcApDocument* document = acDocManager->curDocument();
  const bool isAdded =
      isNetwork ? addServerImage(document, record, path, std::unique_ptr<TarnClientManager>(client))
                : addOpenedImage(document, record, path, division);
  if (!isAdded) return;
  storeImagePath(document, record, path);
  sendCommandToHost(L"regen");
}

/// The rest of "DrawImage" and "ShowImage": the user chooses, the document's entity shows it. Of a
/// server several images can be chosen; each is added, whatever becomes of the others.
void drawChosenImage(CDocData& record) {
  bool isNetwork = false;
  addChosenImage(record, isNetwork);
  const std::vector<std::wstring> others =
      isNetwork ? furtherServerImages() : std::vector<std::wstring>();
  if (!others.empty()) addImagesOf(acDocManager->curDocument(), record, others);
}

/// Writes a setting with the document locked and says what came of it.
template <typename Value>
void storeSetting(bool (*write)(const cad::RecordPlace&, Value), const cad::RecordPlace& place,
                  Value value) {
  const cad::DocumentLock lock(acDocManager->curDocument());
  if (!lock.isLocked()) {
    printMessage(L"\nlockDocument fail");
    return;
  }
  printMessage(write(place, value) ? L"\n修改成功!" : L"\n修改失败!");
}

}  // namespace

void registerFirstCommand() {
  registerCommand(kFirstCommand);
}

void registerFurtherCommands() {
  for (const Command& command : kFurtherCommands) registerCommand(command);
}

void commandDrawImage() {
  if (CDocData* record = currentRecordOrReport()) drawChosenImage(*record);
}

void commandShowImage() {
  CDocData* record = currentRecordOrReport();
  if (!record) return;
  if (!record->hasImage()) printMessage(L"\n当前文档没有实体请先添加影像实体");
  drawChosenImage(*record);
}

void commandNothing() {}

void commandList() {
  commandOpenImageList();
}

void commandTarnImage() {
  const auto adapter = makeObject<ICadAdapter>(kCommandsSite);
  if (adapter.isNull()) {
    printMessage(L"icadapter nil\n");
    return;
  }
  adapter->setModuleState("image", true);
}

void commandAddImage() {
  addImagesThroughPanel();
}

void commandOpenImageList() {
  openImageList();
}

void commandTestImage() {
  CCadImage::EraseInvalidImage();
}

void commandEraseInvalidImage() {
  const int erased = CCadImage::EraseInvalidImage();
  printMessage(L"\n共删除了%1个无效的Image对象！", std::to_wstring(erased));
}

void commandImageConversion() {
  setTarnProgress progress;
  // The converter goes before the callback that it may still call.
  kel::Object<IBatchImageConversion> converter;
  const ProgressScope scope(&progress);
  converter = makeObject<IBatchImageConversion>(kConversionSite);
  if (!converter.isNull()) converter->run();
}

// What is typed is stored as it is; the getters take a value below 1 as 1.
void commandSetImageClarityRatio() {
  const cad::RecordPlace place = clarityRatioPlace();
  int value = 1;
  cad::readInt(place, value);
  ACHAR prompt[kPromptCharacters] = {};
  std::swprintf(prompt, std::size(prompt),
                L"\n指定清晰度比率(数值越大，清晰度越低，速度越快)：<%d>", value);
  int entered = 0;
  const int result = acedGetInt(prompt, &entered);
  if (result == RTCAN) return;
  storeSetting<int>(&cad::writeInt, place, result == RTNORM ? entered : value);
}

void commandSetImageOffsetRatio() {
  const cad::RecordPlace place = offsetRatioPlace();
  double value = 1.0;
  cad::readReal(place, value);
  ACHAR prompt[kPromptCharacters] = {};
  std::swprintf(prompt, std::size(prompt), L"\n指定外扩比率(数值越大，外扩距离越大)：<%.1f>",
                value);
  double entered = 0;
  const int result = acedGetReal(prompt, &entered);
  if (result == RTCAN) return;
  storeSetting<double>(&cad::writeReal, place, result == RTNORM ? entered : value);
}

}  // namespace tarn::image
