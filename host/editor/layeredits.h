// Layers of a drawing as values, and changes of them. Each change is one step for undo.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adesk.h"
#include "base/result.h"
#include "dbid.h"

class AcDbDatabase;
class AcDbLayerTableRecord;

namespace tarn::host {

class HostApp;

struct LayerEntry {
  AcDbObjectId id;
  std::string name;
  unsigned color = 7;  ///< as in LineItem
  bool isOff = false;
  bool isFrozen = false;
  bool isLocked = false;
  bool isCurrent = false;
};

/// In the order of the table.
ACADHOST_EXPORT std::vector<LayerEntry> layersOf(AcDbDatabase& drawing);

/// The layer of the name, made when there is none. The sentence says which letters a name must not
/// have.
ACADHOST_EXPORT Result<AcDbObjectId> makeLayer(AcDbDatabase& drawing, const std::string& name);

// ---- In the current drawing ------------------------------------------------------------------
/// A new layer with a name that is free: "Layer1", "Layer2" ...
ACADHOST_EXPORT Result<AcDbObjectId> addLayer(HostApp& app);
/// What is on the layer stays on it. Layer "0" keeps its name.
ACADHOST_EXPORT Status renameLayer(HostApp& app, AcDbObjectId layer, const std::string& name);
/// Refused for layer "0", the current one, and one that anything of the drawing is on.
ACADHOST_EXPORT Status deleteLayer(HostApp& app, AcDbObjectId layer);
/// A frozen layer cannot be the current one.
ACADHOST_EXPORT Status setCurrentLayer(HostApp& app, AcDbObjectId layer);

enum class LayerSwitch { kOff, kFrozen, kLocked };
/// The current layer cannot be frozen.
ACADHOST_EXPORT Status switchLayer(HostApp& app, AcDbObjectId layer, LayerSwitch what, bool on);
/// 1 to 255.
ACADHOST_EXPORT Status colorLayer(HostApp& app, AcDbObjectId layer, int color);

}  // namespace tarn::host
