// Class description, filing, cloning, binding to images.
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/cadimage_fade.h"
#include "_image/cadimage_spec.h"
#include "acedads.h"
#include "commoncode/cadutil/drawingscale.h"
#include "dbfiler.h"
#include "dbproxy.h"
#include "imageclient/tarnclientmanager.h"

// clang-format off
ACRX_DXF_DEFINE_MEMBERS(CCadImage, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        AcDbProxyEntity::kNoOperation, CADIMAGE,
                        _IMAGEAPP |Product Desc: A description for your object
                        |Company: Your company name |WEB Address: Your company WEB site address)
// clang-format on

Adesk::UInt32 CCadImage::kCurrentVersionNumber = 1;
const Adesk::UInt32 CCadImage::kImagePixelDataByteCount = 3;
const Adesk::UInt32 CCadImage::kImagePixelDataMaxWidth = tarn::image::kMaxCells;
const Adesk::UInt32 CCadImage::kImagePixelDataMaxHeight = tarn::image::kMaxCells;

CCadImage::CCadImage() = default;
CCadImage::~CCadImage() = default;

// Deliberate: only the version is filed with the base's data. Paths, corners and the view live in
// memory; the document's record binds images to the entity again.
Acad::ErrorStatus CCadImage::dwgOutFields(AcDbDwgFiler* filer) const {
  assertReadEnabled();
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeUInt32(kCurrentVersionNumber);
  return filer->filerStatus();
}

Acad::ErrorStatus CCadImage::dwgInFields(AcDbDwgFiler* filer) {
  assertWriteEnabled();
  Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::UInt32 version = 0;
  status = filer->readUInt32(&version);
  if (status != Acad::eOk) return status;
  if (version > kCurrentVersionNumber) return Acad::eMakeMeProxy;
  return filer->filerStatus();
}

AcRxObject* CCadImage::clone() const {
  auto* copy = new CCadImage();
  const std::wstring path = m_strImagePath;
  if (tarn::image::isServerImage(path)) return copy;
  Division division = tarn::image::makeObject<IImageDivision>(tarn::image::kCloneDivisionSite);
  if (copy->GetimageDivision(division, path)) copy->SetImageInfo(path, division);
  return copy;
}

Acad::ErrorStatus CCadImage::erase(bool erasing) {
  return AcDbObject::erase(erasing);
}

CCadImage::Corners CCadImage::footprintOf(double width, double height, const double* georef) {
  double scale = 0.5;
  tarn::cad::drawingScale(scale);
  const double unit = scale / 1000.0;
  const double left = georef[4];
  const double top = georef[5];
  const double right = left + width * unit;
  const double bottom = top - height * unit;
  return {AcGePoint3d(left, top, 0), AcGePoint3d(right, top, 0), AcGePoint3d(right, bottom, 0),
          AcGePoint3d(left, bottom, 0)};
}

void CCadImage::SetImageInfo(const std::wstring& path, const Division& division) {
  double* georef = division->geoTransform();
  m_footprint = footprintOf(division->width(), division->height(), georef);
  m_mapImageCorners[path] = m_footprint;
  setImageFileNameMapIO(path, division, georef);
  m_strImagePath = path;
}

void CCadImage::setImageFileNameMapIO(const std::wstring& path, const Division& division,
                                      double* georef) {
  m_mapImageGeoref[path] = georef;
  Division& held = m_mapImageDivision[path];
  held = division.share();
  m_localImages[path] = {&held, georef};
  m_shownRevision = 0;
}

void CCadImage::SetCurrentImage(const std::wstring& path) {
  m_strCurImage = path;
}

void* CCadImage::pAnalyser(bool isLocal) const {
  if (isLocal) {
    const auto found = m_mapImageDivision.find(m_strCurImage);
    return found == m_mapImageDivision.end() ? nullptr : found->second.get();
  }
  const auto found = m_mapImageClient.find(m_strCurImage);
  return found == m_mapImageClient.end() ? nullptr : found->second;
}

void CCadImage::setIsLocal(bool /*isLocal*/) {}

int CCadImage::GetCVPort() const {
  resbuf value{};
  return acedGetVar(L"CVPORT", &value) == RTNORM ? value.resval.rint : 0;
}

void CCadImage::SetCVPort(int port) const {
  resbuf value{};
  value.restype = RTSHORT;
  value.resval.rint = static_cast<short>(port);
  acedSetVar(L"CVPORT", &value);
}

bool CCadImage::holds(const std::wstring& path) const {
  return m_mapImageDivision.count(path) > 0 || m_mapImageClient.count(path) > 0;
}

IImageDivision* CCadImage::sourceOf(const std::wstring& path) const {
  const auto found = m_mapImageDivision.find(path);
  return found == m_mapImageDivision.end() ? nullptr : found->second.get();
}

bool CCadImage::releaseImage(const std::wstring& path) {
  if (TarnClientManager* client = clientOf(path)) {
    client->close();
    m_mapImageClient.erase(path);
    return true;
  }
  const auto found = m_mapImageDivision.find(path);
  if (found == m_mapImageDivision.end()) return false;
  found->second->close();
  // The six numbers belong to the source, so they go first.
  m_localImages.erase(path);
  m_shownRevision = 0;
  m_mapImageGeoref.erase(path);
  m_mapImageCorners.erase(path);
  m_mapImageDivision.erase(found);
  return true;
}
