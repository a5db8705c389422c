// Outlines of texts, kept from frame to frame: shaping one costs more than painting it.
#pragma once

#include <QPainterPath>
#include <QString>
#include <QStringList>

namespace tarn::host {

/// The outline of one line of text from the left end of its base line, in units of the height of a
/// capital, y down. The families are tried in order.
QPainterPath textOutline(const QStringList& families, const QString& text);

}  // namespace tarn::host
