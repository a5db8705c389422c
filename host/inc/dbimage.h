// Images that the drawing itself names.
#pragma once

#include <string>
#include <vector>

#include "dbents.h"
#include "gepnt2d.h"

/// A picture file laid into the world. What it shows comes from whoever reads image files, see
/// TarnImagePixels; without that, and without the file, its frame is seen with the file's name.
class ACADHOST_EXPORT AcDbRasterImage : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRasterImage);
  struct Values {
    std::wstring fileName;    ///< as it stands in the drawing
    AcGePoint3d origin;       ///< lower left corner
    AcGeVector3d u{1, 0, 0};  ///< of one pixel
    AcGeVector3d v{0, 1, 0};
    double width = 1;  ///< pixels
    double height = 1;
    bool shown = true;
    /// The part that is shown, in pixels from the upper left corner, y down; none for all of it.
    std::vector<AcGePoint3d> clip;
    short brightness = 50;  ///< 0 black to 100 white; 50 as the file has it
    short contrast = 50;    ///< 0 grey to 100 twice as much
    short fade = 0;         ///< 0 to 100, where nothing is left of it
  };
  AcDbRasterImage() = default;

  /// Valid until they are changed.
  const Values& values() const;
  Acad::ErrorStatus setValues(Values values);
  /// The file that is meant: as it stands, beside the drawing, or below its folder. Empty when
  /// there is none.
  std::string foundFile() const;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  /// The four corners.
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

  /// 0 frames are not seen, 1 they are, 2 only on the screen: by the drawing.
  virtual Adesk::Int16 frameMode() const;
  bool isFrameShown(AcGiWorldDraw& draw) const;
  /// Around the shown part, closed.
  std::vector<AcGePoint3d> frame() const;

 private:
  AcGePoint3d worldOf(double x, double y) const;
  bool drawPixels(AcGiWorldDraw& draw, const std::string& path) const;

  Values values_;
};
