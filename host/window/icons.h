// Pictures of the tool bar, drawn so that they are sharp at every size.
#pragma once

#include <QIcon>

namespace tarn::host {

enum class IconKind {
  kOpen,
  kSave,
  kAddImages,
  kSavePicture,
  kUndo,
  kRedo,
  kZoomExtents,
  kZoomWindow,
  kZoomPrevious,
  kPan,
  kRegenerate
};

QIcon makeIcon(IconKind kind, const QColor& color);

}  // namespace tarn::host
