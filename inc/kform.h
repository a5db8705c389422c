// Forms that a component lets the user fill in, and the states of tasks that it runs.
#pragma once

#include <functional>

#include "inc/kvalues.h"

namespace kel {

/// One question of a form. Texts are UTF-8.
struct FormField {
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
  DString label;
  StringList choices;
  /// What holds at first, and the answer.
  DString value;
  StringList values;
  /// Of kFiles, in the form of IUserInterface::askFiles().
  DString filter;
  int least = 0;
  int most = 0;
};

struct Form {
  DString title;
  /// Of the button that accepts.
  DString accept;
  List<FormField> fields;
  /// Why the answers do not do, or empty; asked before the form is accepted. May be missing.
  std::function<DString(const List<FormField>&)> check;
};

enum class TaskState { kWaiting, kRunning, kDone, kSkipped, kFailed };

}  // namespace kel
