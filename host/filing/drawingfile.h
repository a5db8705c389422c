// A drawing read from a file, changed in its database, and written again.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"
#include "base/result.h"
#include "dbid.h"
#include "host/filing/drawingpieces.h"
#include "host/filing/savedform.h"

class AcDbDatabase;

namespace tarn::host {

struct DrawingBinding;

/// What the active viewport of a drawing shows. The twist in radians, sizes in drawing units.
struct DrawingView {
  double centerX = 0;
  double centerY = 0;
  double height = 0;
  double twist = 0;
};

/// What a drawing is opened with.
struct OpeningState {
  std::optional<DrawingView> view;  ///< of the model; nothing when the file has no active viewport
  bool isTiled = true;              ///< the model's tab is shown, not a sheet
  /// Block of the sheet that the file is to have in front; null for the one that it has there.
  AcDbObjectId frontSheet;
};

/// What is not understood stays as it is, to the byte; only objects that were changed in the
/// database are written anew. The file read stays the ground of every save, so an object that was
/// erased and brought back by undo stands where it stood.
class ACADHOST_EXPORT DrawingFile {
 public:
  ~DrawingFile();
  DrawingFile(const DrawingFile&) = delete;
  DrawingFile& operator=(const DrawingFile&) = delete;

  /// Told how far reading has come, in hundredths.
  using Progress = std::function<void(int)>;
  /// ASCII and binary, R10 to R2018. The sentence names the file and why it cannot be opened.
  static Result<std::unique_ptr<DrawingFile>> open(const std::string& path,
                                                   const Progress& progress = {});
  static Result<std::unique_ptr<DrawingFile>> fromBytes(std::string bytes, const std::string& name,
                                                        const Progress& progress = {});
  /// A new drawing with the tables and layouts that every program expects.
  static std::unique_ptr<DrawingFile> createNew();

  AcDbDatabase& database() const;
  /// Sentences for the user about what was found: kinds not drawn, a missing end, a binary file.
  const std::vector<std::string>& notes() const { return notes_; }
  OpeningState state() const;
  /// True for R12 and before.
  bool isOld() const;
  /// Why the drawing, as it is now, cannot be saved as one of R12; empty when it can, and for every
  /// later drawing.
  std::string reasonAgainstVersion() const;
  /// Makes a drawing of R12 one of R2000, which the next save writes. Nothing for a later one.
  Status makeModern();
  /// What the drawing is written as; at first what the file is.
  const SavedForm& form() const { return form_; }
  /// Fails, and nothing has changed, for a version that cannot hold the drawing. A drawing of R12
  /// has to be made modern before it gets another version. With an earlier version the session
  /// loses nothing: the file that was read stays the ground of what is written.
  Status setForm(const SavedForm& form);
  /// What the file written last does not hold, for the user; empty when they hold everything.
  const std::string& leftOut() const { return leftOut_; }
  /// Makes entities of raw ones whose class has been registered since; returns how many.
  size_t bindRegisteredClasses();

  /// Gives the whole file out as it is to be saved, with `state` where it differs, in pieces: the
  /// drawing never stands in memory a second time. An error when an R12 file cannot hold what the
  /// drawing has now, when a value has no place in the form, and when the taker fails.
  Status write(const std::optional<OpeningState>& state, const PieceTaker& take);
  /// The same in the version of the file and as text, also when that version is R12 and cannot hold
  /// the drawing: it is one of R2000 then. For copies; the session stays as it is.
  Status writeCopy(const std::optional<OpeningState>& state, const PieceTaker& take);
  /// What write() gives, in one piece.
  Result<std::string> bytes(const std::optional<OpeningState>& state = std::nullopt);

 private:
  DrawingFile();
  void noteKept();
  DrawingPieces wholeFile(const std::optional<OpeningState>& state);
  Status giveInVersion(const DrawingPieces& pieces, const PieceTaker& take);

  std::unique_ptr<DrawingBinding> binding_;
  std::vector<std::string> notes_;
  SavedForm form_;
  std::string leftOut_;
};

/// Why a drawing of R12 cannot be saved as such; empty when it can.
std::string reasonAgainstOld(const DrawingBinding& binding);
OpeningState drawingState(const DrawingBinding& binding);
/// The bytes of an empty drawing of a version from R2000 on ("AC1015"). Its handles are below 40.
ACADHOST_EXPORT std::string newDrawingBytes(std::string_view version);

}  // namespace tarn::host
