// Values of one object of a drawing, by group code.
#pragma once

#include <optional>
#include <string>

#include "gepnt3d.h"
#include "gevec3d.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

/// Angles stand in degrees in files and in radians everywhere else.
constexpr double kDegree = 3.141592653589793 / 180;

/// Where an object's own tags end, in reading and in writing: at extended data and at an object
/// that is embedded in it.
constexpr bool endsOwnTags(int code) {
  return code == 101 || code >= 1000;
}

/// Follows the groups of braces, in which handles stand that are no values of the object. One that
/// is not closed ends at the next mark.
class GroupWatch {
 public:
  /// True for a tag inside of a group and for its brackets. `word` gives the tag's value.
  template <typename Word>
  bool pass(int code, Word word) {
    constexpr int kMark = 100;
    constexpr int kBracket = 102;
    if (code == kBracket) inside_ = word().substr(0, 1) == "{";
    if (code == kMark) inside_ = false;
    return inside_ || code == kBracket;
  }

 private:
  bool inside_ = false;
};

/// Reads a run of tags, up to an object embedded in it. Where a code comes several times the first
/// outside of groups counts. A number that is none reads as the standard value.
class ACADHOST_EXPORT TagView {
 public:
  TagView(const TagDocument& document, const TextEncoding& encoding, TagRange range)
      : document_(&document), encoding_(&encoding), range_(range), whole_(range) {}
  TagView(const TagDocument& document, const TextEncoding& encoding, std::uint32_t object)
      : TagView(document, encoding, document.tagsOf(object)) {}

  const TagDocument& document() const { return *document_; }
  const TextEncoding& encoding() const { return *encoding_; }
  TagRange range() const { return range_; }
  /// The whole object, of which this may be a part.
  TagView whole() const { return {*document_, *encoding_, whole_}; }
  std::string_view type() const { return document_->word(document_->tag(whole_.begin)); }

  /// The part behind a subclass mark of the object, as TagEditor::enter() finds it; empty when
  /// there is no such mark.
  TagView behind(std::string_view mark) const;
  /// The same, for objects that other programs write with their tags in wrong places, as
  /// TagEditor::enterOwn() finds it: what is missing behind the mark is looked for in the whole
  /// object, which counts as the part when the mark is missing or `mark` is null.
  TagView own(const char* mark) const;
  /// The object that R2018 keeps inside of this one, as TagEditor::enterEmbedded() finds it; empty
  /// when there is none.
  TagView embedded() const;

  /// The first tag of the code; null when there is none.
  const Tag* find(int code) const;
  bool has(int code) const { return find(code) != nullptr; }
  double real(int code, double standard = 0) const;
  int integer(int code, int standard = 0) const;
  /// In radians.
  double angle(int code, double standard = 0) const;
  std::uint64_t reference(int code) const;
  std::wstring text(int code) const;
  /// Coordinates at `code`, `code` + 10 and `code` + 20; a missing one is 0.
  AcGePoint3d point(int code) const;
  /// Codes 210, 220, 230; the z axis when they are missing or have no length.
  AcGeVector3d normal() const;

  double realOf(const Tag& tag, double standard = 0) const;
  int integerOf(const Tag& tag, int standard = 0) const;
  std::wstring textOf(const Tag& tag) const { return encoding_->decode(document_->text(tag)); }

  /// The tags of the part.
  template <typename Work>
  void forEach(Work work) const {
    for (std::uint32_t i = range_.begin; i < range_.end; ++i) work(document_->tag(i));
  }

 private:
  const TagDocument* document_;
  const TextEncoding* encoding_;
  TagRange range_;
  TagRange whole_;  ///< where behind() and own() look, and find() what the part does not have
};

}  // namespace tarn::host
