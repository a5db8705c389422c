#include "host/editor/entityfilter.h"

#include <string>
#include <string_view>

#include "acutmem.h"
#include "adsdef.h"
#include "base/text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace tarn::host {

namespace {

constexpr short kOperator = -4;

bool fitsPattern(std::wstring_view text, std::wstring_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == L'*') {
    for (size_t i = 0; i <= text.size(); ++i) {
      if (fitsPattern(text.substr(i), pattern.substr(1))) return true;
    }
    return false;
  }
  if (text.empty()) return false;
  if (pattern.front() != L'?' && pattern.front() != text.front()) return false;
  return fitsPattern(text.substr(1), pattern.substr(1));
}

bool fitsText(const ACHAR* text, const ACHAR* patterns) {
  const std::wstring lower = toLower(std::wstring_view(text != nullptr ? text : L""));
  const std::wstring wanted = toLower(std::wstring_view(patterns != nullptr ? patterns : L""));
  for (const std::wstring& pattern : split(wanted, L',')) {
    if (fitsPattern(lower, pattern)) return true;
  }
  return false;
}

bool isInPaperSpace(const AcDbEntity& entity) {
  const AcDbObjectPointer<AcDbBlockTableRecord> block(entity.blockId(), AcDb::kForRead);
  const ACHAR* name = nullptr;
  return block.openStatus() == Acad::eOk && block->getName(name) == Acad::eOk &&
         fitsText(name, L"*paper_space*");
}

bool isOnLayer(const AcDbEntity& entity, const ACHAR* patterns) {
  ACHAR* layer = entity.layer();
  const bool fits = fitsText(layer, patterns);
  acutDelString(layer);
  return fits;
}

bool fitsItem(const AcDbEntity& entity, const resbuf& item) {
  switch (item.restype) {
    case 0:
      return fitsText(entity.isA()->dxfName(), item.resval.rstring);
    case 8:
      return isOnLayer(entity, item.resval.rstring);
    case 60:
      return entity.visibility() == static_cast<AcDb::Visibility>(item.resval.rint);
    case 62:
      return entity.colorIndex() == item.resval.rint;
    default:
      return isInPaperSpace(entity) == (item.resval.rint != 0);
  }
}

enum class Group { kAnd, kOr, kNot };

bool opens(const resbuf& item, Group& group) {
  if (item.restype != kOperator || item.resval.rstring == nullptr) return false;
  const std::wstring_view text = item.resval.rstring;
  if (equalsIgnoreCase(text, std::wstring_view(L"<and"))) group = Group::kAnd;
  if (equalsIgnoreCase(text, std::wstring_view(L"<or"))) group = Group::kOr;
  if (equalsIgnoreCase(text, std::wstring_view(L"<not"))) group = Group::kNot;
  return !text.empty() && text.front() == L'<';
}

/// Reads items up to the end of their group and leaves `item` there.
bool fitsGroup(const AcDbEntity& entity, const resbuf*& item, Group group) {
  bool all = true;
  bool any = false;
  for (; item != nullptr; item = item->rbnext) {
    Group inner = Group::kAnd;
    bool fits = false;
    if (opens(*item, inner)) {
      item = item->rbnext;
      fits = fitsGroup(entity, item, inner);
      if (item == nullptr) break;
    } else if (item->restype == kOperator) {
      break;
    } else {
      fits = fitsItem(entity, *item);
    }
    all = all && fits;
    any = any || fits;
  }
  if (group == Group::kNot) return !any;
  return group == Group::kOr ? any : all;
}

bool isOperatorKnown(const ACHAR* text, int& depth) {
  if (text == nullptr) return false;
  for (const std::wstring_view name : {L"and", L"or", L"not"}) {
    if (equalsIgnoreCase(std::wstring_view(text), L"<" + std::wstring(name))) {
      ++depth;
      return true;
    }
    if (equalsIgnoreCase(std::wstring_view(text), std::wstring(name) + L">")) return --depth >= 0;
  }
  return false;
}

}  // namespace

bool isFilterKnown(const resbuf* filter) {
  int depth = 0;
  for (const resbuf* item = filter; item != nullptr; item = item->rbnext) {
    switch (item->restype) {
      case 0:
      case 8:
      case 60:
      case 62:
      case 67:
        break;
      case kOperator:
        if (!isOperatorKnown(item->resval.rstring, depth)) return false;
        break;
      default:
        return false;
    }
  }
  return depth == 0;
}

bool fitsFilter(const AcDbEntity& entity, const resbuf* filter) {
  return fitsGroup(entity, filter, Group::kAnd);
}

}  // namespace tarn::host
