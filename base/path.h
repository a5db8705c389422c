// Paths as texts. Both '/' and '\' separate, so a path written on another system still splits.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// What stands before the last '\' or '/', without it; empty when there is neither.
std::string folderOf(std::string_view path);
std::wstring folderOf(std::wstring_view path);

/// What stands after the last '\' or '/'; the whole path when there is neither.
std::string nameOf(std::string_view path);
std::wstring nameOf(std::wstring_view path);

/// The ending of the name with its dot (".tif"), in its own case; empty when there is none.
std::string extensionOf(std::string_view path);

/// The name without its ending.
std::string stemOf(std::string_view path);

/// `folder` and `name` joined by '/', unless the folder is empty or ends in a separator already.
std::string joinPath(std::string_view folder, std::string_view name);

/// `relative` below an absolute folder whose parts are no links: without "." and doubled
/// separators, and each ".." at its beginning takes a part from the folder. A ".." further inside
/// stays, since what stands before it may be a link.
std::string pathBelow(std::string folder, const std::string& relative);

/// `path` with the piece `a<separator>b` replaced by `to`; the separator may be '/' or '\'.
std::wstring replacePathPiece(std::wstring path, std::wstring_view a, std::wstring_view b,
                              std::wstring_view to);

}  // namespace tarn
