#include "host/window/labels.h"

#include <QAbstractButton>
#include <QLabel>
#include <utility>

namespace tarn::host {

namespace {

bool takesFocus(const QWidget& widget) {
  return (widget.focusPolicy() & Qt::TabFocus) != 0;
}

}  // namespace

void tieLabels(const QWidget& form) {
  for (QLabel* label : form.findChildren<QLabel*>()) {
    QWidget* row = label->buddy();
    if (row == nullptr || takesFocus(*row)) continue;
    const QString name = label->text().remove('&');
    bool isFirst = true;
    for (QWidget* field : row->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (!takesFocus(*field)) continue;
      if (std::exchange(isFirst, false)) label->setBuddy(field);
      const bool saysItself = qobject_cast<QAbstractButton*>(field) != nullptr;
      if (!saysItself && field->accessibleName().isEmpty()) field->setAccessibleName(name);
    }
  }
}

}  // namespace tarn::host
