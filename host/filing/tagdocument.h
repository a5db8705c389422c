// A drawing file as it stands: its bytes, and where each tag and each object begins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"
#include "base/result.h"

namespace tarn::host {

/// A group code and where its value stands in the bytes (the line without its line end).
struct Tag {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;
  std::int16_t code = 0;
};

/// A run of tags by index, `end` not included.
struct TagRange {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

/// A section between its SECTION and its ENDSEC; objects by index.
struct DrawingSection {
  std::string name;
  std::uint32_t firstObject = 0;  ///< the SECTION itself
  std::uint32_t endObject = 0;    ///< the ENDSEC, or what stands in its place
};

/// An ASCII drawing. An object is what begins with a tag of code 0, markers like SECTION and
/// ENDTAB included. Nothing is interpreted and nothing is changed: the bytes of any run of tags,
/// comments and line ends included, can be had again.
class ACADHOST_EXPORT TagDocument {
 public:
  TagDocument() = default;

  /// Takes the bytes of a file. Refused, with the line, when something else than a group code
  /// stands where one is due, and when there is no section at all. A file that ends too early is
  /// taken up to its last whole tag, and isComplete() is false. `name` is for the messages.
  static Result<TagDocument> parse(std::string bytes, const std::string& name);

  /// Whole objects out of a drawing of this version whose bytes come in parts: of those that are
  /// not the last only the bytes of whole objects are taken. There need be no section.
  static Result<TagDocument> partOf(std::string bytes, std::string_view version, bool isLast);

  const std::string& bytes() const { return bytes_; }
  const std::vector<Tag>& tags() const { return tags_; }
  const Tag& tag(std::uint32_t index) const { return tags_[index]; }
  const std::vector<DrawingSection>& sections() const { return sections_; }
  /// Null when there is no such section.
  const DrawingSection* section(std::string_view name) const;
  /// Damaged files have several of one name.
  std::vector<DrawingSection> sectionsNamed(std::string_view name) const;

  std::uint32_t objectCount() const { return static_cast<std::uint32_t>(objects_.size()); }
  TagRange tagsOf(std::uint32_t object) const;
  /// What stands after the code 0.
  std::string_view typeOf(std::uint32_t object) const;
  /// The handle of an object; 0 when it has none.
  std::uint64_t handleOf(std::uint32_t object) const;
  /// The highest handle of all objects.
  std::uint64_t highestHandle() const;

  /// A value as it stands, without the line end.
  std::string_view text(const Tag& tag) const;
  /// The same without white space around it: names of types, numbers, handles.
  std::string_view word(const Tag& tag) const;
  /// Where the line of a tag's group code begins; for the index after the last tag, where the last
  /// value's line has ended.
  size_t startOf(std::uint32_t tag) const;
  /// The number of the line on which a tag's group code stands, from 1.
  size_t lineOf(std::uint32_t tag) const;

  std::string_view lineEnd() const { return hasReturns_ ? "\r\n" : "\n"; }
  /// False when the end mark is missing.
  bool isComplete() const { return complete_; }
  /// True when something other than white space follows the end mark.
  bool hasTrailingBytes() const;

  /// The first tag after a variable's name in the header, all its tags; empty when it is missing.
  TagRange headerVariable(std::string_view name) const;
  /// "AC1015"; empty when the header does not say.
  std::string_view version() const { return version_; }
  /// True for R12 and before, which know neither objects nor classes.
  bool isOld() const { return version_ < "AC1012"; }

 private:
  Status readTags(const std::string& name);
  void findObjects();

  std::string bytes_;
  std::vector<Tag> tags_;
  std::vector<std::uint32_t> objects_;  ///< index of the first tag
  std::vector<DrawingSection> sections_;
  std::string version_;
  bool hasReturns_ = false;
  bool complete_ = false;
};

/// A handle's hexadecimal digits as a number; 0 when they are none.
ACADHOST_EXPORT std::uint64_t parseHandle(std::string_view digits);
ACADHOST_EXPORT std::string formatHandle(std::uint64_t handle);

}  // namespace tarn::host
