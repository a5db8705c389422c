#include "host/editor/commandlineforms.h"

#include <algorithm>
#include <optional>

#include "base/file.h"
#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

namespace {

using Kind = TarnFormField::Kind;

std::optional<std::string> ask(HostApp& app, const std::string& prompt, InputKind kind) {
  return app.commands().ask(prompt, kind);
}

std::string listed(const TarnFormField& field) {
  std::string text;
  for (size_t i = 0; i < field.choices.size(); ++i)
    text += "\n  " + std::to_string(i + 1) + ": " + field.choices[i];
  return text;
}

std::string holding(const TarnFormField& field) {
  int index = 0;
  if (field.kind == Kind::kCheck) return field.value == "1" ? "Yes" : "No";
  if (field.kind != Kind::kChoice || !parseInt(field.value, index)) return field.value;
  return std::to_string(index + 1);
}

/// Takes an answer; the reason why not, or empty.
std::string take(const std::string& answer, TarnFormField& field) {
  int number = 0;
  switch (field.kind) {
    case Kind::kChoice:
      for (size_t i = 0; i < field.choices.size(); ++i) {
        const bool byNumber = parseInt(answer, number) && number == static_cast<int>(i) + 1;
        if (!byNumber && !equalsIgnoreCase(answer, field.choices[i])) continue;
        field.value = std::to_string(i);
        return {};
      }
      return "a number from 1 to " + std::to_string(field.choices.size()) + " is needed";
    case Kind::kCheck: {
      const std::string first = toLower(answer).substr(0, 1);
      if (first != "y" && first != "n") return "Yes or No is needed";
      field.value = first == "y" ? "1" : "0";
      return {};
    }
    case Kind::kNumber:
      if (!parseInt(answer, number) || number < field.least || number > field.most)
        return "a number from " + std::to_string(field.least) + " to " +
               std::to_string(field.most) + " is needed";
      field.value = answer;
      return {};
    default:
      field.value = answer;
      return {};
  }
}

/// False when the input is cancelled.
bool askList(HostApp& app, TarnFormField& field) {
  app.print("\n" + field.label + "\n");
  field.values.clear();
  for (;;) {
    const auto name = ask(app, "File or folder (Enter ends the list): ", InputKind::kFileName);
    if (!name) return false;
    if (name->empty()) return true;
    field.values.push_back(absolutePath(*name));
  }
}

/// The row that is meant by "Word NUMBER", its number counted from 1; nothing when there is none.
std::optional<size_t> rowOf(const std::string& answer, size_t rows) {
  const size_t blank = answer.find(' ');
  int number = 0;
  if (blank == std::string::npos || !parseInt(answer.substr(blank), number) || number < 1 ||
      static_cast<size_t>(number) > rows)
    return std::nullopt;
  return static_cast<size_t>(number) - 1;
}

/// Asks for each text of a row; false when the input is cancelled.
bool askRow(HostApp& app, const TarnFormField& field, std::vector<std::string>& row) {
  for (size_t i = 0; i < field.choices.size(); ++i) {
    const auto text = ask(app, field.choices[i] + " <" + row[i] + ">: ", InputKind::kText);
    if (!text) return false;
    if (!text->empty()) row[i] = *text;
  }
  return true;
}

void printRows(HostApp& app, const TarnFormField& field) {
  std::string text = "\n" + field.label;
  for (size_t i = 0; i < field.values.size(); ++i) {
    if (i % field.choices.size() == 0)
      text += "\n  " + std::to_string(i / field.choices.size() + 1) + ":";
    text += "  " + field.values[i];
  }
  app.print(text + "\n");
}

/// False when the input is cancelled.
bool askTable(HostApp& app, TarnFormField& field) {
  using Place = std::vector<std::string>::difference_type;
  const size_t width = field.choices.size();
  for (;;) {
    printRows(app, field);
    const auto answer =
        ask(app, "Add, Edit NUMBER or Remove NUMBER (Enter ends): ", InputKind::kText);
    if (!answer) return false;
    if (answer->empty()) return true;
    const char first = toLower(*answer)[0];
    const std::optional<size_t> row = rowOf(*answer, field.values.size() / width);
    const auto begin = field.values.begin() + static_cast<Place>(row.value_or(0) * width);
    std::vector<std::string> texts(width);
    if (first == 'a') {
      if (!askRow(app, field, texts)) return false;
      field.values.insert(field.values.end(), texts.begin(), texts.end());
    } else if (first == 'e' && row) {
      std::copy_n(begin, width, texts.begin());
      if (!askRow(app, field, texts)) return false;
      std::copy(texts.begin(), texts.end(), begin);
    } else if (first == 'r' && row) {
      field.values.erase(begin, begin + static_cast<Place>(width));
    } else {
      app.print("\n\"" + *answer + "\": there is no such row, or no such choice.\n");
    }
  }
}

bool askField(HostApp& app, TarnFormField& field) {
  if (field.kind == Kind::kFiles) return askList(app, field);
  if (field.kind == Kind::kTable) return askTable(app, field);
  const bool path = field.kind == Kind::kFolder;
  const InputKind kind = path ? InputKind::kFileName : InputKind::kText;
  if (field.kind == Kind::kChoice) app.print("\n" + field.label + listed(field) + "\n");
  for (;;) {
    const auto answer = ask(app, field.label + " <" + holding(field) + ">: ", kind);
    if (!answer) return false;
    const std::string reason = answer->empty() ? "" : take(*answer, field);
    if (reason.empty()) {
      if (path && !field.value.empty()) field.value = absolutePath(field.value);
      return true;
    }
    app.print("\n\"" + *answer + "\": " + reason + ".\n");
  }
}

}  // namespace

bool askFormOnCommandLine(HostApp& app, TarnForm& form) {
  app.print("\n" + form.title + "\n");
  for (;;) {
    if (!std::all_of(form.fields.begin(), form.fields.end(),
                     [&](TarnFormField& field) { return askField(app, field); }))
      return false;
    const std::string reason = form.check ? form.check(form.fields) : std::string();
    if (reason.empty()) return true;
    app.print("\n" + reason + "\n");
  }
}

}  // namespace tarn::host
