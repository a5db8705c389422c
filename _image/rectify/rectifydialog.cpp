// The dialog's life, its connections, and which widgets a mode enables.
#include "_image/rectify/rectifydialog.h"

#include <QApplication>
#include <QHeaderView>
#include <QLayout>
#include <QLineEdit>
#include <QScreen>
#include <QWindow>

#include <utility>

#include "_image/rectify/fadebar.h"
#include "_image/rectify/modekeys.h"
#include "_image/rectify/pointrecovery.h"
#include "commoncode/fitreport/fitreport.h"
#include "ui_rectifydialog.h"

using tarn::image::DrawingWatch;
using tarn::image::RectifySession;

namespace {

rectifyDialog* g_dialog = nullptr;

/// Size at the start where the screen has room for it.
constexpr int kWidth = 1160;
constexpr int kHeight = 620;
constexpr int kFrame = 50;  ///< of a window's frame and title

QSize roomOnScreen() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen ? screen->availableSize() - QSize(kFrame / 2, kFrame) : QSize(kWidth, kHeight);
}

/// The host's window, for the one that stands before it.
QWindow* windowOfHost(const QWidget* except) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget != except && widget->isVisible() && widget->inherits("QMainWindow")) {
      return widget->windowHandle();
    }
  }
  return nullptr;
}

bool isModeButton(const QWidget* widget) {
  return widget->inherits("QRadioButton");
}

}  // namespace

rectifyDialog* rectifyDialog::instance() {
  return g_dialog;
}

rectifyDialog* rectifyDialog::request() {
  if (!g_dialog) g_dialog = new rectifyDialog();
  return g_dialog;
}

rectifyDialog::rectifyDialog() : m_form(std::make_unique<Ui::rectifyDialog>()) {
  m_form->setupUi(this);
  nameOwnWidgets();
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_QuitOnClose, false);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  QHeaderView& header = *m_form->pointsTable->horizontalHeader();
  header.setSectionResizeMode(QHeaderView::Stretch);
  // Numbers and residuals are short; coordinates are seen whole in the room that they leave.
  header.setSectionResizeMode(0, QHeaderView::ResizeToContents);
  header.setSectionResizeMode(m_form->pointsTable->columnCount() - 1,
                              QHeaderView::ResizeToContents);
  // It only shows the mode.
  m_form->_is_rectify->setAttribute(Qt::WA_TransparentForMouseEvents);
  m_form->_is_rectify->setFocusPolicy(Qt::NoFocus);
  m_form->pointsTable->setTabKeyNavigation(false);
  resize(sizeHint().expandedTo(QSize(kWidth, kHeight)).boundedTo(roomOnScreen()));
  connectWidgets();
  selectFirstMode();
}

rectifyDialog::~rectifyDialog() {
  if (g_dialog == this) g_dialog = nullptr;
  m_watch.reset();
  ClearPointPair();
}

void rectifyDialog::connectWidgets() {
  connect(m_form->rectifyMethod, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
          &rectifyDialog::methodChangeSlot);
  connect(m_form->_contrl_point_input_button, &QPushButton::clicked, this,
          &rectifyDialog::on_input_ponits_clicked);
  connect(m_form->_out_rectify_image, &QPushButton::clicked, this,
          &rectifyDialog::on_out_rectify_image_clicked);
  connect(m_form->pointsTable, &QTableWidget::itemDoubleClicked, this,
          &rectifyDialog::on_table_item_double_clicked);
  const std::vector<QAbstractButton*> modes = {
      m_form->radioButton_by_control_point, m_form->radioButton_moveImgage,
      m_form->radioButton_zoom_image, m_form->radioButton_rotate_image, m_form->radioButton_mirror};
  for (QAbstractButton* mode : modes) {
    connect(mode, &QAbstractButton::toggled, this, &rectifyDialog::handleRadioButtonToggle);
  }
  new tarn::image::ModeKeys(modes, this);
  connect(m_form->pushButton_get_zoom_point, &QPushButton::clicked, this,
          &rectifyDialog::on_pushButton_PickZoomPoint_clicked);
  connect(m_form->pushButton_MovePoint, &QPushButton::clicked, this,
          &rectifyDialog::on_pushButton_choose_MovePoint);
  connect(m_form->pushButton_pick_rotate_point, &QPushButton::clicked, this,
          &rectifyDialog::on_pushButton_choose_rotate_point);
  connect(m_form->selMirrorLine, &QPushButton::clicked, this,
          &rectifyDialog::on_pushButton_choose_mirror_point);
  connect(m_form->fadeBar, &tarn::image::FadeBar::opacityChanged, this, [this](double opacity) {
    if (m_session) m_session->fade(opacity);
  });
  connect(m_form->fadeBar, &tarn::image::FadeBar::comparing, this, &rectifyDialog::setComparing);
  connect(m_form->checkPoint, &QPushButton::clicked, this, &rectifyDialog::toggleCheckPoint);
  connect(m_form->undoTable, &QPushButton::clicked, this, [this] { stepRows(true); });
  connect(m_form->redoTable, &QPushButton::clicked, this, [this] { stepRows(false); });
  connect(m_form->repairPoints, &QPushButton::clicked, this, &rectifyDialog::repairPoints);
  connect(m_form->writeReport, &QPushButton::clicked, this, &rectifyDialog::writeReport);
  connect(m_form->drawArrows, &QPushButton::clicked, this, &rectifyDialog::drawResidualArrows);
  connect(m_form->eraseArrows, &QPushButton::clicked, this, &rectifyDialog::eraseResidualArrows);
  connect(m_form->recoverPoints, &QPushButton::clicked, this, &rectifyDialog::recoverRows);
}

void rectifyDialog::selectFirstMode() {
  m_form->radioButton_by_control_point->setChecked(true);
  handleRadioButtonToggle(true);
}

void rectifyDialog::setImage(std::unique_ptr<RectifySession> session) {
  m_watch.reset();
  ClearPointPair();
  if (m_session) takePreviewBack();
  m_session = std::move(session);
  m_session->fade(m_form->fadeBar->opacity());
  previewChanged();
  m_watch = std::make_unique<DrawingWatch>(
      m_session->document(),
      DrawingWatch::Hooks{[this] { m_markers.repaint(); }, [this] { delete this; }});
  m_form->pointsTable->setRowCount(0);
  m_zoomPoint = m_rotatePoint = std::nullopt;
  m_mirrorLine[0] = m_mirrorLine[1] = std::nullopt;
  const tarn::image::PointRecord earlier = m_session->earlierPoints();
  if (earlier.method >= 0) {
    for (const tarn::image::ControlPoint& point : earlier.points) {
      if (!tarn::image::holdsPair(tableRows(), point)) appendRow(point, false);
    }
    m_form->rectifyMethod->setCurrentIndex(earlier.method);
    m_form->_is_rectify->setChecked(true);
  }
  m_history.clear();
  m_form->undoTable->setEnabled(false);
  m_form->redoTable->setEnabled(false);
  offerRecovery();
  forgetQuality();
  arrowsChanged();
}

void rectifyDialog::showModal(bool isModal) {
  setModal(isModal);
  winId();
  if (QWindow* host = windowOfHost(this)) windowHandle()->setTransientParent(host);
  show();
  raise();
  activateWindow();
}

// Closing keeps what was applied; only a preview goes.
void rectifyDialog::reject() {
  if (m_session) {
    takePreviewBack();
    tarn::image::keepForRecovery(m_session->path(), {});
  }
  QDialog::reject();
}

void rectifyDialog::on_abort_clicked() {
  if (m_session) m_session->component().setRectifyMethod(-1);
  hide();
  if (m_session) m_session->cancel();
  Regen_Image();
  // Hidden windows are not closed by close(): the end of the dialog deletes it.
  reject();
}

bool rectifyDialog::layoutContainsWidget(QLayout* layout, QWidget* widget, QLayout*& parentLayout) {
  for (int i = 0; i < layout->count(); ++i) {
    QLayoutItem* item = layout->itemAt(i);
    if (item->widget() == widget) {
      parentLayout = layout;
      return true;
    }
    if (item->layout() && layoutContainsWidget(item->layout(), widget, parentLayout)) return true;
  }
  return false;
}

QLayout* rectifyDialog::findInnermostLayout(QLayout* layout, QWidget* widget) {
  QLayout* found = nullptr;
  return layoutContainsWidget(layout, widget, found) ? found : nullptr;
}

void rectifyDialog::setAllWidgetsEnabled(QWidget* widget, bool enabled) {
  if (!isModeButton(widget)) widget->setEnabled(enabled);
  for (QObject* child : widget->children()) {
    if (auto* layout = qobject_cast<QLayout*>(child)) {
      setLayoutAllWidgetsEnabled(layout, enabled);
    } else if (auto* inner = qobject_cast<QWidget*>(child)) {
      if (!inner->isWindow()) setAllWidgetsEnabled(inner, enabled);
    }
  }
}

void rectifyDialog::setLayoutAllWidgetsEnabled(QLayout* layout, bool enabled) {
  for (int i = 0; i < layout->count(); ++i) {
    QLayoutItem* item = layout->itemAt(i);
    if (item->widget()) setAllWidgetsEnabled(item->widget(), enabled);
    if (item->layout()) setLayoutAllWidgetsEnabled(item->layout(), enabled);
  }
}

void rectifyDialog::handleRadioButtonToggle(bool checked) {
  if (!checked) return;
  QRadioButton* const modes[] = {m_form->radioButton_by_control_point,
                                 m_form->radioButton_moveImgage, m_form->radioButton_zoom_image,
                                 m_form->radioButton_rotate_image, m_form->radioButton_mirror};
  auto* chosen = qobject_cast<QRadioButton*>(sender());
  if (!chosen) chosen = m_form->radioButton_by_control_point;
  m_form->_is_rectify->setChecked(chosen == m_form->radioButton_by_control_point);
  for (QRadioButton* mode : modes) {
    if (QLayout* of = findInnermostLayout(layout(), mode)) {
      setLayoutAllWidgetsEnabled(of, mode == chosen);
    }
  }
}

void rectifyDialog::methodChangeSlot() {}
