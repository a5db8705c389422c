#include "host/window/icons.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

static void loadDrawings() {
  Q_INIT_RESOURCE(icons);
}

namespace tarn::host {

QIcon makeIcon(const QString& name, const QColor& color) {
  loadDrawings();
  QFile file(":/icons/" + name);
  if (!file.open(QIODevice::ReadOnly)) return {};
  QSvgRenderer drawing(file.readAll().replace("currentColor", color.name().toLatin1()));
  if (!drawing.isValid()) return {};
  QIcon icon;
  for (const int side : {16, 20, 24, 32, 48, 64, 96}) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace tarn::host
