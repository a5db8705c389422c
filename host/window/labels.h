// Labels of forms and the fields that they speak of.
#pragma once

class QWidget;

namespace tarn::host {

/// A label beside several fields in a row stands for the first of them: its letter goes there, and
/// each of them has its name for those who hear the window. Call it when the form is complete.
void tieLabels(const QWidget& form);

}  // namespace tarn::host
