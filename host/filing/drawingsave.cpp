#include "host/filing/drawingsave.h"

#include "base/path.h"

namespace tarn::host {

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{4} << 30;

}  // namespace

std::string backupOf(const std::string& path) {
  const std::string extension = extensionOf(path);
  return path.substr(0, path.size() - extension.size()) + ".bak";
}

Status saveDrawing(const std::string& path, std::string_view bytes) {
  const FileKind kind = fileKind(path);
  if (kind == FileKind::kFolder || kind == FileKind::kOther) {
    return Status::error(path + ": this is no file that a drawing can be saved to.");
  }
  if (kind == FileKind::kRegular) {
    if (!fileIsWritable(path)) {
      return Status::error(path + ": the file is read-only; nothing was saved.");
    }
    auto old = readFile(path, kMostBytes);
    if (!old) return Status::error(old.message() + "; nothing was saved.");
    if (Status status = writeFileAtomically(backupOf(path), old.value()); !status) {
      return Status::error(status.message() + "; the backup cannot be written, nothing was saved.");
    }
  }
  if (Status status = writeFileAtomically(path, bytes); !status) {
    return Status::error(status.message() + "; nothing was saved.");
  }
  return {};
}

}  // namespace tarn::host
