// Commands that begin with what is typed, in a list above the input line. The keyboard stays with
// the line.
#pragma once

#include <QListWidget>
#include <functional>
#include <string>
#include <vector>

namespace tarn::host {

/// A command, and the short name by which it was found; empty for its own name.
struct Suggestion {
  std::string command;
  std::string alias;
  std::string meaning;  ///< in the window's language; empty when it is not known
};

class Suggestions final : public QListWidget {
 public:
  /// `chosen` gets a command that was clicked.
  Suggestions(QWidget* window, std::function<void(const QString&)> chosen);

  /// Shows the list with its foot on the upper left corner of `line`; hides when it is empty.
  void offer(const std::vector<Suggestion>& all, const QWidget& line);
  /// The next command of the list, or the one before, round and round; empty when there is none.
  QString step(int by);
};

}  // namespace tarn::host
