// The view of one image.
#pragma once

#include <string>

class AcDbViewTableRecord;
class CDocData;

namespace tarn::image {

/// Two opposite corners, in drawing units.
struct ZoomWindow {
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
};

/// The window around an image with a margin of 5 per cent of its size on every side. In a view
/// turned by `twist` (radians) it is as large as the turned image needs.
ZoomWindow zoomWindow(const double upperLeft[2], const double lowerRight[2], double twist);

/// Centre and size from the window; direction, lens, twist and clipping from the current view.
void fillViewRecord(AcDbViewTableRecord& view, const ZoomWindow& window);

/// Shows the image in the current viewport, without a regeneration. False when it is not open.
bool zoomToImage(CDocData& record, const std::wstring& path);

/// The same by the host's command, which regenerates.
bool zoomByCommand(CDocData& record, const std::wstring& path);

}  // namespace tarn::image
