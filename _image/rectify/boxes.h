// The dialog's message boxes: windows, or lines and answers on the command line while the host asks
// for everything there (system variable FILEDIA 0).
#pragma once

#include <QString>

class QWidget;

namespace tarn::image {

void informationBox(QWidget* parent, const QString& title, const QString& text);
void warningBox(QWidget* parent, const QString& title, const QString& text);
/// True for yes.
bool questionBox(QWidget* parent, const QString& title, const QString& text);
/// Without a title, one button.
void plainBox(const QString& text);

}  // namespace tarn::image
