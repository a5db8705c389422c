// Viewports of a sheet: windows through which the model is seen. Reached through dbents.h.
#pragma once

#include "dbents.h"
#include "gepnt2d.h"

/// Centre, width and height stand in the sheet's units; what is shown in drawing units. The view
/// centre is counted from the target along the axes of the twisted view. A viewport with number 1
/// is the view of the sheet itself.
class ACADHOST_EXPORT AcDbViewport : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewport);

  AcGePoint3d centerPoint() const;
  Acad::ErrorStatus setCenterPoint(const AcGePoint3d& center);
  double width() const;
  /// eInvalidInput unless above zero.
  Acad::ErrorStatus setWidth(double width);
  double height() const;
  Acad::ErrorStatus setHeight(double height);
  Adesk::Int16 number() const;
  void setNumber(Adesk::Int16 number);
  bool isOn() const;
  Acad::ErrorStatus setOn();
  Acad::ErrorStatus setOff();

  AcGePoint2d viewCenter() const;
  Acad::ErrorStatus setViewCenter(const AcGePoint2d& center);
  /// Drawing units over the viewport's height.
  double viewHeight() const;
  Acad::ErrorStatus setViewHeight(double height);
  /// Radians; a positive twist turns the model counter-clockwise.
  double twistAngle() const;
  Acad::ErrorStatus setTwistAngle(double angle);
  AcGePoint3d viewTarget() const;
  Acad::ErrorStatus setViewTarget(const AcGePoint3d& target);
  AcGeVector3d viewDirection() const;
  Acad::ErrorStatus setViewDirection(const AcGeVector3d& direction);
  /// Sheet units a drawing unit.
  double customScale() const;

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
  AcGePoint3d center_;
  double width_ = 1;
  double height_ = 1;
  Adesk::Int16 number_ = 0;
  bool on_ = true;
  AcGePoint2d viewCenter_;
  double viewHeight_ = 1;
  double twist_ = 0;
  AcGePoint3d target_;
  AcGeVector3d direction_{0, 0, 1};
};
