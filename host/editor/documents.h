// The open drawings: each with its database, its view, its picture and its locks.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "acdocman.h"
#include "aced.h"
#include "base/file.h"
#include "host/editor/selectionmemory.h"
#include "host/editor/space.h"
#include "host/editor/temporaryvectors.h"
#include "host/filing/drawingfile.h"
#include "host/filing/undolog.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

class DatabaseWatch;
class HostApp;

/// Monitors of one document, in the order of their registration.
class InputPointMonitors : public AcEdInputPointManager {
 public:
  Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor) override;
  Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor) override;
  void notify(AcApDocument* document, double x, double y);

 private:
  std::vector<AcEdInputPointMonitor*> monitors_;
};

class ACADHOST_EXPORT HostDocument : public AcApDocument {
 public:
  /// `path` is what a drawing that has no file yet is called.
  HostDocument(HostApp& app, std::string path, std::unique_ptr<DrawingFile> drawing);
  ~HostDocument() override;

  const ACHAR* fileName() const override { return widePath_.c_str(); }
  const ACHAR* docTitle() const override { return title_.c_str(); }
  AcDbDatabase* database() const override { return &drawing_->database(); }
  AcAp::DocLockMode lockMode(bool includeMyLocks) const override;
  AcAp::DocLockMode myLockMode() const override;
  bool isQuiescent() const override;
  AcEdInputPointManager* inputPointManager() const override;

  const std::string& path() const { return path_; }
  DrawingFile& drawing() const { return *drawing_; }
  /// True when something was changed since it was opened or saved.
  bool isModified() const { return modified_; }
  void setModified() {
    modified_ = true;
    ++changes_;
  }
  /// Grows with each change.
  std::uint64_t changes() const { return changes_; }
  /// The drawing stands in this file now, as it is.
  void becameFile(const std::string& path);
  /// The drawing has changes that are not in its file, which was like this when it was known last;
  /// without times it has no file.
  void becameRecovered(const std::optional<FileTimes>& times);
  /// Of the file when it was read or saved last.
  const FileTimes& times() const { return times_; }
  /// False for a drawing that was never read or saved.
  bool hasFile() const { return hasFile_; }
  /// True when the file is another than the one that was read or saved last.
  bool fileWasChanged() const;

  /// The view that fills the screen: of the model's tab, or of the sheet that is shown.
  ViewState& view() { return space_.screenView(); }
  const ViewState& view() const { return space_.screenView(); }
  /// Replaces the view of the current space and remembers the earlier one; equal views are not
  /// remembered twice.
  void changeView(const ViewState& view);
  /// The same for one step of a pan or zoom by hand: until endGesture() only the view before the
  /// first step is remembered.
  void moveView(const ViewState& view);
  void endGesture() { inGesture_ = false; }
  /// False when there is no earlier view.
  bool previousView();

  /// The entities of the shown tab's own block.
  Scene& scene() { return scene_; }
  const Scene& scene() const { return scene_; }
  /// The model's entities as each viewport of the shown sheet shows them.
  using WindowScenes = std::map<AcDbObjectId, Scene>;
  WindowScenes& windowScenes() { return windowScenes_; }
  const WindowScenes& windowScenes() const { return windowScenes_; }
  /// The scene in which the entities of the current space are seen.
  const Scene& currentScene() const;
  Space& space() { return space_; }
  UndoLog& undo() { return undo_; }
  const Space& space() const { return space_; }
  SelectionMemory& selection() { return selection_; }
  TemporaryVectors& temporaryVectors() { return temporaryVectors_; }
  const TemporaryVectors& temporaryVectors() const { return temporaryVectors_; }

  std::string currentLayer() const;
  /// False when there is no such layer.
  bool setCurrentLayer(const std::string& name);

  void pushLock(AcAp::DocLockMode mode) { locks_.push_back(mode); }
  /// False when nothing is locked.
  bool popLock();

 private:
  HostApp& app_;
  std::string path_;
  std::wstring widePath_;
  std::wstring title_;
  std::unique_ptr<DrawingFile> drawing_;
  FileTimes times_;
  bool hasFile_ = false;
  bool modified_ = false;
  std::uint64_t changes_ = 0;
  UndoLog undo_;
  std::unique_ptr<DatabaseWatch> watch_;
  struct EarlierView {
    AcDbObjectId key;  ///< of the space that it belongs to
    ViewState view;
  };
  Space space_;
  std::vector<EarlierView> earlierViews_;
  bool inGesture_ = false;
  Scene scene_;
  SelectionMemory selection_;
  TemporaryVectors temporaryVectors_;
  WindowScenes windowScenes_;
  std::vector<AcAp::DocLockMode> locks_;
  mutable InputPointMonitors monitors_;
};

/// The document manager behind acDocManagerPtr().
class ACADHOST_EXPORT Documents : public AcApDocManager {
 public:
  explicit Documents(HostApp& app);
  ~Documents() override;

  AcApDocument* curDocument() const override;
  AcApDocument* mdiActiveDocument() const override { return curDocument(); }
  AcApDocument* document(const AcDbDatabase* database) const override;
  int documentCount() const override { return static_cast<int>(documents_.size()); }
  Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                 const ACHAR* globalName, const ACHAR* localName,
                                 bool prompt) override;
  Acad::ErrorStatus unlockDocument(AcApDocument* document) override;
  Acad::ErrorStatus setCurDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                   bool activate) override;
  Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const ACHAR* text, bool activate,
                                        bool wrapUpInactive, bool echo) override;
  void addReactor(AcApDocManagerReactor* reactor) override;
  void removeReactor(AcApDocManagerReactor* reactor) override;

  /// There is always one.
  HostDocument& current() const { return *current_; }
  /// Opens a new, empty drawing and makes it current.
  HostDocument& create();
  /// Makes a drawing that was read from `path` current; an untouched first one goes.
  HostDocument& add(const std::string& path, std::unique_ptr<DrawingFile> drawing);
  /// In the order of their opening.
  std::vector<HostDocument*> all() const;
  /// The same for one that was recovered: it counts as changed. Without times it has no file, and
  /// `path` is what it is called.
  HostDocument& addRecovered(const std::string& path, std::unique_ptr<DrawingFile> drawing,
                             const std::optional<FileTimes>& times);
  /// The drawing of a file (a full path), or null.
  HostDocument* ofFile(const std::string& path) const;
  /// The drawings with changes that are not in a file, in the order of their opening.
  std::vector<HostDocument*> unsaved() const;
  /// Closes a drawing, changed or not; when it is the last, a new one is made first.
  void close(HostDocument& document);
  /// Makes entities in all drawings of classes that were registered since.
  void bindRegisteredClasses();
  /// What was changed in any drawing until now is a step of its own for undo.
  void endUndoStep(const std::string& name);
  /// Closes every drawing, with notifications.
  void closeAll();

 private:
  HostDocument& showNew(std::unique_ptr<HostDocument> made);
  HostDocument& enter(std::unique_ptr<HostDocument> made);
  void destroy(HostDocument& document);
  HostDocument* find(const AcApDocument* document) const;
  void activate(HostDocument& document);
  template <typename Call>
  void notify(Call call) const;
  void notifyLock(HostDocument& document, AcAp::DocLockMode before, AcAp::DocLockMode mine,
                  const ACHAR* name) const;

  HostApp& app_;
  std::vector<std::unique_ptr<HostDocument>> documents_;
  HostDocument* current_ = nullptr;
  std::vector<AcApDocManagerReactor*> reactors_;
  int created_ = 0;
};

}  // namespace tarn::host
