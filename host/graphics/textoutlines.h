// Outlines of texts, kept from frame to frame: shaping one costs more than painting it.
#pragma once

#include <QPainterPath>
#include <QString>
#include <QStringList>
#include <string>

#include "adesk.h"

namespace tarn::host {

/// The outline of one line of text from the left end of its base line, in units of the height of a
/// capital, y down, and how far the next letter would stand to the right. `font` is what the
/// drawing names; `usual` are the families for what it has not got.
struct TextOutline {
  QPainterPath path;
  double width = 0;
};
const TextOutline& textOutline(const QString& font, const QStringList& usual, const QString& text);

/// The width of a text in heights of a capital, by the fonts of the screen; an estimate in a
/// program that has none.
ACADHOST_EXPORT double measuredTextWidth(const std::wstring& text, const std::wstring& font);

}  // namespace tarn::host
