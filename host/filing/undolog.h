// Undo and redo of everything that changes in a drawing.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "dbid.h"
#include "host/database/headervariables.h"
#include "host/filing/bytedelta.h"

class AcDbDatabase;
class AcDbObject;

namespace tarn::host {

/// Keeps what each step changed: the bytes that differ in each object, the erase mark, the
/// variables of the drawing. Objects that a step has made are marked as erased when it is undone
/// and are the same objects again when it is redone. Whoever watches the database hands every
/// beginning of a change to the three functions at the top.
class ACADHOST_EXPORT UndoLog {
 public:
  explicit UndoLog(AcDbDatabase& database) : database_(database) {}

  void objectAppended(AcDbObject& object);
  /// Opened for write and not changed yet.
  void objectWillChange(AcDbObject& object);
  void headerWillChange();

  /// Ends the step: everything changed since the last step is one. Nothing when nothing changed.
  void endStep(const std::string& name);

  void setMark();
  /// Steps ended from here to endGroup() become one then; an open group is ended first.
  void beginGroup();
  /// False when no group is open.
  bool endGroup();

  enum class Outcome { kDone, kNothingLeft, kMark, kBusy };
  struct Result {
    Outcome outcome = Outcome::kDone;
    std::string name;  ///< of the step, when done
  };
  /// Takes the newest step back. A mark in the way is passed and reported instead. kBusy, with
  /// nothing changed, while an object of the step is open.
  Result undo();
  /// Brings the step undone last back.
  Result redo();
  bool hasMark() const;

  /// Forgets everything; what the drawing is now is the beginning.
  void clear();
  /// Off: nothing is kept and nothing can be undone.
  void setRecording(bool on);
  bool isRecording() const { return recording_; }
  /// Only this many steps are kept; 0 for all.
  void setLimit(size_t steps);

 private:
  struct Touched {
    AcDbObjectId id;
    bool appended = false;
    bool erased = false;
    Bytes bytes;
  };
  struct Change {
    AcDbObjectId id;
    bool erasedBefore = false;
    bool erasedAfter = false;
    bool appended = false;
    ByteDelta delta;
  };
  struct HeaderChange {
    HeaderVariables before, after;
  };
  enum class Kind { kStep, kMark, kGroupBegin };
  struct Entry {
    Kind kind = Kind::kStep;
    std::string name;
    std::vector<Change> changes;
    std::optional<HeaderChange> header;
  };

  bool isBusy(const Entry& entry) const;
  void apply(const Entry& entry, bool forward);
  void dropOldest();

  AcDbDatabase& database_;
  std::vector<Touched> touched_;  ///< of the open step, in the order of the first change
  std::unordered_map<AcDbStub*, size_t> touchedAt_;
  std::optional<HeaderVariables> headerBefore_;
  std::vector<Entry> done_;
  std::vector<Entry> undone_;
  size_t limit_ = 0;
  bool recording_ = true;
  bool applying_ = false;
};

}  // namespace tarn::host
