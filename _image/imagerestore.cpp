#include "_image/imagerestore.h"

#include <algorithm>
#include <string>
#include <vector>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imageserver.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/placementrecord.h"
#include "acdocman.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"

namespace tarn::image {
namespace {

bool fileExists(const std::string& path) {
  return fileKind(path) == FileKind::kRegular;
}

/// The last one, two ... parts of a path, with '/' between them.
std::vector<std::string> endsOf(const std::string& path) {
  constexpr size_t kMostParts = 4;
  std::vector<std::string> ends;
  std::string rest = path;
  while (ends.size() < kMostParts && !rest.empty()) {
    const std::string part = nameOf(rest);
    ends.push_back(ends.empty() ? part : joinPath(part, ends.back()));
    rest = folderOf(rest);
  }
  return ends;
}

/// A name of an image on a server as it is. A stored full path that is a file; else the longest end
/// of it that is one in the drawing's folder or in one of the two above, the nearest first; empty
/// when there is none. A stored path that is relative belongs to the drawing's folder, never to the
/// one that the program was started in.
std::string existingPath(const std::string& stored, const AcApDocument& document) {
  constexpr int kFolders = 3;
  if (isServerImage(toWide(stored))) return stored;
  if (absolutePath(stored) == stored && fileExists(stored)) return stored;
  const ACHAR* drawing = document.fileName();
  const std::vector<std::string> ends = endsOf(stored);
  for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
    std::string folder = folderOf(toUtf8(drawing ? drawing : L""));
    for (int i = 0; i < kFolders && !folder.empty(); ++i, folder = folderOf(folder)) {
      std::string path = joinPath(folder, *end);
      if (fileExists(path)) return path;
    }
  }
  return {};
}

bool restoreImage(AcApDocument* document, CDocData& record, const std::wstring& path) {
  if (isServerImage(path)) return restoreServerImage(document, record, path);
  auto division = makeObject<IImageDivision>(kRestoreSite);
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || image->holds(path) || !image->GetimageDivision(division, path)) return false;
  }
  return addOpenedImage(document, record, path, division);
}

std::vector<std::wstring> existingStoredPaths(const CDocData& record,
                                              const AcApDocument& document) {
  std::vector<std::wstring> paths;
  for (const std::wstring& stored : storedImagePaths(record)) {
    const std::string path = existingPath(toUtf8(stored), document);
    if (!path.empty()) paths.push_back(toWide(path));
  }
  return paths;
}

/// Takes a path that is no longer stored out of the list and closes its source. An erased entity
/// keeps its sources, so that it is whole when it comes back.
void forgetImage(CDocData& record, const std::wstring& path) {
  record.remove(path);
  if (!record.residentImage().isNull()) record.closeImage(path);
}

bool bindAgain(AcApDocument* document, CDocData& record, const std::wstring& path) {
  const bool isNew = !record.contains(path);
  if (isNew) record.addDisplayed(path);
  if (record.residentImage().isNull()) return isNew;
  return restoreImage(document, record, path) || isNew;
}

}  // namespace

bool followDrawing(AcApDocument* document) {
  CDocData* record = g_dataMap ? g_dataMap->find(document) : nullptr;
  if (!record || !record->isRestored()) return false;
  if (!record->residentImage().isNull()) record->forgetPending();
  const std::vector<std::wstring> stored = existingStoredPaths(*record, *document);
  bool isChanged = false;
  const std::vector<CDocData::Image> listed = record->images();
  for (const CDocData::Image& image : listed) {
    if (std::find(stored.begin(), stored.end(), image.path) != stored.end()) continue;
    forgetImage(*record, image.path);
    isChanged = true;
  }
  for (const std::wstring& path : stored) {
    if (bindAgain(document, *record, path)) isChanged = true;
  }
  openServerImages(*record);
  if (isChanged) record->reorder(stored);
  isChanged = followPlacements(document, *record, storedImagePaths(*record)) || isChanged;
  if (isChanged) tellImageListChanged();
  return isChanged;
}

std::wstring presentImagePath(const std::wstring& stored, const AcApDocument& document) {
  return toWide(existingPath(toUtf8(stored), document));
}

bool bindFoundImages(AcApDocument* document) {
  CDocData* record = g_dataMap ? g_dataMap->find(document) : nullptr;
  if (!record) return false;
  record->ensureImage();
  const std::vector<std::wstring> present = existingStoredPaths(*record, *document);
  bool isAnyBound = false;
  for (const std::wstring& path : present) {
    if (!record->contains(path) && restoreImage(document, *record, path)) isAnyBound = true;
  }
  openServerImages(*record);
  record->reorder(present);
  followPlacements(document, *record, storedImagePaths(*record));
  return isAnyBound;
}

void restoreImages(AcApDocument* document) {
  if (!document || !g_dataMap) return;
  CDocData& record = g_dataMap->getOrCreate(document);
  if (record.isRestored()) {
    tellImageListChanged();
    return;
  }
  record.setRestored();
  record.ensureImage();
  bool isAnyRestored = false;
  for (const std::wstring& path : existingStoredPaths(record, *document)) {
    if (restoreImage(document, record, path)) isAnyRestored = true;
  }
  openServerImages(record);
  followPlacements(document, record, storedImagePaths(record));
  tellImageListChanged();
  if (isAnyRestored) sendCommandToHost(L"regen");
}

}  // namespace tarn::image
