#include "host/window/formdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>
#include <utility>

#include "base/text.h"
#include "host/window/appearance.h"
#include "host/window/filefilters.h"
#include "host/window/hostwords.h"
#include "host/window/labels.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

using Kind = TarnFormField::Kind;

constexpr int kWidth = 620, kListHeight = 150;

QString qt(const std::string& text) {
  return QString::fromStdString(text);
}

/// A path is in the list once.
void addPath(QListWidget& list, const QString& path) {
  if (!path.isEmpty() && list.findItems(path, Qt::MatchExactly).isEmpty()) list.addItem(path);
}

QFormLayout* newRows() {
  auto* rows = new QFormLayout;
  rows->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  return rows;
}

/// Buttons beside a list, none of them that of Enter.
QVBoxLayout* buttonColumn(std::initializer_list<QPushButton*> buttons) {
  auto* column = new QVBoxLayout;
  for (QPushButton* button : buttons) {
    button->setAutoDefault(false);
    column->addWidget(button);
  }
  column->addStretch(1);
  return column;
}

/// What the label says is also the field's name for those who hear it.
void addBeside(QVBoxLayout& column, const TarnFormField& field, QWidget& list, QLayout* beside) {
  auto* label = new QLabel(hostWords(field.label));
  label->setBuddy(&list);
  list.setAccessibleName(label->text());
  column.addWidget(label);
  column.addLayout(beside, 1);
}

}  // namespace

FormDialog::FormDialog(QWidget* parent, TarnForm& form)
    : QDialog(parent), form_(form), reason_(new QLabel) {
  setObjectName("form");
  setWindowTitle(hostWords(form.title));
  auto* column = new QVBoxLayout(this);
  QFormLayout* rows = newRows();
  for (const TarnFormField& field : form.fields) {
    const bool isList = field.kind == Kind::kFiles || field.kind == Kind::kTable;
    if (isList && rows->rowCount() > 0) column->addLayout(std::exchange(rows, newRows()));
    addField(field, *column, *rows);
  }
  column->addLayout(rows);
  reason_->setObjectName("reason");
  reason_->setWordWrap(true);
  reason_->setTextFormat(Qt::PlainText);
  reason_->setStyleSheet("color: " + warningOn(palette()).name());
  reason_->hide();
  column->addWidget(reason_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText(hostWords(form.accept));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  column->addWidget(buttons);
  setMinimumWidth(kWidth);
  tieLabels(*this);
}

void FormDialog::addField(const TarnFormField& field, QVBoxLayout& column, QFormLayout& rows) {
  const std::string name = "field" + std::to_string(readers_.size());
  QWidget* widget = nullptr;
  int number = 0;
  switch (field.kind) {
    case Kind::kFiles:
      return addFiles(field, column);
    case Kind::kTable:
      return addTable(field, column);
    case Kind::kFolder:
      widget = makeFolder(field);
      break;
    case Kind::kChoice: {
      auto* box = new QComboBox;
      for (const std::string& choice : field.choices) box->addItem(hostWords(choice));
      if (parseInt(field.value, number)) box->setCurrentIndex(number);
      readers_.emplace_back(
          [box](TarnFormField& f) { f.value = std::to_string(box->currentIndex()); });
      widget = box;
      break;
    }
    case Kind::kCheck: {
      auto* box = new QCheckBox(hostWords(field.label));
      box->setObjectName(qt(name));
      box->setChecked(field.value == "1");
      readers_.emplace_back([box](TarnFormField& f) { f.value = box->isChecked() ? "1" : "0"; });
      return rows.addRow(QString(), box);
    }
    case Kind::kNumber: {
      auto* box = new QSpinBox;
      box->setRange(field.least, field.most);
      if (parseInt(field.value, number)) box->setValue(number);
      readers_.emplace_back([box](TarnFormField& f) { f.value = std::to_string(box->value()); });
      widget = box;
      break;
    }
    case Kind::kText: {
      auto* line = new QLineEdit(qt(field.value));
      readers_.emplace_back([line](TarnFormField& f) { f.value = line->text().toStdString(); });
      widget = line;
      break;
    }
  }
  widget->setObjectName(qt(name));
  rows.addRow(hostWords(field.label), widget);
}

void FormDialog::addFiles(const TarnFormField& field, QVBoxLayout& column) {
  auto* list = new QListWidget;
  list->setObjectName("files");
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list->setMinimumHeight(kListHeight);
  for (const std::string& path : field.values) addPath(*list, qt(path));
  auto* files = new QPushButton(words("Add files ..."));
  auto* folder = new QPushButton(words("Add folder ..."));
  auto* remove = new QPushButton(words("Remove"));
  files->setObjectName("addFiles");
  folder->setObjectName("addFolder");
  remove->setObjectName("removeFiles");
  const QString filters = dialogFilters(field.filter).join(";;");
  connect(files, &QPushButton::clicked, this, [this, list, filters] {
    for (const QString& path : QFileDialog::getOpenFileNames(this, words("Add files"), {}, filters))
      addPath(*list, path);
  });
  connect(folder, &QPushButton::clicked, this, [this, list] {
    addPath(*list, QFileDialog::getExistingDirectory(this, words("Add folder")));
  });
  const auto removeChosen = [list] { qDeleteAll(list->selectedItems()); };
  connect(remove, &QPushButton::clicked, this, removeChosen);
  connect(new QShortcut(QKeySequence::Delete, list), &QShortcut::activated, this, removeChosen);
  auto* beside = new QHBoxLayout;
  beside->addWidget(list, 1);
  beside->addLayout(buttonColumn({files, folder, remove}));
  addBeside(column, field, *list, beside);
  readers_.emplace_back([list](TarnFormField& f) {
    f.values.clear();
    for (int i = 0; i < list->count(); ++i) f.values.push_back(list->item(i)->text().toStdString());
  });
}

void FormDialog::addTable(const TarnFormField& field, QVBoxLayout& column) {
  const int width = static_cast<int>(field.choices.size());
  auto* table = new QTableWidget(0, width);
  table->setObjectName("table");
  QStringList headings;
  for (const std::string& heading : field.choices) headings << hostWords(heading);
  table->setHorizontalHeaderLabels(headings);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table->setTabKeyNavigation(false);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setMinimumHeight(kListHeight);
  const auto addRow = [table, width] {
    table->insertRow(table->rowCount());
    for (int i = 0; i < width; ++i)
      table->setItem(table->rowCount() - 1, i, new QTableWidgetItem);  // the table's
  };
  for (int i = 0; i < static_cast<int>(field.values.size()); ++i) {
    if (i % width == 0) addRow();
    table->item(i / width, i % width)->setText(qt(field.values[static_cast<size_t>(i)]));
  }
  auto* add = new QPushButton(words("Add"));
  auto* remove = new QPushButton(words("Remove"));
  add->setObjectName("addRow");
  remove->setObjectName("removeRow");
  connect(add, &QPushButton::clicked, this, [table, addRow] {
    addRow();
    table->setCurrentCell(table->rowCount() - 1, 0);
    table->setFocus();
    table->editItem(table->currentItem());
  });
  const auto removeChosen = [table] {
    if (table->currentRow() >= 0) table->removeRow(table->currentRow());
  };
  connect(remove, &QPushButton::clicked, this, removeChosen);
  connect(new QShortcut(QKeySequence::Delete, table), &QShortcut::activated, this, removeChosen);
  auto* beside = new QHBoxLayout;
  beside->addWidget(table, 1);
  beside->addLayout(buttonColumn({add, remove}));
  addBeside(column, field, *table, beside);
  readers_.emplace_back([table, width](TarnFormField& f) {
    f.values.clear();
    for (int row = 0; row < table->rowCount(); ++row)
      for (int i = 0; i < width; ++i) f.values.push_back(table->item(row, i)->text().toStdString());
  });
}

QWidget* FormDialog::makeFolder(const TarnFormField& field) {
  auto* row = new QWidget;
  auto* line = new QLineEdit(qt(field.value));
  line->setObjectName("folder");
  line->setAccessibleName(hostWords(field.label));
  auto* browse = new QPushButton(words("Browse ..."));
  browse->setAutoDefault(false);
  connect(browse, &QPushButton::clicked, this, [this, line] {
    const QString chosen = QFileDialog::getExistingDirectory(this, words("Folder"), line->text());
    if (!chosen.isEmpty()) line->setText(chosen);
  });
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(line, 1);
  layout->addWidget(browse);
  readers_.emplace_back([line](TarnFormField& f) { f.value = line->text().toStdString(); });
  return row;
}

void FormDialog::accept() {
  std::vector<TarnFormField> answers = form_.fields;
  for (size_t i = 0; i < answers.size(); ++i) readers_[i](answers[i]);
  const std::string reason = form_.check ? form_.check(answers) : std::string();
  reason_->setText(hostWords(reason));
  reason_->setVisible(!reason.empty());
  if (!reason.empty()) return;
  form_.fields = std::move(answers);
  QDialog::accept();
}

}  // namespace tarn::host
