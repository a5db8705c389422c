// What stands in a file beside entities that were erased, and names them.
#pragma once

#include "host/filing/drawingbinding.h"
#include "host/filing/drawingedits.h"

namespace tarn::host {

/// Groups let erased entities go, and what an erased image had of its own beside itself goes with
/// it. Objects of kinds that are none here; everything else of them stays.
void followErased(const DrawingBinding& binding, DrawingEdits& edits);

}  // namespace tarn::host
