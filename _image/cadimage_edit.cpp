// Behaviour under the host's editing, and small queries of commands and lists.
#include <cmath>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "acedads.h"

using tarn::image::ImageExtent;

Acad::ErrorStatus CCadImage::subGetOsnapPoints(AcDb::OsnapMode osnapMode,
                                               Adesk::GsMarker /*gsSelectionMark*/,
                                               const AcGePoint3d& /*pickPoint*/,
                                               const AcGePoint3d& /*lastPoint*/,
                                               const AcGeMatrix3d& /*viewXform*/,
                                               AcGePoint3dArray& snapPoints,
                                               AcDbIntArray& /*geomIds*/) const {
  assertReadEnabled();
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const auto& [path, corners] : m_mapImageCorners) {
    for (const AcGePoint3d& corner : corners) snapPoints.append(corner);
  }
  for (const Corners& corners : serverFootprints()) {
    for (const AcGePoint3d& corner : corners) snapPoints.append(corner);
  }
  return Acad::eOk;
}

Acad::ErrorStatus CCadImage::subGetGripPoints(AcGePoint3dArray& gripPoints,
                                              AcDbIntArray& osnapModes,
                                              AcDbIntArray& geomIds) const {
  for (const auto& [path, corners] : m_mapImageCorners) {
    for (const AcGePoint3d& corner : corners) gripPoints.append(corner);
  }
  for (const Corners& corners : serverFootprints()) {
    for (const AcGePoint3d& corner : corners) gripPoints.append(corner);
  }
  return AcDbEntity::subGetGripPoints(gripPoints, osnapModes, geomIds);
}

// Deliberate: sources stay open, so that undoing the erasure finds them again.
Acad::ErrorStatus CCadImage::subErase(Adesk::Boolean /*erasing*/) {
  return Acad::eOk;
}

int CCadImage::EraseInvalidImage() {
  int erased = 0;
  ads_name all{};
  if (acedSSGet(L"X", nullptr, nullptr, nullptr, all) != RTNORM) return erased;
  Adesk::Int32 count = 0;
  acedSSLength(all, &count);
  for (Adesk::Int32 i = 0; i < count; ++i) {
    ads_name name{};
    AcDbObjectId id;
    CCadImage* image = nullptr;
    if (acedSSName(all, i, name) != RTNORM || acdbGetObjectId(id, name) != Acad::eOk ||
        acdbOpenObject(image, id, AcDb::kForWrite) != Acad::eOk) {
      continue;
    }
    if (image->holdsNoImage() && image->erase(true) == Acad::eOk) ++erased;
    image->close();
  }
  acedSSFree(all);
  return erased;
}

AcDbObjectId CCadImage::PostToModelSpace(AcDbEntity* /*entity*/) {
  return {};
}

void CCadImage::GetImageFileList(std::vector<CString>& files, bool isLocal) const {
  files.clear();
  if (isLocal) {
    for (const auto& [path, division] : m_mapImageDivision) files.emplace_back(path.c_str());
  } else {
    for (const auto& [path, client] : m_mapImageClient) files.emplace_back(path.c_str());
  }
}

void CCadImage::GetImageCenterPt(const Division& division, double upperLeft[2],
                                 double lowerRight[2]) const {
  const double* georef = division->geoTransform();
  upperLeft[0] = georef[4];
  upperLeft[1] = georef[5];
  lowerRight[0] = georef[4] + division->width() * std::fabs(georef[0]);
  lowerRight[1] = georef[5] - division->height() * std::fabs(georef[3]);
}

bool CCadImage::cornersOf(const std::wstring& path, double upperLeft[2],
                          double lowerRight[2]) const {
  const auto found = m_mapImageDivision.find(path);
  if (found != m_mapImageDivision.end()) {
    GetImageCenterPt(found->second, upperLeft, lowerRight);
    return true;
  }
  ImageExtent extent;
  if (!extentOf(path, extent)) return false;
  GetImageCenterPt(clientOf(path), upperLeft, lowerRight);
  return true;
}

bool CCadImage::GetImageCenterPt(const std::wstring& path, double& x, double& y) const {
  double upperLeft[2];
  double lowerRight[2];
  if (!cornersOf(path, upperLeft, lowerRight)) return false;
  x = (upperLeft[0] + lowerRight[0]) / 2;
  y = (upperLeft[1] + lowerRight[1]) / 2;
  return true;
}

/// Where the pixels of the displayed images are drawn; snaps and grips know the footprints.
Acad::ErrorStatus CCadImage::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  bool isEmpty = true;
  const auto add = [&](const std::wstring& path) {
    ImageExtent extent;
    if (!isShowThisImage(path) || !extentOf(path, extent)) return;
    extents.addPoint(AcGePoint3d(extent.left, extent.bottom, 0));
    extents.addPoint(AcGePoint3d(extent.right, extent.top, 0));
    isEmpty = false;
  };
  for (const auto& [path, division] : m_mapImageDivision) add(path);
  for (const auto& [path, client] : m_mapImageClient) add(path);
  return isEmpty ? Acad::eInvalidExtents : Acad::eOk;
}
