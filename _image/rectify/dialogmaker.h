// The module's rectification dialog for the framework, while the module is loaded.
#pragma once

namespace tarn::image {

/// From now on components that are to be shown get the module's dialog.
void registerDialogMaker();
/// Closes an open dialog and takes the registration out again.
void removeDialogMaker();

}  // namespace tarn::image
