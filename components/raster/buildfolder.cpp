#include "components/raster/buildfolder.h"

#include "base/file.h"
#include "base/path.h"
#include "components/raster/pyramidstamp.h"

namespace tarn::raster {

std::string buildFolderPath(const std::string& target) {
  return joinPath(folderOf(target), ".tarnbuild-" + hashName(nameOf(target)));
}

std::string buildLockPath(const std::string& buildFolder) {
  return joinPath(buildFolder, "lock");
}

void removeDeadBuild(const std::string& target) {
  const std::string build = buildFolderPath(target);
  if (fileKind(build) != FileKind::kFolder) return;
  FileLock lock;
  if (!lock.tryLock(buildLockPath(build))) return;
  // What cannot be removed here belongs to another user, whose own next try removes it.
  static_cast<void>(removeAll(build));
}

BuildFolder::~BuildFolder() {
  // Nothing can be done about a leftover here; the next maker of the file removes it.
  if (!path_.empty()) static_cast<void>(removeAll(path_));
}

Status BuildFolder::make(const std::string& target) {
  removeDeadBuild(target);
  const std::string path = buildFolderPath(target);
  if (Status made = makeFolders(path); !made) return made;
  if (Status locked = lock_.tryLock(buildLockPath(path)); !locked) return locked;
  path_ = path;
  return Status::ok();
}

std::string BuildFolder::file(const std::string& name) const {
  return joinPath(path_, name);
}

}  // namespace tarn::raster
