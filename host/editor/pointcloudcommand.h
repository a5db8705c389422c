// Attaching a point cloud to the drawing.
#pragma once

#include "adesk.h"

namespace tarn::host {

/// -POINTCLOUDATTACH: path, insertion point, scale, rotation. A file that cannot be read is
/// attached all the same and seen as a frame that says why; one that is not there is refused.
void pointCloudAttachCommand();

/// Enters it into a group of commands.
void addPointCloudCommand(const ACHAR* group);

}  // namespace tarn::host
