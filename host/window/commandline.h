// The command line at the bottom of the window: history, prompt and input. It knows nothing of
// commands; what is typed goes to its hooks.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "host/window/suggestions.h"

class QLabel;
class QKeyEvent;
class QLineEdit;
class QPlainTextEdit;

namespace tarn::host {

class CommandLine : public QWidget {
 public:
  struct Hooks {
    std::function<void(const std::string&)> entered;         ///< Enter: the line as typed
    std::function<void()> escaped;                           ///< Escape
    std::function<std::vector<std::string>()> earlierLines;  ///< oldest first
    std::function<std::vector<Suggestion>(const std::string&)> beginningWith;
    std::function<bool()> blankIsEnter;    ///< a blank as the first letter means Enter
    std::function<bool()> pastesEntities;  ///< entities were copied: Ctrl+V means them
  };
  explicit CommandLine(Hooks hooks);

  /// Adds whole lines to the history.
  void addLines(const std::vector<std::string>& lines);
  /// Shows a line that is not finished yet as the last one; empty takes it away.
  void showOpenLine(const std::string& text);
  /// The text before the input; its last line when it has several.
  void setPrompt(const std::string& prompt);

  QString historyText() const;
  QString promptText() const;
  /// Sets names for screen readers and hints in the words of now.
  void speakAgain();
  QLineEdit& input() { return *input_; }
  QPlainTextEdit& history() { return *history_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  bool inputKey(int key);
  bool copiesText(const QKeyEvent& key) const;
  bool historyKey(QKeyEvent& key);
  void turnPages(int by);
  bool leavesKey(const QKeyEvent& key) const;
  void recall(int step);
  void complete(int by);
  void suggest();
  void elidePrompt();
  void scrollToEnd();

  Hooks hooks_;
  QPlainTextEdit* history_;  ///< these three belong to the widget
  QLabel* prompt_;
  QLineEdit* input_;
  std::string prompted_;  ///< as it was given
  QString fullPrompt_;
  bool openLine_ = false;
  int recalled_ = 0;                    ///< how far back the shown line stands; 0: a new line
  QString newLine_;                     ///< what was typed before an earlier line was recalled
  Suggestions* suggestions_ = nullptr;  ///< belongs to the window
};

}  // namespace tarn::host
