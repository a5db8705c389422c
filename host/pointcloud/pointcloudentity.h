// The host's own entity for an attached point cloud: the path of a point file and where it lies.
// No point is kept in the drawing.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "adesk.h"
#include "dbents.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace tarn::host {
class CloudFile;
}

/// A ground position is position + X * xAxis + Y * yAxis, with X and Y as the file has them. A
/// cloud that cannot be read is a frame with its name and the reason.
class ACADHOST_EXPORT TarnPointCloud : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(TarnPointCloud);

  /// Extents in the coordinates of the file.
  struct Frame {
    double minX = 0;
    double minY = 0;
    double maxX = 0;
    double maxY = 0;
    bool isValid() const;
  };

  TarnPointCloud() = default;
  ~TarnPointCloud() override = default;

  const std::string& path() const;
  AcGePoint3d position() const;
  AcGeVector3d xAxis() const;
  AcGeVector3d yAxis() const;
  /// What a reader of drawings knows of a cloud; the file is looked at when it is drawn.
  Acad::ErrorStatus setPath(const std::string& path);
  /// eInvalidInput when a number is not finite or the axes span nothing.
  Acad::ErrorStatus setPlacement(const AcGePoint3d& position, const AcGeVector3d& xAxis,
                                 const AcGeVector3d& yAxis);
  Frame frame() const;
  Acad::ErrorStatus setFrame(const Frame& frame);

  /// Reads the file, with a message when it cannot, and makes the frame that of its points. Of a
  /// file that does not tell where they are, the frame is put into the middle of the view.
  void readFile();
  /// Why no points are drawn; empty when they are.
  const std::string& reason() const { return reason_; }

  AcRxObject* clone() const override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  /// The corners of the frame on the ground: lower left, lower right, upper right, upper left.
  std::array<AcGePoint3d, 4> corners() const;
  std::string existingPath() const;
  void load();
  Frame frameInView() const;
  void drawFrame(AcGiWorldDraw& draw) const;

  std::string path_;
  AcGePoint3d position_;
  AcGeVector3d xAxis_{1, 0, 0};
  AcGeVector3d yAxis_{0, 1, 0};
  Frame frame_;

  // Not filed.
  std::shared_ptr<tarn::host::CloudFile> cloud_;
  std::string reason_;
  bool hasToldMissing_ = false;
};
