#include "host/window/dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "afxwin.h"
#include "host/ui/menumodel.h"
#include "host/ui/uiservices.h"
#include "host/window/filefilters.h"
#include "host/window/hostwords.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

QMessageBox::Icon iconOf(unsigned type) {
  switch (type & 0xf0) {
    case MB_ICONERROR:
      return QMessageBox::Critical;
    case MB_ICONQUESTION:
      return QMessageBox::Question;
    case MB_ICONWARNING:
      return QMessageBox::Warning;
    case MB_ICONINFORMATION:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

QMessageBox::StandardButtons buttonsOf(unsigned type) {
  switch (type & 0xf) {
    case MB_OKCANCEL:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case MB_YESNO:
      return QMessageBox::Yes | QMessageBox::No;
    case MB_YESNOCANCEL:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    default:
      return QMessageBox::Ok;
  }
}

int identifierOf(int button, unsigned type) {
  switch (button) {
    case QMessageBox::Ok:
      return IDOK;
    case QMessageBox::Yes:
      return IDYES;
    case QMessageBox::No:
      return IDNO;
    case QMessageBox::Cancel:
      return IDCANCEL;
    default:
      return refusingButton(type);
  }
}

/// Only letters of a keyboard can be pressed.
QString withLetter(const QString& text) {
  return !text.isEmpty() && text[0].unicode() < 128 ? "&" + text : text;
}

void fillMenu(QMenu& menu, const MenuModel& model) {
  for (const MenuItem& item : model.items) {
    // An ampersand is a letter here.
    const QString text = QString::fromStdWString(item.text).replace('&', "&&");
    if (item.sub) {
      fillMenu(*menu.addMenu(text), *item.sub);
    } else if (item.text.empty()) {
      menu.addSeparator();
    } else {
      QAction* action = menu.addAction(text);
      action->setData(item.id);
      action->setCheckable(item.checked);
      action->setChecked(item.checked);
    }
  }
}

/// Kinds of a file differ in what is in them, not in their names.
std::string filterOf(const FileRequest& request) {
  if (request.kinds.empty()) return request.filter;
  std::string filter;
  for (const std::string& kind : request.kinds) {
    filter += kind + " drawing|*" + request.defaultExtension + "|";
  }
  return filter + "|";
}

/// What stands before the patterns, in the words of the window.
QStringList inWords(QStringList filters) {
  for (QString& filter : filters) {
    const int patterns = filter.lastIndexOf(" (");
    filter = hostWords(filter.left(patterns).toStdString()) + filter.mid(patterns);
  }
  return filters;
}

}  // namespace

class DialogBackend::Asking {
 public:
  explicit Asking(DialogBackend& of) : of_(of) {
    if (++of_.open_ == 1 && of_.asking_) of_.asking_();
  }
  ~Asking() {
    if (--of_.open_ == 0 && of_.asking_) of_.asking_();
  }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;

 private:
  DialogBackend& of_;
};

UINT DialogBackend::popupMenu(const MenuModel& model, POINT screen) {
  const Asking asking(*this);
  QMenu menu(parent_);
  fillMenu(menu, model);
  const QAction* chosen = menu.exec(QPoint(screen.x, screen.y));
  return chosen != nullptr ? chosen->data().toUInt() : 0;
}

int DialogBackend::messageBox(const std::string& text, const std::string& caption, unsigned type) {
  const Asking asking(*this);
  QMessageBox box(parent_);
  box.setWindowTitle(caption.empty() ? "Tarn Image" : hostWords(caption));
  box.setTextFormat(Qt::PlainText);
  box.setText(hostWords(text));
  box.setIcon(iconOf(type));
  box.setStandardButtons(buttonsOf(type));
  box.exec();
  const QAbstractButton* pressed = box.clickedButton();
  return identifierOf(pressed != nullptr ? static_cast<int>(box.standardButton(box.clickedButton()))
                                         : static_cast<int>(QMessageBox::NoButton),
                      type);
}

size_t DialogBackend::choose(const std::string& question, const std::vector<std::string>& answers,
                             size_t standard) {
  const Asking asking(*this);
  QMessageBox box(parent_);
  box.setWindowTitle("Tarn Image");
  box.setTextFormat(Qt::PlainText);
  box.setText(hostWords(question));
  box.setIcon(QMessageBox::Question);
  std::vector<QAbstractButton*> buttons;
  for (const std::string& answer : answers) {
    // Only the last one refuses; the order on the screen is that of the answers.
    QPushButton* button = box.addButton(
        withLetter(hostWords(answer)),
        buttons.size() + 1 == answers.size() ? QMessageBox::RejectRole : QMessageBox::AcceptRole);
    if (buttons.size() == standard) box.setDefaultButton(button);
    buttons.push_back(button);
  }
  box.setEscapeButton(buttons.back());
  box.exec();
  const auto pressed = std::find(buttons.begin(), buttons.end(), box.clickedButton());
  return pressed != buttons.end() ? static_cast<size_t>(pressed - buttons.begin())
                                  : answers.size() - 1;
}

std::optional<std::vector<std::string>> DialogBackend::fileNames(const FileRequest& asked) {
  const Asking asking(*this);
  FileRequest request = asked;
  if (request.several && !imageFilter_.empty()) {
    request.title = imageTitle_;
    request.filter = imageFilter_;
  }
  QFileDialog dialog(parent_);
  dialog.setAcceptMode(request.open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
  dialog.setOption(QFileDialog::ShowDirsOnly, request.folder);
  dialog.setFileMode(request.folder                      ? QFileDialog::Directory
                     : request.several                   ? QFileDialog::ExistingFiles
                     : request.open && request.mustExist ? QFileDialog::ExistingFile
                                                         : QFileDialog::AnyFile);
  // After the mode, which has a title of its own.
  dialog.setWindowTitle(!request.title.empty() ? hostWords(request.title)
                        : request.folder       ? words("Choose a folder")
                        : request.open         ? words("Open")
                                               : words("Save as"));
  dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.overwritePrompt);
  dialog.setDefaultSuffix(plainExtension(request.defaultExtension));
  const QStringList filters = inWords(dialogFilters(filterOf(request)));
  if (!filters.isEmpty()) dialog.setNameFilters(filters);
  if (!request.kinds.empty()) dialog.selectNameFilter(filters[static_cast<int>(request.kind)]);
  const QString initial = QDir::fromNativeSeparators(QString::fromStdString(request.initialName));
  const QFileInfo start(initial);
  if (initial.contains('/')) {
    dialog.setDirectory(start.path());
  } else if (!folder_.isEmpty()) {
    dialog.setDirectory(folder_);
  }
  // A pattern as the first name ("*.tif") is the filter's business.
  if (!start.fileName().isEmpty() && !initial.contains('*')) dialog.selectFile(start.fileName());
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  folder_ = dialog.directory().absolutePath();
  const int kind = filters.indexOf(dialog.selectedNameFilter());
  kind_.reset();
  if (!request.kinds.empty() && kind >= 0) kind_ = static_cast<size_t>(kind);
  std::vector<std::string> names;
  for (const QString& name : dialog.selectedFiles())
    names.push_back(QDir::toNativeSeparators(name).toStdString());
  return names;
}

}  // namespace tarn::host
