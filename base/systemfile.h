// What a system must do with files, one small function each; base/posix and base/windows have them.
// Where a call fails, lastSystemError() says why.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/result.h"

namespace tarn::system {

using Handle = std::intptr_t;
constexpr Handle kNoHandle = -1;

/// Opens a regular file; kNoHandle for everything else.
Handle openForReading(const std::string& path);
/// Opens a file to read and write; with `create` it is made or emptied.
Handle openForWriting(const std::string& path, bool create);
/// Opens a regular file as syncHandle() needs it.
Handle openToSync(const std::string& path);
/// False when something that was written could not be kept.
bool closeHandle(Handle handle);

/// Number of bytes read at an offset, 0 at the end, negative for a failure.
std::ptrdiff_t readSome(Handle handle, uint64_t offset, void* out, size_t size);
std::ptrdiff_t writeSome(Handle handle, uint64_t offset, const void* data, size_t size);
/// Waits until everything written is on the disk.
bool syncHandle(Handle handle);

/// Makes one folder. Fine when it is there.
bool makeFolder(const std::string& folder);
/// Removes one name: a file, a link, an empty folder. Fine when there is none.
bool removeName(const std::string& path);
/// A further name for a file; fails when that name is taken.
bool linkName(const std::string& path, const std::string& name);

/// "path: what: reason", with the reason of the last failed call.
Status failure(const std::string& path, const char* what);

}  // namespace tarn::system
