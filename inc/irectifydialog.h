// The rectification of one image: the component that computes it and brings up its dialog.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"
#include "inc/rectification.h"

class CallBackRectifyOperator;
class IImageDivision;

/// Coordinates are the drawing's unless something else is said; y goes up. Image pixels count from
/// the outer upper left corner of the image as its source presents it, y down.
///
/// What the image source shows (imageSource) is always the current state. A run begins with
/// prepare() or openImage(): its state then is the accepted one. setControlPoints() puts a
/// rectification over the accepted state, acceptTransform() makes that the accepted one, and
/// setRectifyMethod(-1) goes back to the accepted one.
class IRectifyDialog : public kel::IObject {
 public:
  KEL_INTERFACE(IRectifyDialog)

  virtual bool hasImage() = 0;
  /// Path of the open image; empty when there is none.
  virtual kel::DString imagePath() = 0;
  /// The seventh operation, the first of a run. `flags` is 0.
  virtual void prepare(int flags) = 0;
  /// The eighth. Opens the image; the callback (or null) must outlive the dialog. When the
  /// callback's image analyser is the source of a rectification, that one's state is taken over.
  /// False, after a message, when the image cannot be opened.
  virtual bool openImage(const kel::DString& path, CallBackRectifyOperator* callback) = 0;
  /// The ninth. 1 makes the dialog modal.
  virtual void setModal(int modal) = 0;
  /// The tenth. Shows the dialog and returns at once.
  virtual void show() = 0;

  /// Size of the image in its own pixels.
  virtual int imageQueryA() = 0;
  virtual int imageQueryB() = 0;
  /// The placement record of the accepted state. It may be changed in place; applyPlacement() then
  /// makes the change take effect. Valid while the object lives.
  virtual kel::RectifyPlacement* imageQueryC() = 0;
  /// Index 0 cubic, 1 quadratic, 2 linear, 3 affine, 4 Helmert; -1 goes back to the accepted state.
  virtual void setRectifyMethod(int method) = 0;
  /// Sources are points on the image as the accepted state draws it. When some of them are sources
  /// of the accepted rectification (as transformQuery gives them) that one is computed anew from
  /// all the points, else the new one goes on top of it. Fits at once: the source shows it.
  virtual void setControlPoints(const kel::PointList& sources, const kel::PointList& targets) = 0;
  /// Computes what the dialog reads afterwards; setControlPoints has already fitted.
  virtual void computeTransform() = 0;
  /// 10, 6, 2, 3, 2; 0 for an index that is none.
  virtual int minimumPointCount(int method) = 0;
  /// For each control point east, north and length of T(source) - target. While the method is -1
  /// they are of the method whose minimum count was asked for last. Not numbers (NaN) without a
  /// fit; all 0 where the points are just enough, which says nothing about them.
  virtual kel::PointList getResiduals() = 0;
  /// As drawn now: size in pixels, left and top, drawing units of a pixel along x and y (y
  /// negative).
  virtual void getImageGeometry(int& width, int& height, double& left, double& top, double& scaleX,
                                double& scaleY) = 0;
  /// The points of the current state: as handed in, or those of an earlier rectification with their
  /// sources as the accepted state draws them. False when there are none.
  virtual bool transformQuery(kel::PointList& sources, kel::PointList& targets) = 0;
  /// Says in advance whether exportImage would be refused (format, place, target that is a source);
  /// false after a message. Writes nothing.
  virtual bool exportPrepare(const kel::DString& path, const kel::DString& format) = 0;
  /// Writes the image as drawn now, "tif" or "img" in any case, with progress through kel::Core's
  /// callback. False after a message; an older file of that name is then as it was.
  virtual bool exportImage(const kel::DString& path, const kel::DString& format) = 0;
  /// 0 success, 1 not solvable, 2 weak.
  virtual int rectifyStatus() = 0;
  /// Makes a changed placement record take effect. A record that has no area or is not finite is
  /// refused: it goes back to what it was.
  virtual void applyPlacement() = 0;

  /// The image as drawn now. The caller owns a count; the source keeps this object alive. Its
  /// queryInterface gives this object for IRectifyDialog.
  virtual IImageDivision* imageSource() = 0;
  /// The control points' method: as set, else of the rectification in effect, else -1.
  virtual int rectifyMethod() = 0;
  /// Makes the rectification over the accepted state part of it. Does nothing when there is none.
  virtual void acceptTransform() = 0;
  virtual kel::RectifyQuality quality() = 0;
  /// Where the fit takes a point given like a control point's source; also for check points. False
  /// without a fit.
  virtual bool transformPoint(double x, double y, double& outX, double& outY) = 0;
  /// Between the image's own pixels and the drawing, as drawn now. False where there is no such
  /// pixel.
  virtual bool drawingOfPixel(double column, double row, double& x, double& y) = 0;
  virtual bool pixelOfDrawing(double x, double y, double& column, double& row) = 0;
  /// The accepted state as numbers, to be kept in a drawing.
  virtual kel::List<double> storedState() = 0;
  /// Takes such numbers as the accepted and current state, an empty list for an image as its file
  /// has it. False, with nothing changed, when they are none.
  virtual bool restoreState(const kel::List<double>& numbers) = 0;
  /// How exportImage fills pixels: 0 nearest, 1 bilinear (the start).
  virtual void setExportResampling(int mode) = 0;
  /// What the coefficients of quality() take for a point given like a control point's source: a
  /// rectification that is computed anew is fitted to the image as it was before it. False where
  /// there is no such place.
  virtual bool sourceOfFit(double x, double y, double& outX, double& outY) = 0;

 protected:
  ~IRectifyDialog() = default;
};
