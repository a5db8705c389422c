// Seeing a preview: how much of it, and without the dialog in the way.
#include <QBoxLayout>
#include <QKeyEvent>

#include "_image/rectify/fadebar.h"
#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

namespace {

constexpr int kFoldedWidth = 560;

}  // namespace

void rectifyDialog::previewChanged() {
  m_form->fadeBar->setActive(m_session && m_session->isPreviewed());
}

void rectifyDialog::takePreviewBack() {
  if (!m_session->endPreview()) return;
  previewChanged();
  Regen_Image();
}

void rectifyDialog::setComparing(bool isOn) {
  if (isOn == !m_folded.empty()) return;
  if (isOn) {
    m_unfolded = geometry();
    for (QWidget* widget : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (widget == m_form->fadeBar || widget->isWindow() || widget->isHidden()) continue;
      m_folded.push_back(widget);
      widget->hide();
    }
    m_form->fadeBar->setFocus();
    layout()->activate();
    resize(kFoldedWidth, minimumSizeHint().height());
    return;
  }
  for (QWidget* widget : m_folded) widget->show();
  m_folded.clear();
  setGeometry(m_unfolded);
}

void rectifyDialog::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && !m_folded.empty()) return m_form->fadeBar->endComparing();
  QDialog::keyPressEvent(event);
}
