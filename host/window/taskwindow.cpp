#include "host/window/taskwindow.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "base/path.h"
#include "host/window/progresspart.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kWidth = 780, kHeight = 460, kNameWidth = 240, kStateWidth = 90;
enum Column { kName, kState, kText };

struct Look {
  const char* word;
  QRgb onDark;
  QRgb onLight;
};

Look lookOf(TarnTaskState state) {
  switch (state) {
    case TarnTaskState::kRunning:
      return {toSay("running"), 0xff6cb2ea, 0xff1a5f9e};
    case TarnTaskState::kDone:
      return {toSay("done"), 0xff7dc87d, 0xff2b7a2b};
    case TarnTaskState::kSkipped:
      return {toSay("skipped"), 0xffd8c070, 0xff7a6000};
    case TarnTaskState::kFailed:
      return {toSay("failed"), 0xfff08078, 0xffb3261e};
    default:
      return {toSay("waiting"), 0xff9aa2ac, 0xff5a6068};
  }
}

}  // namespace

TaskWindow::TaskWindow(QWidget* parent, const std::string& title,
                       const std::vector<std::string>& tasks, std::function<void()> cancel)
    : QDialog(parent),
      cancel_(std::move(cancel)),
      list_(new QTreeWidget),
      part_(new ProgressPart),
      report_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Cancel)) {
  setObjectName("taskWindow");
  setWindowTitle(QString::fromStdString(title));
  list_->setObjectName("tasks");
  list_->setHeaderLabels({words("File"), words("State"), words("Remarks")});
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAlternatingRowColors(true);
  list_->setSelectionMode(QAbstractItemView::NoSelection);
  list_->header()->resizeSection(kName, kNameWidth);
  list_->header()->resizeSection(kState, kStateWidth);
  for (const std::string& task : tasks) {
    auto* row = new QTreeWidgetItem(list_, {QString::fromStdString(nameOf(task))});
    row->setToolTip(kName, QString::fromStdString(task));
  }
  for (size_t i = 0; i < tasks.size(); ++i) setTask(i, TarnTaskState::kWaiting, "");
  report_->setObjectName("report");
  report_->setWordWrap(true);
  report_->setTextFormat(Qt::PlainText);
  report_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  report_->hide();
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(list_, 1);
  layout->addWidget(part_);
  layout->addWidget(report_);
  layout->addWidget(buttons_);
  resize(kWidth, kHeight);
}

void TaskWindow::setTask(size_t task, TarnTaskState state, const std::string& text) {
  QTreeWidgetItem* row = list_->topLevelItem(static_cast<int>(task));
  if (row == nullptr) return;
  const Look look = lookOf(state);
  row->setText(kState, words(look.word));
  const bool isDark = palette().color(QPalette::Base).lightness() < 128;
  row->setForeground(kState, QColor(isDark ? look.onDark : look.onLight));
  row->setText(kText, QString::fromStdString(text));
  row->setToolTip(kText, QString::fromStdString(text));
  if (state != TarnTaskState::kWaiting) list_->scrollToItem(row);
}

void TaskWindow::end(const std::string& report) {
  ended_ = true;
  part_->hide();
  report_->setText(QString::fromStdString(report));
  report_->show();
  buttons_->setStandardButtons(QDialogButtonBox::Close);
  buttons_->button(QDialogButtonBox::Close)->setDefault(true);
}

void TaskWindow::reject() {
  if (ended_) return QDialog::reject();
  cancel_();
}

}  // namespace tarn::host
