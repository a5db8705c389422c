// What the rectification component may ask of the drawing.
#pragma once

#include "inc/callbackrectifyoperator.h"

class CCadImage;

class CCADCallBackRectifyOperator final : public CallBackRectifyOperator {
 public:
  /// The image under rectification; not owned. Its current image is the one that is meant.
  explicit CCADCallBackRectifyOperator(CCadImage* image) : m_image(image) {}

  /// Another image from now on.
  void setImage(CCadImage* image) { m_image = image; }

  // Areas and queries stay unanswered.
  /// Regenerates the current drawing.
  void redraw(int x, int y, int width, int height, double left, double top, double scaleX,
              double scaleY, const unsigned char* pixels) override;
  int pickPoint(kel::List<double>& point) override;
  void* imageAnalyser() override;

 private:
  CCadImage* m_image;
};
