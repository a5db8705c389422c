#include "_image/imageedit.h"

#include <algorithm>
#include <unordered_map>

#include "_image/adskdmgr.h"
#include "_image/docdata.h"
#include "_image/imageadding.h"
#include "_image/imagerestore.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/placementrecord.h"
#include "acdocman.h"
#include "base/text.h"
#include "commoncode/cadutil/documentlock.h"
#include "imageclient/absimageclient.h"

namespace tarn::image {

void setImageReleaser() {
  AbsImageClient::setReleaser([](const kel::DString& path) {
    CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
    return record && record->closeImage(toWide(path.str()));
  });
}

bool releaseListedImage(CDocData& record, const std::wstring& path) {
  if (!AbsImageClient::close(kel::DString(toUtf8(path)))) return false;
  record.remove(path);
  return true;
}

void storeOrder(AcApDocument* document, CDocData& record) {
  const std::vector<std::wstring> before = storedImagePaths(record);
  std::vector<size_t> places;
  std::unordered_map<std::wstring, std::wstring> storedOf;
  for (size_t i = 0; i < before.size(); ++i) {
    const std::wstring path =
        record.contains(before[i]) ? before[i] : presentImagePath(before[i], *document);
    if (record.contains(path) && storedOf.emplace(path, before[i]).second) places.push_back(i);
  }
  std::vector<std::wstring> stored = before;
  size_t next = 0;
  for (const CDocData::Image& image : record.images()) {
    const auto found = storedOf.find(image.path);
    if (found != storedOf.end()) stored[places[next++]] = found->second;
  }
  storeImagePaths(document, record, stored);
}

StoredListChange::StoredListChange(AcApDocument* document, CDocData& record)
    : m_document(document),
      m_record(record),
      m_before(storedImagePaths(record)),
      m_paths(m_before) {
  m_isErased = eraseStoredImagePaths(document, record);
}

StoredListChange::~StoredListChange() {
  if (!m_isErased) return;
  storeImagePaths(m_document, m_record, m_paths);
  forgetPlacements(m_document, m_record, m_before, m_paths);
}

void forgetPlacements(AcApDocument* document, CDocData& record,
                      const std::vector<std::wstring>& before,
                      const std::vector<std::wstring>& now) {
  const cad::DocumentLock lock(document);
  if (lock.isLocked()) followPaths(record.database(), before, now);
}

void StoredListChange::remove(const std::wstring& path) {
  const auto leadsThere = [&](const std::wstring& stored) {
    return stored == path ||
           (!m_record.contains(stored) && presentImagePath(stored, *m_document) == path);
  };
  m_paths.erase(std::remove_if(m_paths.begin(), m_paths.end(), leadsThere), m_paths.end());
}

}  // namespace tarn::image
