#include "base/file.h"

#include <algorithm>
#include <utility>

#include "base/path.h"
#include "base/process.h"
#include "base/stagedfile.h"
#include "base/systemfile.h"

namespace tarn {
namespace {

using system::failure;
using system::kNoHandle;

Status openFailure(const std::string& path) {
  const Status reason = failure(path, "cannot open");
  const FileKind kind = fileKind(path);
  const bool isOther = kind == FileKind::kOther || kind == FileKind::kFolder;
  return isOther ? Status::error(path + ": is not a regular file") : reason;
}

}  // namespace

Status system::failure(const std::string& path, const char* what) {
  return Status::error(path + ": " + what + ": " + lastSystemError());
}

Status makeFolders(const std::string& folder) {
  if (folder.empty() || fileKind(folder) == FileKind::kFolder) return Status::ok();
  if (Status above = makeFolders(folderOf(folder)); !above) return above;
  return system::makeFolder(folder) ? Status::ok() : failure(folder, "cannot make the folder");
}

Status removeAll(const std::string& path) {
  if (isFolderItself(path)) {
    for (const std::string& name : listFolder(path)) {
      if (Status inner = removeAll(joinPath(path, name)); !inner) return inner;
    }
  }
  return system::removeName(path) ? Status::ok() : failure(path, "cannot remove");
}

Result<std::string> readFile(const std::string& path, uint64_t limit) {
  const system::Handle handle = system::openForReading(path);
  if (handle == kNoHandle) return openFailure(path);
  std::string bytes;
  bytes.reserve(static_cast<size_t>(std::min(fileTimes(path).size, limit)) + 1);
  char buffer[65536];
  std::ptrdiff_t count = 0;
  while ((count = system::readSome(handle, bytes.size(), buffer, sizeof buffer)) > 0) {
    bytes.append(buffer, static_cast<size_t>(count));
    if (bytes.size() > limit) break;
  }
  const Status failed = count < 0 ? failure(path, "cannot read") : Status::ok();
  system::closeHandle(handle);
  if (!failed) return failed;
  if (bytes.size() > limit)
    return Status::error(path + ": larger than " + std::to_string(limit) + " bytes");
  return bytes;
}

Status syncFile(const std::string& path) {
  const system::Handle handle = system::openToSync(path);
  if (handle == kNoHandle) return openFailure(path);
  const Status status = system::syncHandle(handle) ? Status::ok() : failure(path, "cannot sync");
  system::closeHandle(handle);
  return status;
}

Status giveSecondName(const std::string& path, const std::string& second) {
  const std::string temporary = temporaryNameOf(second);
  system::removeName(temporary);
  if (!system::linkName(path, temporary)) return failure(second, "cannot link");
  Status status = replaceFile(temporary, second);
  // Also there when both names were those of one file before.
  system::removeName(temporary);
  return status;
}

Status writeFileAtomically(const std::string& path, std::string_view bytes) {
  StagedFile file;
  const Status status = file.write(path, bytes);
  return status ? file.commit() : status;
}

RandomFile::~RandomFile() {
  close();
}

RandomFile::RandomFile(RandomFile&& other) noexcept
    : handle_(std::exchange(other.handle_, kNoHandle)) {}

RandomFile& RandomFile::operator=(RandomFile&& other) noexcept {
  if (this != &other) {
    close();
    handle_ = std::exchange(other.handle_, kNoHandle);
  }
  return *this;
}

Status RandomFile::open(const std::string& path) {
  close();
  handle_ = system::openForReading(path);
  return isOpen() ? Status::ok() : openFailure(path);
}

void RandomFile::close() {
  if (isOpen()) system::closeHandle(std::exchange(handle_, kNoHandle));
}

bool RandomFile::readAt(uint64_t offset, void* out, size_t size) const {
  auto* at = static_cast<char*>(out);
  while (size > 0) {
    const std::ptrdiff_t count = system::readSome(handle_, offset, at, size);
    if (count <= 0) return false;
    at += count;
    offset += static_cast<uint64_t>(count);
    size -= static_cast<size_t>(count);
  }
  return true;
}

OutputFile::~OutputFile() {
  if (handle_ != kNoHandle) system::closeHandle(handle_);
}

Status OutputFile::create(const std::string& path, const std::string& shown) {
  path_ = shown.empty() ? path : shown;
  handle_ = system::openForWriting(path, true);
  return handle_ != kNoHandle ? Status::ok() : failure(path_, "cannot create");
}

Status OutputFile::openExisting(const std::string& path) {
  path_ = path;
  handle_ = system::openForWriting(path, false);
  return handle_ != kNoHandle ? Status::ok() : failure(path, "cannot open");
}

Status OutputFile::writeAt(uint64_t offset, const void* data, size_t size) {
  const auto* at = static_cast<const char*>(data);
  while (size > 0) {
    const std::ptrdiff_t count = system::writeSome(handle_, offset, at, size);
    if (count <= 0) return failure(path_, "cannot write");
    at += count;
    offset += static_cast<uint64_t>(count);
    size -= static_cast<size_t>(count);
  }
  return Status::ok();
}

Status OutputFile::sync() {
  return system::syncHandle(handle_) ? Status::ok() : failure(path_, "cannot sync");
}

Status OutputFile::close() {
  return system::closeHandle(std::exchange(handle_, kNoHandle)) ? Status::ok()
                                                                : failure(path_, "cannot close");
}

Status OutputFile::finish() {
  const Status status = sync();
  return status ? close() : status;
}

}  // namespace tarn
