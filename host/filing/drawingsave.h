// A drawing on the disk: what it was like when it was read, and how a new one takes its place.
#pragma once

#include <string>

#include "adesk.h"
#include "base/file.h"
#include "base/result.h"
#include "host/filing/drawingpieces.h"

namespace tarn::host {

/// The name of the one backup: the drawing's with ".bak".
ACADHOST_EXPORT std::string backupOf(const std::string& path);

/// Puts a drawing in the place of what stands at `path`, which stays as its backup: at every moment
/// the old drawing or the new one is there, whole. The new one has the mode of the old, and a
/// symbolic link goes on naming its file, beside which the backup stands. Refused for a file or a
/// folder that is read-only; on failure also the earlier backup is there until the new drawing is
/// on the disk.
/// What the pieces say against it is returned as it is.
ACADHOST_EXPORT Status saveDrawing(const std::string& path, const DrawingPieces& pieces);

}  // namespace tarn::host
