#include "host/window/suggestions.h"

#include <QScrollBar>

#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kMostRows = 10;

}  // namespace

Suggestions::Suggestions(QWidget* window, std::function<void(const QString&)> chosen)
    : QListWidget(window) {
  setObjectName("suggestions");
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setUniformItemSizes(true);
  hide();
  QObject::connect(this, &QListWidget::itemClicked, this,
                   [this, take = std::move(chosen)](QListWidgetItem* item) {
                     const QString command = item->data(Qt::UserRole).toString();
                     hide();
                     take(command);
                   });
}

void Suggestions::offer(const std::vector<Suggestion>& all, const QWidget& line) {
  clear();
  setAccessibleName(words("Commands that begin so"));
  for (const Suggestion& one : all) {
    const QString command = QString::fromStdString(one.command);
    QString text =
        one.alias.empty() ? command : QString::fromStdString(one.alias) + "   " + command;
    if (!one.meaning.empty()) text += "  –  " + QString::fromStdString(one.meaning);
    auto* item = new QListWidgetItem(text, this);
    item->setData(Qt::UserRole, command);
  }
  if (all.empty()) return hide();
  const int rows = qMin(count(), kMostRows);
  const int width =
      sizeHintForColumn(0) + 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
  resize(qBound(160, width, qMax(160, line.width())), rows * sizeHintForRow(0) + 2 * frameWidth());
  const QPoint foot = line.mapTo(parentWidget(), QPoint(0, 0));
  move(foot.x(), qMax(0, foot.y() - height()));
  setCurrentRow(-1);
  raise();
  show();
}

QString Suggestions::step(int by) {
  if (count() == 0) return {};
  const int from = currentRow() < 0 && by < 0 ? 0 : currentRow();
  setCurrentRow((from + by + count()) % count());
  return currentItem()->data(Qt::UserRole).toString();
}

}  // namespace tarn::host
