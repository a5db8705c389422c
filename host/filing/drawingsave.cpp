#include "host/filing/drawingsave.h"

#include "base/path.h"
#include "base/stagedfile.h"

namespace tarn::host {

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{4} << 30;

/// A second name for the old file costs nothing; where the disk has none the bytes are copied.
Status keepBackup(const std::string& path) {
  const std::string backup = backupOf(path);
  if (giveSecondName(path, backup)) return {};
  auto old = readFile(path, kMostBytes);
  return old ? writeFileAtomically(backup, old.value()) : old.status();
}

}  // namespace

std::string backupOf(const std::string& path) {
  const std::string extension = extensionOf(path);
  return path.substr(0, path.size() - extension.size()) + ".bak";
}

Status saveDrawing(const std::string& path, const DrawingPieces& pieces) {
  auto found = linkTarget(path);
  if (!found) return Status::error(found.message() + "; nothing was saved.");
  const std::string target = found.take();
  const FileKind kind = fileKind(target);
  if (kind == FileKind::kFolder || kind == FileKind::kOther) {
    return Status::error(path + ": this is no file that a drawing can be saved to.");
  }
  if (kind == FileKind::kRegular && !fileIsWritable(target)) {
    return Status::error(path + ": the file is read-only; nothing was saved.");
  }
  removeLeftovers(target);
  removeLeftovers(backupOf(target));
  StagedFile file;
  Status written = file.begin(target);
  if (written) {
    const Status given = pieces([&](std::string_view piece) { return written = file.add(piece); });
    if (written && !given) return given;
  }
  if (written) written = file.finish();
  if (!written) return Status::error(written.message() + "; nothing was saved.");
  if (kind == FileKind::kRegular) {
    if (Status status = keepBackup(target); !status) {
      return Status::error(status.message() + "; the backup cannot be kept, nothing was saved.");
    }
  }
  if (Status status = file.commit(); !status) {
    return Status::error(file.isInPlace() ? path +
                                                ": the drawing is saved, but a failure of the "
                                                "power may bring the old one back (" +
                                                status.message() + ")."
                                          : status.message() + "; nothing was saved.");
  }
  return {};
}

}  // namespace tarn::host
