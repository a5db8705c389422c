// One object of a drawing while it is written anew.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "gepnt3d.h"
#include "gevec3d.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

/// Tags of one object. What is set to the value that it has keeps its text to the byte, comments
/// and unknown tags stay where they are, and a tag that is missing is put behind the one set
/// before.
class ACADHOST_EXPORT TagEditor {
 public:
  /// A new object of a type, to be written into `document`.
  TagEditor(const TagDocument& document, const TextEncoding& encoding, std::string_view type);
  /// An object that stands in `document`.
  TagEditor(const TagDocument& document, const TextEncoding& encoding, TagRange range);

  /// Makes the object one of its own, that began as a copy of this: another handle and owner (0
  /// for a drawing without), nobody's reactors, no dictionary. To be called first.
  void renew(std::uint64_t handle, std::uint64_t owner);
  /// The handle in a group of braces ("{ACAD_XDICTIONARY"); 0 takes the group away, one that is
  /// missing comes behind the object's own handle.
  void setGroupHandle(std::string_view group, int code, std::uint64_t handle);
  /// True for a drawing of R12 and before: there are no subclass marks and no owners.
  bool isOld() const { return old_; }
  /// True for an object that does not stand in the file.
  bool isNew() const { return new_; }
  /// What follows belongs behind this subclass mark, as TagView::behind() reads it. Where it is
  /// missing a new object gets it, and an old one is taken as a whole.
  void enter(std::string_view subclass);
  /// The same, as TagView::own() reads it: a tag that the part does not have is set where else it
  /// stands in the object.
  void enterOwn(const char* subclass);
  /// What follows are values of all codes, up to extended data, behind this mark.
  void enterValues(std::string_view subclass);
  /// The last of several equal marks; a new object gets one more. Without such a mark nothing
  /// changes.
  void enterLast(std::string_view subclass);
  /// What follows belongs into the object that later versions keep inside this one; false when
  /// there is none.
  bool enterEmbedded();
  /// What follows may stand behind any mark.
  void leave();
  /// What follows belongs to the next run of tags that begins with this code, behind the present
  /// mark. False when there is none left.
  bool nextRun(int code);

  // With `standard`, a missing tag of that value is not added.
  void setReal(int code, double value, std::optional<double> standard = std::nullopt);
  void setInteger(int code, long long value, std::optional<long long> standard = std::nullopt);
  /// Keeps what stands there when `same` says that it means the value.
  void setIntegerUnless(int code, long long value, long long standard,
                        const std::function<bool(long long)>& same);
  /// Sets the bits of `mask`; the others stay, in a new tag they are `others`.
  void setFlags(int code, int mask, int value, int others);
  /// Radians here, degrees in the file.
  void setAngle(int code, double radians, std::optional<double> standard = std::nullopt);
  void setText(int code, std::wstring_view value,
               std::optional<std::wstring_view> standard = std::nullopt);
  /// A name, which is the same whatever its case.
  void setName(int code, std::wstring_view value,
               std::optional<std::wstring_view> standard = std::nullopt);
  /// Type names, handles, marks: as they are.
  void setWord(int code, std::string_view value);
  void setHandle(int code, std::uint64_t handle) { setWord(code, formatHandle(handle)); }
  /// Codes `code`, + 10 and + 20; a missing z of 0 is added to new objects only.
  void setPoint(int code, const AcGePoint3d& point);
  void setNormal(const AcGeVector3d& normal);

  /// Adds a tag behind the one set before, whatever stands there.
  void addReal(int code, double value);
  void addInteger(int code, long long value);
  void addText(int code, std::wstring_view value) { addWord(code, encoding_.encode(value)); }
  void addWord(int code, std::string_view value);
  /// Takes away the tags of these codes behind the present mark, up to the next one and to extended
  /// data; what is set next comes into the place of the first.
  void remove(const std::vector<int>& codes);
  // One after the other: what stands behind the tag set last is kept, set or, from the first other
  // code on, replaced.
  void putReal(int code, double value);
  void putInteger(int code, long long value);
  void putText(int code, std::wstring_view value);
  void putWord(int code, std::string_view value);
  /// A handle of 0 leaves what stands there: it names something that is no object here.
  void putHandle(int code, std::uint64_t handle);
  bool isNext(int code) const;
  /// Radians, for the tag that stands next and is of this code; the very same keeps its text.
  void setNextAngle(int code, double radians);
  /// Goes behind the next tag of this code; false, and nothing happens, when there is none.
  bool goTo(int code);
  /// Takes away everything behind the tag set last, up to the end of the present part.
  void removeRest();
  /// Takes away the extended data; what is added next comes in its place.
  void removeExtended();
  /// Takes away `count` tags by their place in the object; for an object in which nothing was
  /// added.
  void removeAt(size_t place, size_t count);
  /// Place of the first tag behind the present mark.
  size_t placeBehindMark() const { return floor_; }
  /// Another value for the tag at a place.
  void replaceAt(size_t place, std::string_view value);
  /// Gives each tag the value that the function, which gets code and value, has for it; null for
  /// the one that it has.
  void replaceEach(const std::function<const std::string*(int, std::string_view)>& newValue);
  bool isChanged() const;
  /// What is added next comes at the end, before extended data.
  void toEnd();
  /// Number of tags of a code behind the present mark.
  size_t count(int code) const;
  /// True when what is set next at the code stands already.
  bool has(int code) const { return findItem(code) >= 0; }

  /// The bytes of the object, in the line ends of its drawing.
  std::string bytes() const;

 private:
  struct Item {
    int code = 0;
    std::string_view rawCode;   ///< the line of the code with its line end; empty in a new tag
    std::string_view rawValue;  ///< the value's line with its line end
    std::string value;          ///< a new value
    bool changed = false;
  };
  std::string_view valueOf(const Item& item) const;
  /// True, and looked at, when a tag of the code stands next; else everything that follows is gone.
  bool stands(int code);
  size_t endOfPart() const { return endOfPart(floor_); }
  size_t endOfPart(size_t from) const;
  /// Index of the first mark of a name, or 0.
  size_t findMark(std::string_view subclass) const;
  /// Index of the tag to set, or -1.
  std::ptrdiff_t findItem(int code) const;
  std::ptrdiff_t findBetween(size_t begin, size_t end, int code) const;
  template <typename Same>
  void set(int code, const std::string& value, bool isStandard, Same same);

  const TextEncoding& encoding_;
  std::string lineEnd_;
  bool old_;
  bool new_;
  bool acrossMarks_;
  bool elsewhere_ = false;    ///< tags may stand outside of the present part
  bool holdsValues_ = false;  ///< the present part has values of all codes
  int runCode_ = -1;
  std::vector<Item> items_;
  size_t floor_ = 1;   ///< where a search begins
  size_t cursor_ = 1;  ///< where a new tag comes
};

/// A number as drawings have it: the shortest text that reads back the same, with a point or an
/// exponent.
ACADHOST_EXPORT std::string formatReal(double value);

}  // namespace tarn::host
