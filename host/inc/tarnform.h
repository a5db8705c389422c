// Our own extensions of the host interface: forms to fill in, lists of tasks that run, progress.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "adesk.h"

/// One question of a form. Texts are UTF-8.
struct TarnFormField {
  enum class Kind {
    kChoice,  ///< one of `choices`; `value` is the index
    kCheck,   ///< `value` is "1" or "0"
    kText,
    kNumber,  ///< a whole number from `least` to `most`
    kFiles,   ///< files and folders, in `values`
    kFolder,
    kTable,  ///< rows of texts under the headings in `choices`; `values` holds them row by row
  };
  Kind kind = Kind::kText;
  std::string label;
  std::vector<std::string> choices;
  /// What holds at first, and the answer.
  std::string value;
  std::vector<std::string> values;
  /// Of kFiles: "text|*.tif;*.img|text|*.jpg||".
  std::string filter;
  int least = 0;
  int most = 0;
};

struct TarnForm {
  std::string title;
  /// Of the button that accepts.
  std::string accept;
  std::vector<TarnFormField> fields;
  /// Why the answers do not do, or empty; asked before the form is accepted. May be missing.
  std::function<std::string(const std::vector<TarnFormField>&)> check;
};

enum class TarnTaskState { kWaiting, kRunning, kDone, kSkipped, kFailed };

/// Lets the user fill in a form; false when it is cancelled.
ACADHOST_EXPORT bool tarnHostAskForm(TarnForm& form);

/// Shows tasks that run one after the other, until tarnHostEndTasks(). Progress that begins
/// meanwhile is shown with them.
ACADHOST_EXPORT void tarnHostBeginTasks(const std::string& title,
                                        const std::vector<std::string>& tasks);
ACADHOST_EXPORT void tarnHostSetTask(size_t task, TarnTaskState state, const std::string& text);
/// Shows a report; returns when the user has seen it.
ACADHOST_EXPORT void tarnHostEndTasks(const std::string& report);

/// A progress window of its own, with the time and a button that cancels; on the command line a
/// line. begin replaces an earlier one, end without begin is fine.
ACADHOST_EXPORT void tarnHostBeginProgress(const std::string& label, int minimum, int maximum);
ACADHOST_EXPORT void tarnHostMoveProgress(int position);
ACADHOST_EXPORT void tarnHostEndProgress();
