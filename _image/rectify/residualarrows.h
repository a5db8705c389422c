// Residuals as arrows in the drawing: one block and one insertion of it for each image, so that a
// click takes them all, on a layer of their own.
#pragma once

#include <string>
#include <vector>

#include "commoncode/fitreport/fitreport.h"

class AcApDocument;

namespace tarn::image {

struct ArrowLine {
  double x1, y1, x2, y2;
};
struct ArrowText {
  double x, y, height;
  std::string text;  ///< UTF-8
};
/// What is drawn, in ground units.
struct ArrowSketch {
  std::vector<ArrowLine> lines;
  std::vector<ArrowText> texts;
};

/// An arrow from each target, `factor` times its residual long, with the row's number and residual,
/// and below all of them the scale. Rows without a residual are left out.
ArrowSketch sketchArrows(const std::vector<fitreport::ReportRow>& rows, double factor,
                         const std::string& unit);

// Each of these is one step of undo; `path` is the image's.
/// Draws in the place of earlier ones of the image. False when the drawing could not take them.
bool drawArrows(AcApDocument* document, const std::wstring& path, const ArrowSketch& sketch);
bool eraseArrows(AcApDocument* document, const std::wstring& path);
bool hasArrows(AcApDocument* document, const std::wstring& path);

}  // namespace tarn::image
