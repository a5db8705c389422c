#include "_image/imageadding.h"

#include <algorithm>
#include <unordered_set>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imagerelink.h"
#include "_image/imageserver.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/placementrecord.h"
#include "acdocman.h"
#include "acedads.h"
#include "afxwin.h"
#include "commoncode/cadutil/dictrecord.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/cadutil/message.h"
#include "dbapserv.h"
#include "dbsymtb.h"
#include "imageclient/qfilefind.h"
#include "inc/iuserinterface.h"

using tarn::cad::printMessage;

namespace tarn::image {
namespace {

constexpr const ACHAR* kStoredImages = L"ImagePath";
constexpr size_t kFileNameCharacters = 10000;

void reportStatus(const ACHAR* text, Acad::ErrorStatus status) {
  acutPrintf(L"%ls(%d)", text, static_cast<int>(status));
}

/// Model space of the database open for write; null after a message.
AcDbBlockTableRecord* openModelSpace(AcDbDatabase* database) {
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus status = database->getBlockTable(table, AcDb::kForRead);
  if (status != Acad::eOk) {
    reportStatus(L"获得指向块表的指针错误。", status);
    return nullptr;
  }
  AcDbBlockTableRecord* space = nullptr;
  status = table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  table->close();
  if (status == Acad::eOk) return space;
  reportStatus(L"获得指向特定的块表记录（模型空间）的指针错误。", status);
  return nullptr;
}

/// Appends the record's pending entity to model space. Fine, without a word, when the entity is in
/// the drawing already.
bool appendPendingImage(AcApDocument* document, CDocData& record) {
  CCadImage* image = record.pendingImage();
  if (!image) return true;
  const cad::DocumentLock lock(document);
  if (!lock.isLocked()) {
    printMessage(L"\n lock fail");
    return false;
  }
  AcDbBlockTableRecord* space = openModelSpace(record.database());
  if (!space) return false;
  AcDbObjectId id;
  const Acad::ErrorStatus status = space->appendAcDbEntity(id, image);
  space->close();
  if (status != Acad::eOk) {
    reportStatus(L"将AcDbLine类的对象添加到块表记录中错误。", status);
    return false;
  }
  record.becameResident(id);
  image->close();
  return true;
}

bool isBound(CDocData& record, const std::wstring& path) {
  const OpenedImage image(record, AcDb::kForRead);
  return image && image->holds(path);
}

/// Opens the source of one path and adds it; the reason of a failure has been printed.
bool openAndAdd(AcApDocument* document, CDocData& record, const std::wstring& path) {
  if (isServerImage(path)) return openAndAddServerImage(document, record, path);
  auto division = makeObject<IImageDivision>(kAddImageSite);
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || !image->GetimageDivision(division, path)) return false;
  }
  return addOpenedImage(document, record, path, division);
}

/// True when the user has named local files already.
bool filesAreGiven() {
  const auto user = makeObject<IUserInterface>(kAddImageSite);
  return !user.isNull() && user->filesGiven();
}

std::vector<std::wstring> askForImages() {
  CFileDialog dialog(TRUE, L"*.tif", nullptr,
                     OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT | OFN_ALLOWMULTISELECT,
                     L"tif文件(*.tif)|*.tif|img文件(*.img)|*.img|jpg文件(*.jpg)|*.jpg||");
  std::vector<ACHAR> buffer(kFileNameCharacters);
  dialog.m_ofn.lpstrFile = buffer.data();
  dialog.m_ofn.nMaxFile = static_cast<DWORD>(buffer.size());
  std::vector<std::wstring> paths;
  if (dialog.DoModal() != IDOK) return paths;
  for (POSITION position = dialog.GetStartPosition(); position;) {
    paths.emplace_back(dialog.GetNextPathName(position).GetString());
  }
  return paths;
}

}  // namespace

void reportNoRecord() {
  printMessage(L"当前文档没有加载到 g_dataMap 中！");
}

CDocData* currentRecordOrReport() {
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (!record) reportNoRecord();
  return record;
}

std::vector<std::wstring> storedImagePaths(const CDocData& record) {
  std::vector<std::wstring> paths;
  cad::readTexts({kStoredImages, kStoredImages, record.database()}, paths);
  return paths;
}

bool storeImagePaths(AcApDocument* document, CDocData& record,
                     const std::vector<std::wstring>& paths) {
  const cad::DocumentLock lock(document);
  if (!lock.isLocked()) {
    printMessage(L"\nlockDocument fail");
    return false;
  }
  const std::vector<std::wstring> before = storedImagePaths(record);
  rememberFileSizes(record, paths);
  if (cad::writeTexts({kStoredImages, kStoredImages, record.database()}, paths)) {
    followPaths(record.database(), before, paths);
    return true;
  }
  printMessage(L"\n影像列表无法保存到图形中！");
  return false;
}

bool eraseStoredImagePaths(AcApDocument* document, CDocData& record) {
  const cad::DocumentLock lock(document);
  if (!lock.isLocked()) {
    printMessage(L"\nlockDocument fail");
    return false;
  }
  return cad::eraseRecord({kStoredImages, kStoredImages, record.database()});
}

bool storeImagePath(AcApDocument* document, CDocData& record, const std::wstring& path) {
  std::vector<std::wstring> paths = storedImagePaths(record);
  if (std::find(paths.begin(), paths.end(), path) != paths.end()) return true;
  paths.push_back(path);
  return storeImagePaths(document, record, paths);
}

bool addBoundImage(AcApDocument* document, CDocData& record, const std::wstring& path) {
  const bool wasListed = record.contains(path);
  record.addDisplayed(path);
  if (appendPendingImage(document, record)) return true;
  if (!wasListed) record.remove(path);
  record.closeImage(path);
  return false;
}

bool addOpenedImage(AcApDocument* document, CDocData& record, const std::wstring& path,
                    kel::Object<IImageDivision>& division) {
  record.ensureImage();
  {
    const OpenedImage image(record, AcDb::kForWrite);
    if (!image) {
      division->close();
      return false;
    }
    image->SetImageInfo(path, division);
  }
  return addBoundImage(document, record, path);
}

void addImages() {
  AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  if (!document) {
    AfxMessageBox(L"必须打开一个dwg文档。");
    return;
  }
  CDocData* record = currentRecordOrReport();
  if (!record) return;
  const bool isLocal = filesAreGiven() || QFileFind::Instance().loadImgWay() != LOADWAY::kServer;
  const std::vector<std::wstring> chosen = isLocal ? askForImages() : askForServerImages();
  if (!chosen.empty()) addImagesOf(document, *record, chosen);
}

void addImagesOf(AcApDocument* document, CDocData& record, const std::vector<std::wstring>& paths) {
  std::vector<std::wstring> stored = storedImagePaths(record);
  std::unordered_set<std::wstring> known(stored.begin(), stored.end());
  for (const std::wstring& path : paths) {
    record.ensureImage();
    const bool isStored = known.count(path) > 0;
    // A stored path whose file was missing until now is not loaded twice by adding it.
    if ((isStored || record.contains(path)) && isBound(record, path)) {
      printMessage(L"\n该影像已经存在当前里列表中，不允许重复加载");
      continue;
    }
    if (!openAndAdd(document, record, path) || isStored) continue;
    stored.push_back(path);
    known.insert(path);
  }
  storeImagePaths(document, record, stored);
  tellImageListChanged();
  sendCommandToHost(L"regen");
}

}  // namespace tarn::image
