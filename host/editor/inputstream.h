// Inputs that stand ready for commands: what is left of a typed line, text sent to the command
// line, and the arguments of a command run by another. A stack: the newest source is read first.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adesk.h"
#include "host/editor/frontend.h"

namespace tarn::host {

class ACADHOST_EXPORT InputStream {
 public:
  enum class Source { kTyped, kSent, kArguments };

  struct Item {
    std::string text;
    Source source;
  };

  /// A typed line. Blanks separate inputs, double quotes keep blanks together; a whole-line input
  /// takes all that is left.
  void pushTyped(const std::string& line);
  /// Sent text. Each blank or line end is one Enter; a whole-line input ends at the line end.
  void pushSent(const std::string& text);
  /// Complete inputs. They are a barrier: what lies below is not read until they are popped.
  void pushArguments(std::vector<std::string> inputs);

  /// The next input of that kind; nothing when the sources are used up, or the arguments on top
  /// are.
  std::optional<Item> next(InputKind kind);

  /// True when the newest source is a set of arguments, used up or not.
  bool atBarrier() const;
  size_t depth() const { return frames_.size(); }
  /// Drops the newest sources until `depth` are left.
  void dropTo(size_t depth);
  /// Takes the rest of the newest source if it is sent text, else "".
  std::string takeSentRest();

 private:
  struct Frame {
    Source source;
    std::string text;
    size_t at = 0;
    std::vector<std::string> arguments;
  };
  static std::optional<std::string> take(Frame& frame, InputKind kind);

  std::vector<Frame> frames_;
};

/// First input of a line and what follows it. Quotes around an input are taken off.
ACADHOST_EXPORT std::string takeToken(const std::string& text, size_t& at);

/// A whole line as one input: without blanks around it, and without quotes when it is wholly
/// quoted.
ACADHOST_EXPORT std::string wholeLine(const std::string& text);

/// How much of sent text has ended, that is, up to and with the last blank or line end.
ACADHOST_EXPORT size_t finishedLength(const std::string& sent);

}  // namespace tarn::host
