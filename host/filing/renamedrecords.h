// Layers, line types, styles of texts and blocks whose names have changed since the file was read,
// and what names them there.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "host/filing/drawingbinding.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

/// A record that objects of a file name by its name.
enum class NamedKind { kLayer, kLinetype, kTextStyle, kBlock };

/// Entities, records, extended data and the header name records in the file; also those that no
/// class here understands, vertices and attributes follow a record that is renamed.
class RenamedRecords {
 public:
  explicit RenamedRecords(const DrawingBinding& binding);

  bool isEmpty() const { return names_.empty(); }
  /// By the index of an object of the file.
  bool isNamedIn(std::uint32_t object) const;
  /// Gives an object of the file, in which nothing has been changed yet, the new names.
  void apply(std::uint32_t object, TagEditor& editor) const;

 private:
  void compare(const DrawingBinding& binding, NamedKind kind, const std::wstring& before,
               AcDbObjectId id);
  const std::string* newName(NamedKind kind, std::string_view inFile) const;

  const TagDocument& document_;
  TextEncoding encoding_;
  /// By the name in the file, in lower case; as it is to stand there.
  std::map<std::pair<NamedKind, std::wstring>, std::string> names_;
};

/// An object of the file that is written again, with the names that records have now.
TagEditor editorOf(const DrawingBinding& binding, std::uint32_t object);

}  // namespace tarn::host
