#include "host/editor/autosave.h"

#include <algorithm>

#include "base/path.h"
#include "base/stagedfile.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/sysvars.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

namespace {

constexpr char kFacts[] = ".facts";
constexpr char kLock[] = "lock";
constexpr std::uint64_t kMostFacts = 1 << 16;

/// What stands behind it in the names of copies and of their facts has room.
constexpr size_t kLongestStem = 200;

/// Cut between two letters.
std::string fitted(const std::string& stem) {
  size_t end = std::min(stem.size(), kLongestStem);
  while (end < stem.size() && end > 0 && (stem[end] & 0xC0) == 0x80) --end;
  return stem.substr(0, end);
}

std::string factsOf(const std::string& copy) {
  return copy + kFacts;
}

/// Numbers and version in the first line, the path behind it: it may hold anything.
std::string factsText(const HostDocument& document) {
  const SavedForm& form = document.drawing().form();
  const FileTimes times = document.times();
  return std::to_string(document.hasFile() ? 1 : 0) + " " + std::to_string(times.size) + " " +
         std::to_string(times.modifiedNs) + " " + (form.version.empty() ? "-" : form.version) +
         " " + (form.binary ? "1" : "0") + "\n" + document.path();
}

bool parseFacts(const std::string& text, LostDrawing& lost) {
  const size_t end = text.find('\n');
  if (end == std::string::npos) return false;
  const std::vector<std::string> words = split(std::string_view(text).substr(0, end), ' ');
  if (words.size() != 5) return false;
  lost.hadFile = words[0] == "1";
  lost.times.size = std::strtoull(words[1].c_str(), nullptr, 10);
  lost.times.modifiedNs = std::strtoll(words[2].c_str(), nullptr, 10);
  lost.form = {words[3] == "-" ? "" : words[3], words[4] == "1"};
  lost.original = text.substr(end + 1);
  return !lost.original.empty();
}

}  // namespace

AutoSave::AutoSave(HostApp& app) : app_(app), clock_([] { return Clock::now(); }) {}

AutoSave::~AutoSave() {
  if (!folder_.empty()) static_cast<void>(removeAll(folder_));
}

std::string AutoSave::rootFolder() const {
  const std::string& profile = app_.profile().folder();
  return profile.empty() ? profile : joinPath(profile, "autosave");
}

Status AutoSave::ownFolder() {
  if (!folder_.empty()) return {};
  const std::string root = rootFolder();
  if (Status status = makeFolders(root); !status) return status;
  auto made = makeTemporaryFolder(root, "session-");
  if (!made) return made.status();
  folder_ = made.take();
  return lock_.tryLock(joinPath(folder_, kLock));
}

std::string AutoSave::freeName(const HostDocument& document) const {
  const std::string name = nameOf(document.path());
  const std::string extension = extensionOf(name);
  const std::string stem = fitted(name.substr(0, name.size() - extension.size()));
  for (int number = 1;; ++number) {
    const std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
    std::string path = joinPath(folder_, stem + suffix + ".dxf");
    if (fileKind(path) == FileKind::kMissing) return path;
  }
}

/// The facts come last: a copy without them is none.
Status AutoSave::copy(HostDocument& document, Copied& state) {
  if (Status status = ownFolder(); !status) return status;
  const std::uint64_t changes = document.changes();
  const std::string path = state.path.empty() ? freeName(document) : state.path;
  StagedFile file;
  Status status = file.begin(path);
  if (status) {
    status = document.drawing().writeCopy(stateToSave(document),
                                          [&](std::string_view piece) { return file.add(piece); });
  }
  if (status) status = file.finish();
  if (status) status = file.commit();
  if (status) status = writeFileAtomically(factsOf(path), factsText(document));
  if (!status) return status;
  state.path = path;
  state.changes = changes;
  state.waits = false;
  return {};
}

void AutoSave::tick() {
  const short minutes = app_.variables().shortOf("SAVETIME");
  if (rootFolder().empty() || minutes <= 0) return;
  const Clock::time_point now = clock_();
  for (HostDocument* document : app_.documents().unsaved()) {
    Copied& state = copied_[document];
    if (state.changes == document->changes()) continue;
    if (!state.waits) {
      state.waits = true;
      state.since = now;
    }
    if (now - state.since < std::chrono::minutes(minutes)) continue;
    if (const Status status = copy(*document, state); !status) {
      state.since = now;
      app_.print("\nThe automatic copy of " + nameOf(document->path()) +
                 " failed: " + status.message() + "\n");
    }
  }
}

void AutoSave::forget(const HostDocument& document) {
  const auto found = copied_.find(&document);
  if (found == copied_.end()) return;
  if (const std::string& path = found->second.path; !path.empty()) {
    static_cast<void>(removeAll(factsOf(path)));
    static_cast<void>(removeAll(path));
  }
  copied_.erase(found);
}

std::vector<LostDrawing> AutoSave::lostDrawings() const {
  std::vector<LostDrawing> lost;
  const std::string root = rootFolder();
  if (root.empty()) return lost;
  for (const std::string& session : listFolder(root)) {
    const std::string folder = joinPath(root, session);
    FileLock lock;
    if (folder == folder_ || fileKind(joinPath(folder, kLock)) != FileKind::kRegular ||
        !lock.tryLock(joinPath(folder, kLock))) {
      continue;
    }
    for (const std::string& name : listFolder(folder)) {
      LostDrawing one;
      one.copy = joinPath(folder, name);
      const auto facts = readFile(factsOf(one.copy), kMostFacts);
      if (facts && parseFacts(facts.value(), one)) lost.push_back(std::move(one));
    }
  }
  return lost;
}

Status AutoSave::recover(const LostDrawing& lost) {
  auto opened = recoverDrawing(app_, lost);
  if (!opened) return opened.status();
  HostDocument& document = *opened.value();
  if (Status status = copy(document, copied_[&document]); !status) return status;
  discard(lost);
  return {};
}

void AutoSave::discard(const LostDrawing& lost) {
  static_cast<void>(removeAll(factsOf(lost.copy)));
  static_cast<void>(removeAll(lost.copy));
  const std::string folder = folderOf(lost.copy);
  const std::vector<std::string> left = listFolder(folder);
  if (left.size() <= 1) static_cast<void>(removeAll(folder));
}

namespace {

std::string namesOf(const std::vector<LostDrawing>& lost) {
  std::string names;
  for (const LostDrawing& one : lost) names += (names.empty() ? "" : ", ") + nameOf(one.original);
  return names;
}

std::string lossOf(const std::vector<LostDrawing>& lost) {
  return "The program ended before changes of " + namesOf(lost) +
         (lost.size() == 1 ? " were saved; there is an automatic copy."
                           : " were saved; there are automatic copies.");
}

}  // namespace

void offerRecovery(HostApp& app) {
  const std::vector<LostDrawing> lost = app.autosave().lostDrawings();
  if (lost.empty()) return;
  enum : size_t { kOpen, kDiscard };
  const size_t answer = app.ui().choose(lossOf(lost), {"Open", "Discard", "Later"}, kOpen);
  for (const LostDrawing& one : lost) {
    if (answer == kDiscard) app.autosave().discard(one);
    if (answer != kOpen) continue;
    const Status status = app.autosave().recover(one);
    app.print(
        "\n" +
        (status ? nameOf(one.original) + " recovered; it is not saved yet." : status.message()) +
        "\n");
  }
}

std::string recoveryNotice(HostApp& app) {
  const std::vector<LostDrawing> lost = app.autosave().lostDrawings();
  return lost.empty() ? std::string() : lossOf(lost) + " RECOVER opens or discards it.";
}

void recoverCommand() {
  HostApp& app = *HostApp::instance();
  if (app.autosave().lostDrawings().empty()) {
    app.print("\nThere is nothing to recover.\n");
  } else {
    offerRecovery(app);
  }
}

}  // namespace tarn::host
