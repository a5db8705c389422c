#include "_image/imagerestore.h"

#include <string>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/moduleglobals.h"
#include "acdocman.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"

namespace tarn::image {
namespace {

bool fileExists(const std::string& path) {
  return fileKind(path) == FileKind::kRegular;
}

/// The stored path, or the file of that name in the drawing's folder; empty when neither is there.
std::string existingPath(const std::string& stored, const AcApDocument& document) {
  if (fileExists(stored)) return stored;
  const ACHAR* drawing = document.fileName();
  const std::string folder = folderOf(toUtf8(drawing ? drawing : L""));
  if (folder.empty()) return {};
  const std::string beside = joinPath(folder, stemOf(stored) + extensionOf(stored));
  return fileExists(beside) ? beside : std::string();
}

bool restoreImage(AcApDocument* document, CDocData& record, const std::wstring& path) {
  auto division = makeObject<IImageDivision>(kRestoreSite);
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || image->holds(path) || !image->GetimageDivision(division, path)) return false;
  }
  return addOpenedImage(document, record, path, division);
}

}  // namespace

void restoreImages(AcApDocument* document) {
  if (!document || !g_dataMap) return;
  CDocData& record = g_dataMap->getOrCreate(document);
  if (record.isRestored()) return;
  record.setRestored();
  record.ensureImage();
  bool isAnyRestored = false;
  for (const std::wstring& stored : storedImagePaths(record)) {
    const std::string path = existingPath(toUtf8(stored), *document);
    if (path.empty()) continue;
    if (restoreImage(document, record, toWide(path))) isAnyRestored = true;
  }
  if (isAnyRestored) sendCommandToHost(L"regen");
}

}  // namespace tarn::image
