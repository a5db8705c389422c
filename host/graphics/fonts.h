// Which installed fonts stand in for the ones that drawings name.
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

#include "adesk.h"

namespace tarn::host {

/// The families for texts without a font of their own, and for letters that a font does not have:
/// Chinese first, since Latin letters are in those fonts too.
ACADHOST_EXPORT const QStringList& usualFamilies();

/// A font for what a text style says ("txt.shx", "arial.ttf", "Times New Roman|b1"): the family
/// when it is installed, one of the same kind for common names, else the usual families; a file of
/// strokes has those always.
QFont fontNamed(const QString& name, const QStringList& usual);

}  // namespace tarn::host
