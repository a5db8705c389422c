#include "base/stagedfile.h"

#include "base/path.h"
#include "base/process.h"
#include "base/systemfile.h"
#include "base/text.h"

namespace tarn {

StagedFile::~StagedFile() {
  if (isNamed_) system::removeName(temporary_);
}

Status StagedFile::write(const std::string& path, std::string_view bytes) {
  auto target = linkTarget(path);
  if (!target) return target.status();
  target_ = target.take();
  temporary_ = target_ + ".tmp" + std::to_string(processNumber());
  const std::string folder = folderOf(target_);
  const bool isInRoot = folder.empty() && target_.front() == '/';
  if (!file_.createUnnamed(isInRoot ? "/" : folder, path)) {
    if (Status status = file_.create(temporary_, path); !status) return status;
    isNamed_ = true;
  }
  Status status = file_.takeRightsOf(target_);
  if (status) status = file_.writeAt(0, bytes.data(), bytes.size());
  return status ? file_.sync() : status;
}

Status StagedFile::commit() {
  // Closed in either case: not every system renames what is open.
  Status closed = isNamed_ ? file_.finish() : file_.nameIt(temporary_);
  if (!closed) return closed;
  isNamed_ = true;
  Status status = replaceFile(temporary_, target_);
  // Renamed, even when the folder could not be synced afterwards.
  isInPlace_ = status.isOk() || fileKind(temporary_) == FileKind::kMissing;
  isNamed_ = !isInPlace_;
  return status;
}

void removeLeftovers(const std::string& path) {
  const std::string begin = nameOf(path) + ".tmp";
  const std::string folder = folderOf(path);
  for (const std::string& name : listFolder(folder)) {
    int process = 0;
    if (name.compare(0, begin.size(), begin) != 0) continue;
    if (!parseInt(std::string_view(name).substr(begin.size()), process) || process <= 0) continue;
    if (!processLives(process)) static_cast<void>(removeAll(joinPath(folder, name)));
  }
}

}  // namespace tarn
