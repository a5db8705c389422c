// A drawing on the disk: what it was like when it was read, and how a new one takes its place.
#pragma once

#include <string>
#include <string_view>

#include "adesk.h"
#include "base/file.h"
#include "base/result.h"

namespace tarn::host {

/// The name of the one backup: the drawing's with ".bak".
ACADHOST_EXPORT std::string backupOf(const std::string& path);

/// Keeps what stands at `path` as its backup and puts the bytes in its place: at every moment the
/// old drawing or the new one is there, whole. Refused for a file or a folder that is read-only.
ACADHOST_EXPORT Status saveDrawing(const std::string& path, std::string_view bytes);

}  // namespace tarn::host
