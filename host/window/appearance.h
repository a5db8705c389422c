// Colours of the window, so that the drawing is what one sees.
#pragma once

#include <QPalette>

class QApplication;

namespace tarn::host {

enum class Appearance { kSystem, kDark, kLight };

/// Style and palette of the whole program; may be called again with another choice.
void applyAppearance(QApplication& application, Appearance appearance = Appearance::kDark);

/// The colours of one choice (kSystem: light).
QPalette paletteOf(Appearance appearance);

/// Of texts that say what is wrong.
QColor warningOn(const QPalette& palette);

/// How well two colours can be told apart, 1 to 21 (WCAG 2.1, contrast ratio).
double contrast(const QColor& a, const QColor& b);

}  // namespace tarn::host
