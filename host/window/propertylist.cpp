#include "host/window/propertylist.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "host/window/tableitem.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kKindRole = Qt::UserRole;

/// A list for what can be chosen, a line for the rest.
class ValueDelegate final : public QStyledItemDelegate {
 public:
  ValueDelegate(QObject* parent, std::function<std::vector<std::string>(ValueKind)> choices)
      : QStyledItemDelegate(parent), choices_(std::move(choices)) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    const auto kind = static_cast<ValueKind>(index.data(kKindRole).toInt());
    const std::vector<std::string> choices = choices_(kind);
    if (choices.empty()) return QStyledItemDelegate::createEditor(parent, option, index);
    auto* box = new QComboBox(parent);
    box->setEditable(kind == ValueKind::kColor);
    for (const std::string& choice : choices) box->addItem(QString::fromStdString(choice));
    auto* self = const_cast<ValueDelegate*>(this);
    QObject::connect(box, QOverload<int>::of(&QComboBox::activated), self, [self, box] {
      emit self->commitData(box);
      emit self->closeEditor(box);
    });
    return box;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    auto* box = qobject_cast<QComboBox*>(editor);
    if (box == nullptr) return QStyledItemDelegate::setEditorData(editor, index);
    box->setCurrentText(index.data(Qt::EditRole).toString());
  }
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override {
    const auto* box = qobject_cast<QComboBox*>(editor);
    if (box == nullptr) return QStyledItemDelegate::setModelData(editor, model, index);
    model->setData(index, box->currentText());
  }

 private:
  std::function<std::vector<std::string>(ValueKind)> choices_;
};

bool same(const EntityValue& a, const EntityValue& b) {
  return std::string_view(a.name) == b.name && a.value == b.value && a.kind == b.kind &&
         a.differs == b.differs;
}

}  // namespace

PropertyList::PropertyList(QWidget* parent, Hooks hooks)
    : QDockWidget(parent), hooks_(std::move(hooks)), head_(new QLabel), table_(new QTableWidget) {
  setObjectName("properties");
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 4, 0, 0);
  head_->setContentsMargins(6, 0, 6, 0);
  head_->setWordWrap(true);
  column->addWidget(head_);
  column->addWidget(table_, 1);
  setWidget(content);
  table_->setColumnCount(2);
  table_->setFrameShape(QFrame::NoFrame);
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->setTabKeyNavigation(false);
  table_->setEditTriggers(QAbstractItemView::AllEditTriggers);
  table_->setItemDelegateForColumn(1, new ValueDelegate(table_, hooks_.choices));
  QObject::connect(table_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
    if (filling_ || item->column() != 1) return;
    const EntityValue& value = values_[static_cast<size_t>(item->row())];
    const std::string text = item->text().trimmed().toStdString();
    if (text != value.value && !text.empty()) hooks_.changed(value.name, text);
  });
  speakAgain();
}

void PropertyList::speakAgain() {
  setWindowTitle(words("Properties"));
  table_->setAccessibleName(words("Properties"));
  table_->setHorizontalHeaderLabels({words("Name"), words("Value")});
  fill();
}

void PropertyList::show(size_t count, std::vector<EntityValue> values) {
  if (count == count_ &&
      std::equal(values.begin(), values.end(), values_.begin(), values_.end(), same)) {
    return;
  }
  count_ = count;
  values_ = std::move(values);
  fill();
}

void PropertyList::fill() {
  filling_ = true;
  head_->setText(count_ == 0   ? words("Nothing is chosen: click entities in the drawing.")
                 : count_ == 1 ? words("1 entity")
                               : words("%1 entities").arg(count_) +
                                     (values_.empty() ? words(", too many to list values") : ""));
  table_->setRowCount(static_cast<int>(values_.size()));
  for (int row = 0; row < table_->rowCount(); ++row) {
    const EntityValue& value = values_[static_cast<size_t>(row)];
    QTableWidgetItem* name = itemAt(*table_, row, 0);
    name->setText(words(value.name));
    name->setFlags(Qt::ItemIsEnabled);
    QTableWidgetItem* item = itemAt(*table_, row, 1);
    item->setText(QString::fromStdString(value.value));
    item->setToolTip(value.differs ? words("They differ") : QString());
    const bool editable = value.kind != ValueKind::kShown;
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable |
                   (editable ? Qt::ItemIsEditable : Qt::NoItemFlags));
    item->setData(kKindRole, static_cast<int>(value.kind));
  }
  filling_ = false;
}

}  // namespace tarn::host
