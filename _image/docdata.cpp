#include "_image/docdata.h"

#include <algorithm>
#include <utility>

#include "_image/cadimage.h"
#include "_image/hostcommand.h"
#include "acdocman.h"
#include "acedads.h"
#include "dbsymtb.h"
#include "imageclient/tarnclientmanager.h"

namespace {

/// The first image entity of model space that is not erased.
AcDbObjectId firstImageEntity(AcDbDatabase* database) {
  AcDbBlockTable* table = nullptr;
  if (!database || database->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return {};
  AcDbBlockTableRecord* space = nullptr;
  const Acad::ErrorStatus opened = table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
  table->close();
  if (opened != Acad::eOk) return {};
  AcDbObjectId found;
  AcDbBlockTableRecordIterator* made = nullptr;
  if (space->newIterator(made) == Acad::eOk) {
    const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
    for (iterator->start(); !iterator->done() && found.isNull(); iterator->step()) {
      AcDbObjectId id;
      CCadImage* image = nullptr;
      if (iterator->getEntityId(id) != Acad::eOk ||
          acdbOpenObject(image, id, AcDb::kForRead) != Acad::eOk) {
        continue;
      }
      image->close();
      found = id;
    }
  }
  space->close();
  return found;
}

/// An image of a server has changed that the entity of this name shows.
int redrawChangedImage(void* entityName) {
  const AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  AcDbObjectId id;
  if (document && acdbGetObjectId(id, *static_cast<ads_name*>(entityName)) == Acad::eOk &&
      id.database() == document->database()) {
    tarn::image::sendCommandToHost(L"regen");
  }
  return 0;
}

}  // namespace

CDocData::CDocData(AcApDocument* document) : m_database(document->database()) {
  changed();
}
CDocData::~CDocData() = default;

const CDocData::Image* CDocData::find(const std::wstring& path) const {
  const auto place = m_places.find(path);
  return place == m_places.end() ? nullptr : &m_images[place->second];
}

CDocData::Image* CDocData::find(const std::wstring& path) {
  return const_cast<Image*>(std::as_const(*this).find(path));
}

void CDocData::changed() {
  static uint64_t last = 0;
  m_listRevision = ++last;
}

void CDocData::numberImages() {
  changed();
  m_places.clear();
  for (size_t i = 0; i < m_images.size(); ++i) m_places[m_images[i].path] = i;
}

bool CDocData::contains(const std::wstring& path) const {
  return find(path) != nullptr;
}

bool CDocData::isDisplayed(const std::wstring& path) const {
  const Image* image = find(path);
  return image && image->isDisplayed;
}

void CDocData::addDisplayed(const std::wstring& path) {
  if (Image* image = find(path)) {
    image->isDisplayed = true;
    changed();
    return;
  }
  changed();
  m_places[path] = m_images.size();
  m_images.push_back({path, true});
}

void CDocData::setDisplayed(const std::wstring& path, bool isDisplayed) {
  Image* image = find(path);
  if (!image || image->isDisplayed == isDisplayed) return;
  image->isDisplayed = isDisplayed;
  changed();
}

bool CDocData::remove(const std::wstring& path) {
  const auto place = m_places.find(path);
  if (place == m_places.end()) return false;
  m_images.erase(m_images.begin() + static_cast<std::ptrdiff_t>(place->second));
  numberImages();
  return true;
}

void CDocData::reorder(const std::vector<std::wstring>& paths) {
  std::unordered_map<std::wstring, size_t> wanted;
  for (const std::wstring& path : paths) wanted.emplace(path, wanted.size());
  const auto rank = [&](const Image& image) {
    const auto found = wanted.find(image.path);
    return found == wanted.end() ? wanted.size() : found->second;
  };
  std::stable_sort(m_images.begin(), m_images.end(),
                   [&](const Image& a, const Image& b) { return rank(a) < rank(b); });
  numberImages();
}

AcDbObjectId CDocData::residentImage() {
  if (m_residentId.isNull() || m_residentId.isErased()) {
    setResident(firstImageEntity(m_database));
  }
  return m_residentId;
}

void CDocData::ensureImage() {
  if (!hasImage()) m_pending = std::make_unique<CCadImage>();
}

void CDocData::setResident(AcDbObjectId id) {
  m_residentId = id;
  if (!id.isNull()) acdbGetAdsName(m_entityName, id);
}

void CDocData::becameResident(AcDbObjectId id) {
  setResident(id);
  m_pending.release();  // NOLINT(bugprone-unused-return-value): the database owns it now.
}

void CDocData::forgetPending() {
  m_pending.reset();
}

TarnClientManager* CDocData::keepClient(std::unique_ptr<TarnClientManager> client) {
  client->setUpdFunc(&redrawChangedImage);
  client->setAds_name(&m_entityName);
  m_clients.push_back(std::move(client));
  return m_clients.back().get();
}

bool CDocData::closeImage(const std::wstring& path) {
  const OpenedImage image(*this, AcDb::kForWrite);
  if (!image) return false;
  const TarnClientManager* client = image->clientOf(path);
  if (!image->releaseImage(path)) return false;
  m_clients.erase(std::remove_if(m_clients.begin(), m_clients.end(),
                                 [&](const auto& one) { return one.get() == client; }),
                  m_clients.end());
  return true;
}

OpenedImage::OpenedImage(CDocData& record, AcDb::OpenMode mode) {
  const AcDbObjectId id = record.residentImage();
  if (id.isNull()) {
    m_image = record.pendingImage();
  } else if (acdbOpenObject(m_image, id, mode) == Acad::eOk) {
    m_isResident = true;
  } else {
    m_image = nullptr;
  }
}

OpenedImage::~OpenedImage() {
  if (m_isResident) m_image->close();
}
