// Colours of the window: dark and calm, so that the drawing is what one sees.
#pragma once

class QApplication;

namespace tarn::host {

/// Style and palette of the whole program.
void applyAppearance(QApplication& application);

}  // namespace tarn::host
