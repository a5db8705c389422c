// What entities are, as named values that a user can read and partly change.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"
#include "base/result.h"
#include "host/editor/selectionmemory.h"

namespace tarn::host {

class HostApp;

enum class ValueKind {
  kShown,   ///< cannot be changed
  kNumber,  ///< of drawing units or degrees
  kText,
  kLayer,     ///< name of a layer of the drawing
  kColor,     ///< "ByLayer", "ByBlock", 1 to 255, or "#rrggbb"
  kLinetype,  ///< name of a line type of the drawing
};

struct EntityValue {
  const char* name;   ///< English; also what changeValue() knows it by
  std::string value;  ///< empty where entities differ
  ValueKind kind = ValueKind::kShown;
  bool differs = false;
};

/// The values that all of the entities have. Coordinates keep their digits.
ACADHOST_EXPORT std::vector<EntityValue> valuesOf(const EntityIds& ids);

/// Sets one value in all of them, as one step for undo; entities on locked layers are left out with
/// a message. The sentence says what the value may be.
ACADHOST_EXPORT Status changeValue(HostApp& app, const EntityIds& ids, const std::string& name,
                                   const std::string& value);

/// Names to choose from for a kind: layers, colours, line types of the current drawing.
ACADHOST_EXPORT std::vector<std::string> choicesFor(HostApp& app, ValueKind kind);

}  // namespace tarn::host
