#include "host/filing/tageditor.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "host/filing/tagview.h"

namespace tarn::host {

namespace {

constexpr int kMark = 100;
constexpr int kGroup = 102;
constexpr int kEmbedded = 101;
constexpr int kFirstExtended = 1000;

std::string codeLine(int code) {
  std::string digits = std::to_string(code);
  if (digits.size() < 3) digits.insert(0, 3 - digits.size(), ' ');
  return digits;
}

bool sameReal(std::string_view text, double value) {
  double read = 0;
  return parseDouble(text, read) && read == value;
}

bool sameInteger(std::string_view text, long long value) {
  // Small whole numbers read exactly as doubles, and "1.0" is one of them.
  return sameReal(text, static_cast<double>(value));
}

}  // namespace

std::string formatReal(double value) {
  if (!std::isfinite(value)) value = 0;
  std::string text = formatDouble(value);
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

TagEditor::TagEditor(const TagDocument& document, const TextEncoding& encoding,
                     std::string_view type)
    : encoding_(encoding),
      lineEnd_(document.lineEnd()),
      old_(document.isOld()),
      new_(true),
      acrossMarks_(old_) {
  Item item;
  item.value = type;
  item.changed = true;
  items_.push_back(std::move(item));
}

TagEditor::TagEditor(const TagDocument& document, const TextEncoding& encoding, TagRange range)
    : encoding_(encoding),
      lineEnd_(document.lineEnd()),
      old_(document.isOld()),
      new_(false),
      acrossMarks_(old_) {
  const std::string_view bytes = document.bytes();
  items_.reserve(range.end - range.begin);
  for (std::uint32_t i = range.begin; i < range.end; ++i) {
    const Tag& tag = document.tag(i);
    const size_t start = document.startOf(i);
    Item item;
    item.code = tag.code;
    item.rawCode = bytes.substr(start, tag.offset - start);
    item.rawValue = bytes.substr(tag.offset, document.startOf(i + 1) - tag.offset);
    items_.push_back(std::move(item));
  }
}

void TagEditor::renew(std::uint64_t handle, std::uint64_t owner) {
  GroupWatch groups;
  const auto isOfGroup = [&](const Item& item) {
    return groups.pass(item.code, [&] { return trim(valueOf(item)); });
  };
  items_.erase(std::remove_if(items_.begin(), items_.end(), isOfGroup), items_.end());
  if (handle != 0) setHandle(5, handle);
  if (owner != 0 && !old_) setHandle(330, owner);
}

void TagEditor::setGroupHandle(std::string_view group, int code, std::uint64_t handle) {
  const auto isBegin = [&](const Item& item) {
    return item.code == kGroup && trim(valueOf(item)) == group;
  };
  const auto begin = std::find_if(items_.begin(), items_.end(), isBegin);
  const auto isEnd = [](const Item& item) { return item.code == kGroup; };
  const auto end = begin != items_.end() ? std::find_if(begin + 1, items_.end(), isEnd) : begin;
  const auto makeItem = [](int itemCode, std::string value) {
    Item item;
    item.code = itemCode;
    item.value = std::move(value);
    item.changed = true;
    return item;
  };
  if (begin != items_.end() && end != items_.end()) {
    const auto place = static_cast<size_t>(begin - items_.begin());
    if (handle == 0) return removeAt(place, static_cast<size_t>(end - begin) + 1);
    const auto own = std::find_if(begin, end, [&](const Item& item) { return item.code == code; });
    if (own != end)
      return replaceAt(static_cast<size_t>(own - items_.begin()), formatHandle(handle));
  }
  if (handle == 0 || begin != items_.end()) return;
  const auto isHandle = [](const Item& item) { return item.code == 5 || item.code == 105; };
  const auto behind = std::find_if(items_.begin(), items_.end(), isHandle);
  const auto at = behind != items_.end() ? behind + 1 : items_.begin() + 1;
  items_.insert(at, {makeItem(kGroup, std::string(group)), makeItem(code, formatHandle(handle)),
                     makeItem(kGroup, "}")});
}

std::string_view TagEditor::valueOf(const Item& item) const {
  if (item.changed) return item.value;
  std::string_view line = item.rawValue;
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

size_t TagEditor::endOfPart(size_t from) const {
  for (size_t i = from; i < items_.size(); ++i) {
    const int code = items_[i].code;
    if (holdsValues_ ? code >= kFirstExtended : endsOwnTags(code)) return i;
    if (code == kMark && !acrossMarks_) return i;
    if (code == runCode_ && i > floor_) return i;
  }
  return items_.size();
}

size_t TagEditor::findMark(std::string_view subclass) const {
  for (size_t i = 1; i < items_.size() && !endsOwnTags(items_[i].code); ++i) {
    if (items_[i].code == kMark && trim(valueOf(items_[i])) == subclass) return i;
  }
  return 0;
}

void TagEditor::enter(std::string_view subclass) {
  leave();
  if (const size_t mark = findMark(subclass)) {
    acrossMarks_ = false;
    floor_ = cursor_ = mark + 1;
  } else if (new_ && !old_) {
    acrossMarks_ = false;
    toEnd();
    addWord(kMark, subclass);
    floor_ = cursor_;
  }
}

void TagEditor::enterOwn(const char* subclass) {
  subclass != nullptr ? enter(subclass) : leave();
  elsewhere_ = !new_;
}

void TagEditor::enterValues(std::string_view subclass) {
  enter(subclass);
  acrossMarks_ = holdsValues_ = true;
}

bool TagEditor::enterEmbedded() {
  for (size_t i = 1; i < items_.size(); ++i) {
    if (items_[i].code != kEmbedded) continue;
    leave();
    floor_ = cursor_ = i + 1;
    return true;
  }
  return false;
}

void TagEditor::enterLast(std::string_view subclass) {
  if (new_ && !old_) {
    toEnd();
    addWord(kMark, subclass);
    floor_ = cursor_;
    return;
  }
  const size_t first = findMark(subclass);
  for (size_t i = first; first > 0 && i < items_.size() && !endsOwnTags(items_[i].code); ++i) {
    if (items_[i].code != kMark || trim(valueOf(items_[i])) != subclass) continue;
    floor_ = cursor_ = i + 1;
  }
}

void TagEditor::leave() {
  runCode_ = -1;
  acrossMarks_ = true;
  elsewhere_ = holdsValues_ = false;
  floor_ = 1;
}

bool TagEditor::nextRun(int code) {
  const size_t from = runCode_ == code ? floor_ + 1 : floor_;
  runCode_ = -1;
  const size_t end = endOfPart();
  for (size_t i = from; i < end; ++i) {
    if (items_[i].code != code) continue;
    floor_ = cursor_ = i;
    runCode_ = code;
    return true;
  }
  return false;
}

void TagEditor::toEnd() {
  size_t end = items_.size();
  while (end > 1 && items_[end - 1].code >= kFirstExtended) --end;
  cursor_ = end;
}

std::ptrdiff_t TagEditor::findBetween(size_t begin, size_t end, int code) const {
  GroupWatch groups;
  for (size_t i = begin; i < end; ++i) {
    const bool inGroup = groups.pass(items_[i].code, [&] { return trim(valueOf(items_[i])); });
    if (items_[i].code == code && (!inGroup || code == kGroup)) {
      return static_cast<std::ptrdiff_t>(i);
    }
  }
  return -1;
}

std::ptrdiff_t TagEditor::findItem(int code) const {
  const std::ptrdiff_t found = findBetween(floor_, endOfPart(), code);
  if (found >= 0 || !elsewhere_ || runCode_ >= 0) return found;
  size_t end = 1;
  while (end < items_.size() && !endsOwnTags(items_[end].code)) ++end;
  return findBetween(1, end, code);
}

size_t TagEditor::count(int code) const {
  const auto end = items_.begin() + static_cast<std::ptrdiff_t>(endOfPart());
  return static_cast<size_t>(std::count_if(items_.begin() + static_cast<std::ptrdiff_t>(floor_),
                                           end,
                                           [&](const Item& item) { return item.code == code; }));
}

template <typename Same>
void TagEditor::set(int code, const std::string& value, bool isStandard, Same same) {
  const std::ptrdiff_t found = findItem(code);
  if (found < 0) {
    if (!isStandard) addWord(code, value);
    return;
  }
  Item& item = items_[static_cast<size_t>(found)];
  const auto place = static_cast<size_t>(found);
  if (place >= floor_ && place < endOfPart()) cursor_ = place + 1;
  if (same(valueOf(item))) return;
  item.value = value;
  item.changed = true;
}

void TagEditor::setReal(int code, double value, std::optional<double> standard) {
  set(code, formatReal(value), standard == value,
      [&](std::string_view text) { return sameReal(text, value); });
}

void TagEditor::setInteger(int code, long long value, std::optional<long long> standard) {
  set(code, std::to_string(value), standard == value,
      [&](std::string_view text) { return sameInteger(text, value); });
}

void TagEditor::setIntegerUnless(int code, long long value, long long standard,
                                 const std::function<bool(long long)>& same) {
  set(code, std::to_string(value), value == standard, [&](std::string_view text) {
    double read = 0;
    const bool isNumber = parseDouble(text, read) && std::abs(read) < 1e9;
    return same(isNumber ? static_cast<long long>(read) : standard);
  });
}

void TagEditor::setFlags(int code, int mask, int value, int others) {
  const std::ptrdiff_t found = findItem(code);
  if (found < 0 && value == 0 && !new_) return;
  int now = others;
  if (found >= 0) parseInt(valueOf(items_[static_cast<size_t>(found)]), now);
  setInteger(code, (now & ~mask) | value);
}

void TagEditor::setAngle(int code, double radians, std::optional<double> standard) {
  set(code, formatReal(radians / kDegree), standard == radians, [&](std::string_view text) {
    double read = 0;
    return parseDouble(text, read) && read * kDegree == radians;
  });
}

void TagEditor::setText(int code, std::wstring_view value,
                        std::optional<std::wstring_view> standard) {
  set(code, encoding_.encode(value), standard == value,
      [&](std::string_view text) { return encoding_.decode(text) == value; });
}

void TagEditor::setName(int code, std::wstring_view value,
                        std::optional<std::wstring_view> standard) {
  set(code, encoding_.encode(value), standard == value, [&](std::string_view text) {
    return equalsIgnoreCase(std::wstring_view(encoding_.decode(trim(text))), value);
  });
}

void TagEditor::setWord(int code, std::string_view value) {
  set(code, std::string(value), false, [&](std::string_view text) { return trim(text) == value; });
}

void TagEditor::setPoint(int code, const AcGePoint3d& point) {
  setReal(code, point.x);
  setReal(code + 10, point.y);
  setReal(code + 20, point.z, new_ ? std::nullopt : std::optional<double>(0));
}

void TagEditor::setNormal(const AcGeVector3d& normal) {
  const bool isStandard = normal.x == 0 && normal.y == 0 && normal.z == 1;
  if (isStandard && findItem(210) < 0) return;
  // A direction that was not of length 1 in the file is the same direction.
  const std::ptrdiff_t found = findItem(210);
  double parts[3] = {0, 0, 1};
  for (int i = 0; i < 3 && found >= 0; ++i) {
    const std::ptrdiff_t at = findItem(210 + 10 * i);
    if (at >= 0) parseDouble(valueOf(items_[static_cast<size_t>(at)]), parts[i]);
  }
  const AcGeVector3d before = AcGeVector3d(parts[0], parts[1], parts[2]).normal();
  if (found >= 0 && before.x == normal.x && before.y == normal.y && before.z == normal.z) return;
  setReal(210, normal.x);
  setReal(220, normal.y);
  setReal(230, normal.z);
}

void TagEditor::addReal(int code, double value) {
  addWord(code, formatReal(value));
}

void TagEditor::addInteger(int code, long long value) {
  addWord(code, std::to_string(value));
}

void TagEditor::addWord(int code, std::string_view value) {
  Item item;
  item.code = code;
  item.value = value;
  item.changed = true;
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(cursor_), std::move(item));
  ++cursor_;
}

void TagEditor::remove(const std::vector<int>& codes) {
  bool isFirst = true;
  for (size_t i = floor_; i < endOfPart();) {
    if (std::find(codes.begin(), codes.end(), items_[i].code) == codes.end()) {
      ++i;
      continue;
    }
    if (isFirst) cursor_ = i;
    isFirst = false;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

bool TagEditor::isNext(int code) const {
  return cursor_ < items_.size() && items_[cursor_].code == code;
}

void TagEditor::setNextAngle(int code, double radians) {
  floor_ = cursor_;
  setAngle(code, radians);
}

bool TagEditor::goTo(int code) {
  const std::ptrdiff_t found = findBetween(cursor_, endOfPart(cursor_), code);
  if (found >= 0) floor_ = cursor_ = static_cast<size_t>(found) + 1;
  return found >= 0;
}

bool TagEditor::stands(int code) {
  if (isNext(code)) {
    floor_ = cursor_;
    return true;
  }
  removeRest();
  return false;
}

void TagEditor::putReal(int code, double value) {
  stands(code) ? setReal(code, value) : addReal(code, value);
}

void TagEditor::putInteger(int code, long long value) {
  stands(code) ? setInteger(code, value) : addInteger(code, value);
}

void TagEditor::putText(int code, std::wstring_view value) {
  stands(code) ? setText(code, value) : addText(code, value);
}

void TagEditor::putWord(int code, std::string_view value) {
  stands(code) ? setWord(code, value) : addWord(code, value);
}

void TagEditor::putHandle(int code, std::uint64_t handle) {
  if (handle == 0 && isNext(code)) {
    ++cursor_;
  } else {
    putWord(code, formatHandle(handle));
  }
}

void TagEditor::removeRest() {
  const size_t end = endOfPart(cursor_);
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(cursor_),
               items_.begin() + static_cast<std::ptrdiff_t>(end));
}

void TagEditor::removeExtended() {
  toEnd();
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(cursor_), items_.end());
}

void TagEditor::removeAt(size_t place, size_t count) {
  const auto first = items_.begin() + static_cast<std::ptrdiff_t>(place);
  items_.erase(first, first + static_cast<std::ptrdiff_t>(count));
}

void TagEditor::replaceAt(size_t place, std::string_view value) {
  items_[place].value = value;
  items_[place].changed = true;
}

void TagEditor::replaceEach(
    const std::function<const std::string*(int, std::string_view)>& newValue) {
  for (size_t i = 0; i < items_.size(); ++i) {
    const std::string* value = newValue(items_[i].code, valueOf(items_[i]));
    if (value != nullptr) replaceAt(i, *value);
  }
}

bool TagEditor::isChanged() const {
  return std::any_of(items_.begin(), items_.end(), [](const Item& item) { return item.changed; });
}

std::string TagEditor::bytes() const {
  std::string out;
  for (const Item& item : items_) {
    if (item.rawCode.empty()) {
      out += codeLine(item.code) + lineEnd_;
    } else {
      out += item.rawCode;
    }
    if (item.changed) {
      out += item.value + lineEnd_;
    } else {
      out += item.rawValue;
    }
  }
  return out;
}

}  // namespace tarn::host
