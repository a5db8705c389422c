#include "base/stagedfile.h"

#include <algorithm>

#include "base/path.h"
#include "base/process.h"
#include "base/systemfile.h"
#include "base/text.h"

namespace tarn {

namespace {

constexpr size_t kGathered = size_t{1} << 18;
constexpr char kMark[] = ".tmp";
/// Names have up to 255 bytes; the mark and the number of a process come behind.
constexpr size_t kLongestStem = 240;

std::string stemOf(const std::string& path) {
  return nameOf(path).substr(0, kLongestStem) + kMark;
}

}  // namespace

std::string temporaryNameOf(const std::string& path) {
  const std::string folder = path.substr(0, path.size() - nameOf(path).size());
  return folder + stemOf(path) + std::to_string(processNumber());
}

StagedFile::~StagedFile() {
  if (isNamed_) system::removeName(temporary_);
}

Status StagedFile::begin(const std::string& path) {
  auto target = linkTarget(path);
  if (!target) return target.status();
  target_ = target.take();
  temporary_ = temporaryNameOf(target_);
  const std::string folder = folderOf(target_);
  const bool isInRoot = folder.empty() && target_.front() == '/';
  if (!file_.createUnnamed(isInRoot ? "/" : folder, path)) {
    if (Status status = file_.create(temporary_, path); !status) return status;
    isNamed_ = true;
  }
  return file_.takeRightsOf(target_);
}

Status StagedFile::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const size_t count = std::min(bytes.size(), kGathered - gathered_.size());
    gathered_.append(bytes.substr(0, count));
    bytes.remove_prefix(count);
    if (gathered_.size() < kGathered) continue;
    if (Status status = flush(); !status) return status;
  }
  return {};
}

Status StagedFile::flush() {
  if (gathered_.empty()) return {};
  const Status status = file_.writeAt(written_, gathered_.data(), gathered_.size());
  written_ += gathered_.size();
  gathered_.clear();
  return status;
}

Status StagedFile::finish() {
  const Status status = flush();
  return status ? file_.sync() : status;
}

Status StagedFile::write(const std::string& path, std::string_view bytes) {
  Status status = begin(path);
  if (status) status = add(bytes);
  return status ? finish() : status;
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
  const std::string begin = stemOf(path);
  const std::string folder = folderOf(path);
  for (const std::string& name : listFolder(folder)) {
    int process = 0;
    if (name.compare(0, begin.size(), begin) != 0) continue;
    if (!parseInt(std::string_view(name).substr(begin.size()), process) || process <= 0) continue;
    if (!processLives(process)) static_cast<void>(removeAll(joinPath(folder, name)));
  }
}

}  // namespace tarn
