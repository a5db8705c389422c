// Icons of menus and tool bars.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace tarn::host {

/// The drawing of that name in host/window/icons, in one colour and sharp at every size; an empty
/// icon when there is none.
QIcon makeIcon(const QString& name, const QColor& color);

}  // namespace tarn::host
