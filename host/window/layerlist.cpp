#include "host/window/layerlist.h"

#include <QAction>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "host/graphics/color.h"
#include "host/window/icons.h"
#include "host/window/tableitem.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kWidth = 340;  // names of a dozen letters are read whole

enum Column { kCurrent, kName, kOn, kThawed, kLock, kColor, kColumns };

bool same(const LayerEntry& a, const LayerEntry& b) {
  return a.id == b.id && a.name == b.name && a.color == b.color && a.isOff == b.isOff &&
         a.isFrozen == b.isFrozen && a.isLocked == b.isLocked && a.isCurrent == b.isCurrent;
}

QIcon colorIcon(unsigned color, const QPalette& palette) {
  constexpr int kSide = 32;
  QPixmap pixmap(kSide, kSide);
  pixmap.fill(QColor(colorOfIndex(color, palette.color(QPalette::Base).rgb())));
  return pixmap;
}

QString colorText(unsigned color) {
  if (color <= 255) return QString::number(color);
  return QColor(color & 0xffffff).name();
}

}  // namespace

LayerList::LayerList(QWidget* parent, Hooks hooks)
    : QDockWidget(parent),
      hooks_(std::move(hooks)),
      table_(new QTableWidget),
      tools_(new QToolBar) {
  setObjectName("layers");
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(tools_);
  column->addWidget(table_);
  setWidget(content);
  table_->setColumnCount(kColumns);
  table_->setMinimumWidth(kWidth);
  table_->setFrameShape(QFrame::NoFrame);
  table_->setShowGrid(false);
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->horizontalHeader()->setSectionResizeMode(kName, QHeaderView::Stretch);
  table_->horizontalHeader()->setMinimumSectionSize(24);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::DoubleClicked);
  table_->setTabKeyNavigation(false);
  table_->installEventFilter(this);
  QObject::connect(table_, &QTableWidget::cellClicked, this,
                   [this](int row, int at) { act(row, at); });
  QObject::connect(table_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
    if (filling_ || item->column() != kName) return;
    const LayerEntry layer = layers_[static_cast<size_t>(item->row())];
    const std::string name = item->text().trimmed().toStdString();
    fillRow(item->row());
    if (name != layer.name) hooks_.rename(layer.id, name);
  });
  speakAgain();
}

void LayerList::speakAgain() {
  setWindowTitle(words("Layers"));
  table_->setAccessibleName(words("Layers"));
  table_->setHorizontalHeaderLabels(
      {"", words("Name"), words("On"), words("Thawed"), words("Free"), words("Colour")});
  tools_->clear();
  const QColor ink = palette().color(QPalette::ButtonText);
  const auto add = [&](const char* icon, const char* text, const std::function<void()>& act) {
    QObject::connect(tools_->addAction(makeIcon(icon, ink), words(text)), &QAction::triggered, this,
                     act);
  };
  const auto onSelected = [this](const std::function<void(AcDbObjectId)>& act) {
    return [this, act] {
      if (const LayerEntry* layer = selected()) act(layer->id);
    };
  };
  add("plus", toSay("New layer"), hooks_.add);
  add("rename", toSay("Rename"), [this] {
    if (selected() != nullptr) table_->editItem(table_->item(table_->currentRow(), kName));
  });
  add("trash", toSay("Delete"), onSelected(hooks_.remove));
  add("current", toSay("Make current"), onSelected(hooks_.makeCurrent));
  for (int row = 0; row < table_->rowCount(); ++row) fillRow(row);
}

const LayerEntry* LayerList::selected() const {
  const int row = table_->currentRow();
  return row >= 0 && static_cast<size_t>(row) < layers_.size() ? &layers_[static_cast<size_t>(row)]
                                                               : nullptr;
}

void LayerList::show(std::vector<LayerEntry> layers) {
  if (std::equal(layers.begin(), layers.end(), layers_.begin(), layers_.end(), same)) return;
  // A name that is being typed stays; the next call brings the rest.
  if (table_->viewport()->findChild<QLineEdit*>() != nullptr) return;
  layers_ = std::move(layers);
  table_->setRowCount(static_cast<int>(layers_.size()));
  for (int row = 0; row < table_->rowCount(); ++row) fillRow(row);
}

void LayerList::fillRow(int row) {
  filling_ = true;
  const LayerEntry& layer = layers_[static_cast<size_t>(row)];
  const QColor ink = palette().color(QPalette::Text);
  const QColor faint = palette().color(QPalette::Disabled, QPalette::Text);
  const auto set = [&](int column, const QIcon& icon, const QString& text, const QString& spoken) {
    QTableWidgetItem* item = itemAt(*table_, row, column);
    item->setIcon(icon);
    item->setText(text);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled |
                   (column == kName ? Qt::ItemIsEditable : Qt::NoItemFlags));
    item->setToolTip(spoken);
    item->setData(Qt::AccessibleTextRole, spoken);
  };
  const auto icon = [&](const char* yes, const char* no, bool is) {
    return makeIcon(is ? yes : no, is ? ink : faint);
  };
  const QString name = QString::fromStdString(layer.name);
  set(kCurrent, layer.isCurrent ? makeIcon("current", ink) : QIcon(), "",
      layer.isCurrent ? words("Current layer") : words("Click: make it the current one"));
  set(kName, {}, name, name);
  set(kOn, icon("eye", "eyeoff", !layer.isOff), "", layer.isOff ? words("Off") : words("On"));
  set(kThawed, icon("sun", "frozen", !layer.isFrozen), "",
      layer.isFrozen ? words("Frozen") : words("Thawed"));
  set(kLock, icon("unlocked", "locked", !layer.isLocked), "",
      layer.isLocked ? words("Locked") : words("Free"));
  set(kColor, colorIcon(layer.color, palette()), colorText(layer.color), words("Colour"));
  filling_ = false;
}

void LayerList::act(int row, int column) {
  if (row < 0 || static_cast<size_t>(row) >= layers_.size()) return;
  const LayerEntry layer = layers_[static_cast<size_t>(row)];
  switch (column) {
    case kCurrent:
      return hooks_.makeCurrent(layer.id);
    case kOn:
      return hooks_.change(layer.id, LayerSwitch::kOff, !layer.isOff);
    case kThawed:
      return hooks_.change(layer.id, LayerSwitch::kFrozen, !layer.isFrozen);
    case kLock:
      return hooks_.change(layer.id, LayerSwitch::kLocked, !layer.isLocked);
    case kColor:
      return chooseColor(row);
    default:
      return;
  }
}

void LayerList::chooseColor(int row) {
  const AcDbObjectId id = layers_[static_cast<size_t>(row)].id;
  static constexpr const char* kNames[] = {
      toSay("Red"),     toSay("Yellow"),         toSay("Green"), toSay("Cyan"),      toSay("Blue"),
      toSay("Magenta"), toSay("Black or white"), toSay("Gray"),  toSay("Light gray")};
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  int number = 0;
  for (const char* name : kNames) {
    ++number;
    const QIcon icon = colorIcon(static_cast<unsigned>(number), palette());
    QObject::connect(menu->addAction(icon, QString::number(number) + "  " + words(name)),
                     &QAction::triggered, this, [this, id, number] { hooks_.color(id, number); });
  }
  menu->addSeparator();
  QObject::connect(menu->addAction(words("By number...")), &QAction::triggered, this, [this, id] {
    bool taken = false;
    const int chosen = QInputDialog::getInt(this, words("Colour"), words("Colour, 1 to 255:"), 7, 1,
                                            255, 1, &taken);
    if (taken) hooks_.color(id, chosen);
  });
  menu->popup(table_->viewport()->mapToGlobal(
      table_->visualItemRect(table_->item(row, kColor)).bottomLeft()));
}

/// Blank and Enter do what a click on the cell does; on a name Enter edits it.
bool LayerList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QDockWidget::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  const bool enters = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (!enters && key != Qt::Key_Space) return false;
  if (enters && table_->currentColumn() == kName) {
    table_->editItem(table_->currentItem());
  } else {
    act(table_->currentRow(), table_->currentColumn());
  }
  return true;
}

}  // namespace tarn::host
