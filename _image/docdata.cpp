#include "_image/docdata.h"

#include <algorithm>

#include "_image/cadimage.h"
#include "acdocman.h"
#include "dbsymtb.h"

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

}  // namespace

CDocData::CDocData(AcApDocument* document) : m_database(document->database()) {}
CDocData::~CDocData() = default;

std::vector<CDocData::Image>::iterator CDocData::find(const std::wstring& path) {
  return std::find_if(m_images.begin(), m_images.end(),
                      [&](const Image& image) { return image.path == path; });
}

bool CDocData::contains(const std::wstring& path) const {
  return std::any_of(m_images.begin(), m_images.end(),
                     [&](const Image& image) { return image.path == path; });
}

bool CDocData::isDisplayed(const std::wstring& path) const {
  return std::any_of(m_images.begin(), m_images.end(),
                     [&](const Image& image) { return image.path == path && image.isDisplayed; });
}

void CDocData::addDisplayed(const std::wstring& path) {
  const auto found = find(path);
  if (found == m_images.end()) {
    m_images.push_back({path, true});
  } else {
    found->isDisplayed = true;
  }
}

void CDocData::setDisplayed(const std::wstring& path, bool isDisplayed) {
  const auto found = find(path);
  if (found != m_images.end()) found->isDisplayed = isDisplayed;
}

bool CDocData::remove(const std::wstring& path) {
  const auto found = find(path);
  if (found == m_images.end()) return false;
  m_images.erase(found);
  return true;
}

AcDbObjectId CDocData::residentImage() {
  if (m_residentId.isNull() || m_residentId.isErased()) {
    m_residentId = firstImageEntity(m_database);
  }
  return m_residentId;
}

void CDocData::ensureImage() {
  if (!hasImage()) m_pending = std::make_unique<CCadImage>();
}

void CDocData::becameResident(AcDbObjectId id) {
  m_residentId = id;
  m_pending.release();  // NOLINT(bugprone-unused-return-value): the database owns it now.
}

void CDocData::forgetPending() {
  m_pending.reset();
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
