// Opening and saving drawings in the editor.
#pragma once

#include <string>

#include "adesk.h"
#include "base/result.h"
#include "host/filing/drawingfile.h"

namespace tarn::host {

class HostApp;
class HostDocument;
struct LostDrawing;

/// Opens a drawing and makes it current with the view that it was saved with; one that is open is
/// only made current. Prints what was found in it.
ACADHOST_EXPORT Status openDrawing(HostApp& app, const std::string& path);

/// A copy that an earlier session has left, as the drawing that it was; with changes that are not
/// saved.
Result<HostDocument*> recoverDrawing(HostApp& app, const LostDrawing& lost);

/// The views and limits that go into the file.
OpeningState stateToSave(const HostDocument& document);

/// Saves into a file, which becomes the drawing's own; what stood there is kept as a backup. Asks
/// before a file is replaced that another program has written since.
ACADHOST_EXPORT Status saveDrawingAs(HostApp& app, HostDocument& document, const std::string& path);

}  // namespace tarn::host
