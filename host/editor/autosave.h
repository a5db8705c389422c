// Copies of changed drawings in the profile, for the start after a crash.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "adesk.h"
#include "base/file.h"
#include "base/filelock.h"
#include "base/result.h"
#include "host/filing/savedform.h"

namespace tarn::host {

class HostApp;
class HostDocument;

/// A drawing that was not saved when its program ended without saying so.
struct LostDrawing {
  std::string copy;      ///< file in the profile
  std::string original;  ///< path of the drawing; its name when it never had a file
  bool hadFile = false;
  FileTimes times;  ///< of the original when it was read or saved last
  SavedForm form;
};

/// Each running program has a folder of its own under "autosave" in the profile, with a lock that
/// ends with the process, and in it a copy of each drawing that has changes. A drawing's copy goes
/// when the drawing is saved or closed, the folder at a normal end. What stands in a folder whose
/// lock nobody holds can be recovered. Without a profile nothing is written.
class ACADHOST_EXPORT AutoSave {
 public:
  using Clock = std::chrono::steady_clock;

  explicit AutoSave(HostApp& app);
  ~AutoSave();
  AutoSave(const AutoSave&) = delete;
  AutoSave& operator=(const AutoSave&) = delete;

  /// Copies each drawing that has had changes for SAVETIME minutes that no copy holds; failures are
  /// printed. To be called often while no command computes; costs nothing when there is nothing to
  /// do.
  void tick();
  /// The drawing was saved or closed: its copy goes.
  void forget(const HostDocument& document);
  void setClock(std::function<Clock::time_point()> clock) { clock_ = std::move(clock); }

  /// Sorted by the names of their copies.
  std::vector<LostDrawing> lostDrawings() const;
  /// Opens a copy as the drawing that it was, with changes that are not saved; from then on it is a
  /// copy of this program. On failure everything stays.
  Status recover(const LostDrawing& lost);
  void discard(const LostDrawing& lost);

 private:
  struct Copied {
    std::uint64_t changes = 0;  ///< of the document, in the copy
    bool waits = false;
    Clock::time_point since;  ///< the first change that is not in the copy
    std::string path;         ///< empty when there is no copy
  };
  std::string rootFolder() const;
  Status ownFolder();
  Status copy(HostDocument& document, Copied& state);
  std::string freeName(const HostDocument& document) const;

  HostApp& app_;
  std::function<Clock::time_point()> clock_;
  std::map<const HostDocument*, Copied> copied_;
  std::string folder_;
  FileLock lock_;
};

/// Asks what is to become of drawings that an earlier session has lost; does nothing without any.
ACADHOST_EXPORT void offerRecovery(HostApp& app);
/// One sentence about them for a session without dialogs; empty without any.
ACADHOST_EXPORT std::string recoveryNotice(HostApp& app);
/// RECOVER.
void recoverCommand();

}  // namespace tarn::host
