#include "host/window/commandline.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QVBoxLayout>

#include "host/window/hostwords.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kMostHistoryLines = 5000;

QFont lineFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setFamilies({"DejaVu Sans Mono", "WenQuanYi Micro Hei Mono", font.family()});
  return font;
}

bool typesText(const QKeyEvent& key) {
  const bool chord = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  return !chord && !key.text().isEmpty();
}

}  // namespace

CommandLine::CommandLine(Hooks hooks)
    : hooks_(std::move(hooks)),
      history_(new QPlainTextEdit(this)),
      prompt_(new QLabel(this)),
      input_(new QLineEdit(this)) {
  setObjectName("commandLine");
  history_->setObjectName("history");
  history_->setReadOnly(true);
  history_->setUndoRedoEnabled(false);
  history_->setMaximumBlockCount(kMostHistoryLines);
  history_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  history_->setFrameShape(QFrame::NoFrame);
  history_->setFont(lineFont());
  prompt_->setObjectName("prompt");
  prompt_->setFont(lineFont());
  input_->setObjectName("input");
  input_->setFont(lineFont());
  input_->setFrame(false);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(6, 2, 6, 2);
  row->setSpacing(6);
  row->addWidget(prompt_);
  row->addWidget(input_, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(history_, 1);
  column->addLayout(row);
  setMinimumHeight(3 * history_->fontMetrics().lineSpacing());
  for (QObject* watched : {static_cast<QObject*>(history_), static_cast<QObject*>(input_)}) {
    watched->installEventFilter(this);
  }
  setFocusProxy(input_);
  QObject::connect(input_, &QLineEdit::textEdited, this, [this] { suggest(); });
  speakAgain();
}

void CommandLine::speakAgain() {
  history_->setAccessibleName(words("What was typed and answered"));
  input_->setAccessibleName(words("Command line"));
  setPrompt(prompted_);
}

void CommandLine::addLines(const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  showOpenLine({});
  for (const std::string& line : lines) history_->appendPlainText(QString::fromStdString(line));
  scrollToEnd();
}

void CommandLine::showOpenLine(const std::string& text) {
  if (openLine_) {
    QTextCursor cursor(history_->document());
    cursor.movePosition(QTextCursor::End);
    cursor.select(QTextCursor::BlockUnderCursor);
    cursor.removeSelectedText();
  }
  openLine_ = !text.empty();
  if (!openLine_) return;
  history_->appendPlainText(QString::fromStdString(text));
  scrollToEnd();
}

void CommandLine::scrollToEnd() {
  QScrollBar* bar = history_->verticalScrollBar();
  bar->setValue(bar->maximum());
}

void CommandLine::setPrompt(const std::string& prompt) {
  prompted_ = prompt;
  const QString lines = QString::fromStdString(prompt).trimmed();
  fullPrompt_ = hostWords(lines.mid(lines.lastIndexOf('\n') + 1).toStdString());
  prompt_->setToolTip(fullPrompt_);
  const bool wantsCommand = prompted_.empty() || prompted_ == "Command:";
  input_->setPlaceholderText(wantsCommand ? words("Type a command, or F1 for all of them")
                                          : QString());
  elidePrompt();
}

void CommandLine::elidePrompt() {
  const int most = qMax(80, width() * 3 / 5);
  prompt_->setText(prompt_->fontMetrics().elidedText(fullPrompt_, Qt::ElideMiddle, most));
}

void CommandLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  elidePrompt();
}

QString CommandLine::historyText() const {
  return history_->toPlainText();
}

QString CommandLine::promptText() const {
  return fullPrompt_;
}

/// The keys of the Edit menu are the input line's own only while there is something to edit.
bool CommandLine::leavesKey(const QKeyEvent& key) const {
  if (!input_->text().isEmpty()) return false;
  const auto is = [&](QKeySequence::StandardKey meant) { return key.matches(meant); };
  return is(QKeySequence::Undo) || is(QKeySequence::Redo) || is(QKeySequence::Copy) ||
         is(QKeySequence::Delete) || (is(QKeySequence::Paste) && hooks_.pastesEntities());
}

bool CommandLine::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && watched == input_ &&
      leavesKey(static_cast<QKeyEvent&>(*event))) {
    event->ignore();
    return true;
  }
  if (event->type() == QEvent::ShortcutOverride && watched == history_ &&
      copiesText(static_cast<QKeyEvent&>(*event))) {
    event->accept();
    return true;
  }
  if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  auto& key = static_cast<QKeyEvent&>(*event);
  if (key.key() == Qt::Key_Escape) {
    input_->clear();
    recalled_ = 0;
    if (suggestions_ != nullptr) suggestions_->hide();
    hooks_.escaped();
    return true;
  }
  return watched == input_ ? inputKey(key.key()) : historyKey(key);
}

/// What is chosen in the history goes to the clipboard, not what is chosen in the drawing.
bool CommandLine::copiesText(const QKeyEvent& key) const {
  return key.matches(QKeySequence::SelectAll) ||
         (key.matches(QKeySequence::Copy) && history_->textCursor().hasSelection());
}

/// Text typed over the history belongs to the input line.
bool CommandLine::historyKey(QKeyEvent& key) {
  if (!typesText(key)) return false;
  input_->setFocus();
  return inputKey(key.key()) || (input_->event(&key), true);
}

void CommandLine::turnPages(int by) {
  QScrollBar* bar = history_->verticalScrollBar();
  bar->setValue(bar->value() + by * bar->pageStep());
}

bool CommandLine::inputKey(int key) {
  switch (key) {
    case Qt::Key_Space:
      if (!input_->text().isEmpty() || !hooks_.blankIsEnter()) return false;
      [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter: {
      const std::string line = input_->text().toStdString();
      input_->clear();
      recalled_ = 0;
      if (suggestions_ != nullptr) suggestions_->hide();
      hooks_.entered(line);
      return true;
    }
    case Qt::Key_Up:
      recall(1);
      return true;
    case Qt::Key_Down:
      recall(-1);
      return true;
    case Qt::Key_PageUp:
      turnPages(-1);
      return true;
    case Qt::Key_PageDown:
      turnPages(1);
      return true;
    case Qt::Key_Tab:
      complete(1);
      return true;
    case Qt::Key_Backtab:
      complete(-1);
      return true;
    default:
      return false;
  }
}

void CommandLine::recall(int step) {
  const std::vector<std::string> lines = hooks_.earlierLines();
  if (recalled_ == 0) newLine_ = input_->text();
  recalled_ = qBound(0, recalled_ + step, static_cast<int>(lines.size()));
  input_->setText(recalled_ == 0 ? newLine_
                                 : QString::fromStdString(lines[lines.size() - recalled_]));
  if (suggestions_ != nullptr) suggestions_->hide();
}

/// The commands that begin with what is typed.
void CommandLine::suggest() {
  if (suggestions_ == nullptr) {
    suggestions_ = new Suggestions(window(), [this](const QString& command) {
      input_->setText(command);
      input_->setFocus();
    });
  }
  suggestions_->offer(hooks_.beginningWith(input_->text().toStdString()), *input_);
}

/// Tab walks through them.
void CommandLine::complete(int by) {
  if (suggestions_ == nullptr || !suggestions_->isVisible()) suggest();
  const QString command = suggestions_->step(by);
  if (!command.isEmpty()) input_->setText(command);
}

}  // namespace tarn::host
