#include "components/raster/guardedfiles.h"

#include <cpl_vsi.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"

namespace tarn::raster {
namespace {

constexpr const char* kRoot = "/vsitarn/";
// GDAL takes in whole what is of this kind.
constexpr const char* kTextEnding = ".xml";

/// One of the two.
struct GuardedFolder {
  std::string image;
  std::shared_ptr<const RemoteBytes> bytes;
};

struct Folders {
  std::mutex mutex;
  std::map<int, GuardedFolder> images;
  int next = 1;
};

Folders& folders() {
  static Folders instance;
  return instance;
}

thread_local uint64_t t_bytesRead = 0;

/// What stands behind "<id>/<name>": the real path of a file, or an image's bytes; neither when
/// that image may not see that file.
GuardedFolder behind(const char* virtualName) {
  std::string name = virtualName;
  if (name.compare(0, std::strlen(kRoot), kRoot) == 0) name.erase(0, std::strlen(kRoot));
  // On Windows GDAL puts the other separator before the name of an image's part.
  const size_t slash = name.find_first_of("/\\");
  int id = 0;
  if (slash == std::string::npos || !parseInt(name.substr(0, slash), id)) return {};
  GuardedFolder folder;
  {
    const std::lock_guard<std::mutex> lock(folders().mutex);
    const auto found = folders().images.find(id);
    if (found == folders().images.end()) return {};
    folder = found->second;
  }
  const std::string wanted = name.substr(slash + 1);
  if (folder.bytes) return wanted == kRemoteName ? folder : GuardedFolder{};
  const std::string& image = folder.image;
  if (!isSideFileName(nameOf(image), wanted)) return {};
  const std::string path = joinPath(folderOf(image), wanted);
  const bool isText = equalsIgnoreCase(extensionOf(wanted), kTextEnding);
  if (isText && fileTimes(path).size > kMostSideFileBytes) return {};
  return {path, nullptr};
}

struct OpenFile {
  std::shared_ptr<const RandomBytes> bytes;
  uint64_t size = 0;
  uint64_t position = 0;
  bool atEnd = false;
};

int statFile(void*, const char* name, VSIStatBufL* out, int) {
  const GuardedFolder found = behind(name);
  FileTimes times;
  if (found.bytes) {
    times.size = found.bytes->size();
  } else if (!found.image.empty() && fileKind(found.image) == FileKind::kRegular) {
    times = fileTimes(found.image);
  } else {
    return -1;
  }
  std::memset(out, 0, sizeof *out);
  out->st_size = static_cast<decltype(out->st_size)>(times.size);
  out->st_mode = S_IFREG;
  out->st_mtime = static_cast<decltype(out->st_mtime)>(times.modifiedNs / 1000000000);
  return 0;
}

void* openFile(void*, const char* name, const char* access) {
  if (std::strpbrk(access, "wa+")) return nullptr;
  const GuardedFolder found = behind(name);
  auto opened = std::make_unique<OpenFile>();
  if (found.bytes) {
    opened->bytes = found.bytes;
    opened->size = found.bytes->size();
    return opened.release();
  }
  auto file = std::make_shared<RandomFile>();
  if (found.image.empty() || !file->open(found.image)) return nullptr;
  opened->bytes = std::move(file);
  opened->size = fileTimes(found.image).size;
  return opened.release();
}

vsi_l_offset tellFile(void* file) {
  return static_cast<OpenFile*>(file)->position;
}

int seekFile(void* file, vsi_l_offset offset, int whence) {
  auto* opened = static_cast<OpenFile*>(file);
  const uint64_t base = whence == SEEK_SET   ? 0
                        : whence == SEEK_CUR ? opened->position
                                             : opened->size;
  opened->position = base + offset;
  opened->atEnd = false;
  return 0;
}

size_t readFileBytes(void* file, void* buffer, size_t size, size_t count) {
  auto* opened = static_cast<OpenFile*>(file);
  if (size == 0 || count == 0) return 0;
  const uint64_t left = opened->size > opened->position ? opened->size - opened->position : 0;
  const uint64_t wanted = static_cast<uint64_t>(size) * count;
  const uint64_t bytes = std::min(left, wanted);
  opened->atEnd = bytes < wanted;
  if (bytes > 0 && !opened->bytes->readAt(opened->position, buffer, bytes)) {
    opened->atEnd = true;
    return 0;
  }
  opened->position += bytes;
  t_bytesRead += bytes;
  return static_cast<size_t>(bytes / size);
}

int endOfFile(void* file) {
  return static_cast<OpenFile*>(file)->atEnd ? 1 : 0;
}

int closeFile(void* file) {
  const std::unique_ptr<OpenFile> closed(static_cast<OpenFile*>(file));
  return 0;
}

bool startsWithDotAfter(const std::string& name, const std::string& start) {
  return name.size() > start.size() && name[start.size()] == '.' &&
         equalsIgnoreCase(std::string_view(name).substr(0, start.size()), start);
}

}  // namespace

bool isSideFileName(const std::string& imageName, const std::string& name) {
  if (name.find_first_of("/\\") != std::string::npos) return false;
  return name == imageName || startsWithDotAfter(name, imageName) ||
         startsWithDotAfter(name, stemOf(imageName));
}

int openGuardedFolder(const std::string& imagePath) {
  const std::lock_guard<std::mutex> lock(folders().mutex);
  const int id = folders().next++;
  folders().images[id] = {imagePath, nullptr};
  return id;
}

int openGuardedBytes(std::shared_ptr<const RemoteBytes> bytes) {
  const std::lock_guard<std::mutex> lock(folders().mutex);
  const int id = folders().next++;
  folders().images[id] = {{}, std::move(bytes)};
  return id;
}

void closeGuardedFolder(int id) {
  const std::lock_guard<std::mutex> lock(folders().mutex);
  folders().images.erase(id);
}

std::string guardedPrefix(int id) {
  return kRoot + std::to_string(id) + "/";
}

uint64_t guardedBytesOfThread() {
  return t_bytesRead;
}

void installGuardedFiles() {
  VSIFilesystemPluginCallbacksStruct* callbacks = VSIAllocFilesystemPluginCallbacksStruct();
  callbacks->stat = statFile;
  callbacks->open = openFile;
  callbacks->tell = tellFile;
  callbacks->seek = seekFile;
  callbacks->read = readFileBytes;
  callbacks->eof = endOfFile;
  callbacks->close = closeFile;
  VSIInstallPluginHandler(kRoot, callbacks);
  VSIFreeFilesystemPluginCallbacksStruct(callbacks);
}

}  // namespace tarn::raster
