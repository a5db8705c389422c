#include "host/editor/documents.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/path.h"
#include "base/text.h"
#include "dbapserv.h"
#include "dbmain.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/autosave.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/databasewatch.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

namespace {

constexpr size_t kViewsKept = 10;

bool sameView(const ViewState& a, const ViewState& b) {
  return a.centerX == b.centerX && a.centerY == b.centerY && a.height == b.height &&
         a.twist == b.twist;
}

}  // namespace

Acad::ErrorStatus InputPointMonitors::addPointMonitor(AcEdInputPointMonitor* monitor) {
  if (monitor == nullptr) return Acad::eInvalidInput;
  if (std::find(monitors_.begin(), monitors_.end(), monitor) != monitors_.end()) {
    return Acad::eDuplicateKey;
  }
  monitors_.push_back(monitor);
  return Acad::eOk;
}

Acad::ErrorStatus InputPointMonitors::removePointMonitor(AcEdInputPointMonitor* monitor) {
  const auto found = std::find(monitors_.begin(), monitors_.end(), monitor);
  if (found == monitors_.end()) return Acad::eKeyNotFound;
  monitors_.erase(found);
  return Acad::eOk;
}

void InputPointMonitors::notify(AcApDocument* document, double x, double y) {
  const AcEdInputPoint input(document, x, y);
  AcEdInputPointMonitorResult output;
  const auto all = monitors_;
  for (AcEdInputPointMonitor* monitor : all) monitor->monitorInputPoint(input, output);
}

HostDocument::HostDocument(HostApp& app, std::string path, std::unique_ptr<DrawingFile> drawing)
    : app_(app),
      path_(std::move(path)),
      widePath_(toWide(path_)),
      title_(toWide(nameOf(path_))),
      drawing_(std::move(drawing)),
      undo_(drawing_->database()),
      space_(drawing_->database()) {
  watch_ = watchDatabase(app_, *this);
}

HostDocument::~HostDocument() = default;

void HostDocument::becameFile(const std::string& path) {
  path_ = path;
  widePath_ = toWide(path);
  title_ = toWide(nameOf(path));
  times_ = fileTimes(path);
  hasFile_ = true;
  modified_ = false;
  database()->setFilename(widePath_.c_str());
}

void HostDocument::becameRecovered(const std::optional<FileTimes>& times) {
  hasFile_ = times.has_value();
  times_ = times.value_or(FileTimes());
  modified_ = true;
  if (hasFile_) database()->setFilename(widePath_.c_str());
}

bool HostDocument::fileWasChanged() const {
  if (!hasFile_ || fileKind(path_) == FileKind::kMissing) return false;
  const FileTimes now = fileTimes(path_);
  return now.size != times_.size || now.modifiedNs != times_.modifiedNs;
}

AcAp::DocLockMode HostDocument::myLockMode() const {
  AcAp::DocLockMode strongest = AcAp::kNone;
  for (const AcAp::DocLockMode mode : locks_) strongest = std::max(strongest, mode);
  return strongest;
}

AcAp::DocLockMode HostDocument::lockMode(bool includeMyLocks) const {
  // One session: all locks are mine.
  return includeMyLocks ? myLockMode() : AcAp::kNone;
}

bool HostDocument::isQuiescent() const {
  return !app_.commandActive();
}

AcEdInputPointManager* HostDocument::inputPointManager() const {
  return &monitors_;
}

void HostDocument::changeView(const ViewState& view) {
  const ViewState before = space_.view();
  if (!sameView(before, view)) {
    earlierViews_.push_back({space_.viewKey(), before});
    if (earlierViews_.size() > kViewsKept) earlierViews_.erase(earlierViews_.begin());
  }
  space_.setView(view);
  inGesture_ = false;
}

void HostDocument::moveView(const ViewState& view) {
  if (!inGesture_) {
    earlierViews_.push_back({space_.viewKey(), space_.view()});
    if (earlierViews_.size() > kViewsKept) earlierViews_.erase(earlierViews_.begin());
  }
  space_.setMouseView(view);
  inGesture_ = true;
}

bool HostDocument::previousView() {
  const AcDbObjectId key = space_.viewKey();
  const auto found = std::find_if(earlierViews_.rbegin(), earlierViews_.rend(),
                                  [&](const EarlierView& one) { return one.key == key; });
  if (found == earlierViews_.rend()) return false;
  space_.setView(found->view);
  earlierViews_.erase(std::next(found).base());
  return true;
}

const Scene& HostDocument::currentScene() const {
  const auto window = windowScenes_.find(space_.currentViewport());
  return window != windowScenes_.end() ? window->second : scene_;
}

std::string HostDocument::currentLayer() const {
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(database()->clayer(), AcDb::kForRead);
  const ACHAR* name = nullptr;
  if (layer.openStatus() != Acad::eOk || layer->getName(name) != Acad::eOk) return {};
  return toUtf8(name);
}

bool HostDocument::setCurrentLayer(const std::string& name) {
  AcDbLayerTable* layers = nullptr;
  if (database()->getLayerTable(layers, AcDb::kForRead) != Acad::eOk) return false;
  AcDbObjectId id;
  const Acad::ErrorStatus found = layers->getAt(toWide(name).c_str(), id);
  layers->close();
  return found == Acad::eOk && database()->setClayer(id) == Acad::eOk;
}

bool HostDocument::popLock() {
  if (locks_.empty()) return false;
  locks_.pop_back();
  return true;
}

Documents::Documents(HostApp& app) : app_(app) {
  AcApDocument::rxInit();
  AcApDocManager::rxInit();
  AcApDocManagerReactor::rxInit();
}

Documents::~Documents() = default;

AcApDocument* Documents::curDocument() const {
  return current_;
}

AcApDocument* Documents::document(const AcDbDatabase* database) const {
  for (const auto& document : documents_) {
    if (document->database() == database) return document.get();
  }
  return nullptr;
}

HostDocument* Documents::find(const AcApDocument* document) const {
  for (const auto& known : documents_) {
    if (known.get() == document) return known.get();
  }
  return nullptr;
}

template <typename Call>
void Documents::notify(Call call) const {
  // A reactor may take itself, or another, off the list.
  const auto all = reactors_;
  for (AcApDocManagerReactor* reactor : all) {
    if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) call(*reactor);
  }
}

void Documents::notifyLock(HostDocument& document, AcAp::DocLockMode before, AcAp::DocLockMode mine,
                           const ACHAR* name) const {
  const ACHAR* command = name != nullptr ? name : ACRX_T("");
  notify([&](AcApDocManagerReactor& r) {
    r.documentLockModeChanged(&document, before, mine, document.myLockMode(), command);
  });
}

Acad::ErrorStatus Documents::lockDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                          const ACHAR* globalName, const ACHAR*, bool) {
  HostDocument* known = find(document);
  if (known == nullptr) return Acad::eInvalidInput;
  const AcAp::DocLockMode before = known->myLockMode();
  known->pushLock(mode);
  notifyLock(*known, before, mode, globalName);
  return Acad::eOk;
}

Acad::ErrorStatus Documents::unlockDocument(AcApDocument* document) {
  HostDocument* known = find(document);
  if (known == nullptr) return Acad::eInvalidInput;
  const AcAp::DocLockMode before = known->myLockMode();
  if (!known->popLock()) return Acad::eNotApplicable;
  // A program that changed the drawing outside a command is done with it.
  if (!app_.commandActive() && known->myLockMode() == AcAp::kNone) known->undo().endStep({});
  notifyLock(*known, before, known->myLockMode(), nullptr);
  return Acad::eOk;
}

void Documents::activate(HostDocument& document) {
  if (current_ == &document) return;
  if (current_ != nullptr) {
    notify([&](AcApDocManagerReactor& r) { r.documentToBeDeactivated(current_); });
    // The screen may have got another size since the drawing was seen last.
    const ViewState& screen = current_->view();
    ViewState& view = document.view();
    view.height *= static_cast<double>(screen.pixelHeight) / view.pixelHeight;
    view.pixelWidth = screen.pixelWidth;
    view.pixelHeight = screen.pixelHeight;
  }
  notify([&](AcApDocManagerReactor& r) { r.documentToBeActivated(&document); });
  current_ = &document;
  acdbHostApplicationServices()->setWorkingDatabase(document.database());
  notify([&](AcApDocManagerReactor& r) { r.documentBecameCurrent(&document); });
  notify([&](AcApDocManagerReactor& r) { r.documentActivated(&document); });
}

Acad::ErrorStatus Documents::setCurDocument(AcApDocument* document, AcAp::DocLockMode, bool) {
  HostDocument* known = find(document);
  if (known == nullptr) return Acad::eInvalidInput;
  activate(*known);
  return Acad::eOk;
}

Acad::ErrorStatus Documents::sendStringToExecute(AcApDocument* document, const ACHAR* text, bool,
                                                 bool, bool) {
  if (find(document) == nullptr || text == nullptr) return Acad::eInvalidInput;
  app_.queueInput(toUtf8(text));
  return Acad::eOk;
}

void Documents::addReactor(AcApDocManagerReactor* reactor) {
  if (reactor == nullptr) return;
  if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) {
    reactors_.push_back(reactor);
  }
}

void Documents::removeReactor(AcApDocManagerReactor* reactor) {
  reactors_.erase(std::remove(reactors_.begin(), reactors_.end(), reactor), reactors_.end());
}

HostDocument& Documents::enter(std::unique_ptr<HostDocument> made) {
  HostDocument& document = *made;
  if (current_ != nullptr) {
    ViewState& view = document.view();
    view.pixelWidth = current_->view().pixelWidth;
    view.pixelHeight = current_->view().pixelHeight;
  }
  notify([&](AcApDocManagerReactor& r) { r.documentCreateStarted(&document); });
  documents_.push_back(std::move(made));
  notify([&](AcApDocManagerReactor& r) { r.documentCreated(&document); });
  return document;
}

HostDocument& Documents::create() {
  const std::string name = "Drawing" + std::to_string(++created_) + ".dxf";
  HostDocument& document =
      enter(std::make_unique<HostDocument>(app_, name, DrawingFile::createNew()));
  activate(document);
  return document;
}

HostDocument& Documents::add(const std::string& path, std::unique_ptr<DrawingFile> drawing) {
  auto made = std::make_unique<HostDocument>(app_, path, std::move(drawing));
  made->becameFile(path);
  return showNew(std::move(made));
}

HostDocument& Documents::addRecovered(const std::string& path, std::unique_ptr<DrawingFile> drawing,
                                      const std::optional<FileTimes>& times) {
  auto made = std::make_unique<HostDocument>(app_, path, std::move(drawing));
  made->becameRecovered(times);
  return showNew(std::move(made));
}

HostDocument& Documents::showNew(std::unique_ptr<HostDocument> made) {
  HostDocument* first = current_;
  HostDocument& document = enter(std::move(made));
  activate(document);
  const bool untouched = documents_.size() == 2 && first != nullptr && !first->hasFile() &&
                         !first->isModified() && created_ == 1;
  if (untouched) destroy(*first);
  return document;
}

HostDocument* Documents::ofFile(const std::string& path) const {
  for (const auto& document : documents_) {
    if (document->hasFile() && document->path() == path) return document.get();
  }
  return nullptr;
}

std::vector<HostDocument*> Documents::all() const {
  std::vector<HostDocument*> every;
  for (const auto& document : documents_) every.push_back(document.get());
  return every;
}

std::vector<HostDocument*> Documents::unsaved() const {
  std::vector<HostDocument*> changed;
  for (const auto& document : documents_) {
    if (document->isModified()) changed.push_back(document.get());
  }
  return changed;
}

void Documents::close(HostDocument& document) {
  if (current_ == &document) {
    HostDocument* next = nullptr;
    for (const auto& other : documents_) {
      if (other.get() != &document) next = other.get();
    }
    if (next != nullptr) {
      activate(*next);
    } else {
      create();
    }
  }
  destroy(document);
}

void Documents::bindRegisteredClasses() {
  for (const auto& document : documents_) document->drawing().bindRegisteredClasses();
}

void Documents::destroy(HostDocument& document) {
  const auto found = std::find_if(
      documents_.begin(), documents_.end(),
      [&](const std::unique_ptr<HostDocument>& one) { return one.get() == &document; });
  const std::wstring name = document.fileName();
  app_.autosave().forget(document);
  notify([&](AcApDocManagerReactor& r) { r.documentToBeDestroyed(&document); });
  if (acdbHostApplicationServices()->workingDatabase() == document.database()) {
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  }
  if (current_ == &document) current_ = nullptr;
  documents_.erase(found);
  notify([&](AcApDocManagerReactor& r) { r.documentDestroyed(name.c_str()); });
}

void Documents::endUndoStep(const std::string& name) {
  for (const auto& document : documents_) document->undo().endStep(name);
}

void Documents::closeAll() {
  while (!documents_.empty()) destroy(*documents_.back());
}

}  // namespace tarn::host
