// Dictionaries and extended records.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <set>

#include "acutads.h"
#include "acutmem.h"
#include "dbdict.h"
#include "dblayout.h"
#include "dbproxy.h"
#include "dbxrecrd.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/objectcodec.h"
#include "host/rx/resbuf_kind.h"

namespace tarn::host {

namespace {

struct ReleaseChain {
  void operator()(resbuf* chain) const { acutRelRb(chain); }
};
using Chain = std::unique_ptr<resbuf, ReleaseChain>;

void setBinary(resbuf& item, std::string_view digits) {
  const size_t count = std::min<size_t>(digits.size() / 2, 32767);
  item.resval.rbinary.buf = static_cast<char*>(std::malloc(count + 1));
  if (item.resval.rbinary.buf == nullptr) return;
  item.resval.rbinary.clen = static_cast<short>(count);
  for (size_t i = 0; i < count; ++i) {
    unsigned byte = 0;
    std::from_chars(digits.data() + 2 * i, digits.data() + 2 * i + 2, byte, 16);
    item.resval.rbinary.buf[i] = static_cast<char>(byte);
  }
}

long long wholeOf(std::string_view word) {
  long long value = 0;
  std::from_chars(word.data(), word.data() + word.size(), value);
  return value;
}

/// One value; the coordinates behind the first of a point are added by the caller.
resbuf* itemOf(const DrawingBinding& binding, const TagView& tags, const Tag& tag,
               ResbufKind kind) {
  resbuf* item = acutNewRb(tag.code);
  const std::string_view word = binding.document.word(tag);
  switch (kind) {
    case ResbufKind::kText:
      acutNewString(tags.textOf(tag).c_str(), item->resval.rstring);
      break;
    case ResbufKind::kPoint:
    case ResbufKind::kReal:
      item->resval.rreal = tags.realOf(tag);
      break;
    case ResbufKind::kInt16:
      item->resval.rint = static_cast<short>(wholeOf(word));
      break;
    case ResbufKind::kInt32:
      item->resval.rlong = static_cast<Adesk::Int32>(wholeOf(word));
      break;
    case ResbufKind::kInt64:
      item->resval.mnInt64 = wholeOf(word);
      break;
    case ResbufKind::kName:
      item->resval.rlname[0] = binding.find(parseHandle(word)).asOldId();
      break;
    case ResbufKind::kBinary:
      setBinary(*item, word);
      break;
    case ResbufKind::kUnknown:
    case ResbufKind::kNothing:
      break;
  }
  return item;
}

/// The values behind the mark and the cloning flag.
Chain valuesOf(const DrawingBinding& binding, const TagView& tags) {
  Chain chain;
  resbuf* last = nullptr;
  bool inside = false;
  bool flagSeen = false;
  resbuf* point = nullptr;
  tags.forEach([&](const Tag& tag) {
    if (tag.code == 100 && !inside) {
      inside = binding.document.word(tag) == "AcDbXrecord";
      return;
    }
    if (!inside || tag.code >= 999) return;
    if (tag.code == 280 && !flagSeen && chain == nullptr) {
      flagSeen = true;
      return;
    }
    if (point != nullptr && (tag.code == point->restype + 10 || tag.code == point->restype + 20)) {
      point->resval.rpoint[tag.code == point->restype + 10 ? 1 : 2] = tags.realOf(tag);
      return;
    }
    const ResbufKind kind = resbufKindOf(tag.code);
    if (kind == ResbufKind::kUnknown || tag.code < 1) return;
    resbuf* item = itemOf(binding, tags, tag, kind);
    point = kind == ResbufKind::kPoint ? item : nullptr;
    if (last == nullptr) {
      chain.reset(item);
    } else {
      last->rbnext = item;
    }
    last = item;
  });
  return chain;
}

/// False when something stands in the record that none here can hold; it is kept as it is then.
bool holdsOnlyValues(const TagView& tags) {
  bool good = true;
  tags.forEach([&](const Tag& tag) {
    good = good &&
           (tag.code == 0 || (tag.code < 999 && resbufKindOf(tag.code) != ResbufKind::kUnknown));
  });
  return good;
}

AcDbXrecord* makeRecord(const TagView& tags) {
  auto* record = new AcDbXrecord;
  record->setMergeStyle(static_cast<AcDb::DuplicateRecordCloning>(tags.integer(280, 1)));
  return record;
}

/// Null for a layout whose block is missing.
AcDbLayout* readLayout(const DrawingBinding& binding, const TagView& tags) {
  const TagView own = tags.behind("AcDbLayout");
  const AcDbObjectId block = binding.find(own.reference(330));
  if (AcDbBlockTableRecord::cast(peek(block)) == nullptr) return nullptr;
  auto* layout = new AcDbLayout;
  layout->setLayoutName(own.text(1).c_str());
  layout->setTabOrder(own.integer(71));
  layout->setBlockTableRecordId(block);
  LayoutAccess::setData(*layout, readPlotData(tags.behind("AcDbPlotSettings")));
  return layout;
}

void linkDictionary(DrawingBinding& binding, const BoundObject& bound) {
  auto* dictionary = AcDbDictionary::cast(peek(bound.id));
  if (dictionary == nullptr) return;
  for (const DictionaryEntry& entry : entriesOf(binding.view(bound.first))) {
    const AcDbObjectId id = binding.find(entry.handle);
    // An object may stand in one dictionary by one name; an entity is none of its objects.
    if (!id.isNull()) ObjectAccess::addEntryRead(*dictionary, entry.name, id);
  }
}

/// Every space gets its layout. One that is not in the file is not written either, until somebody
/// changes it.
void implyLayouts(DrawingBinding& binding) {
  std::set<AcDbStub*> before;
  auto& stubs = ObjectAccess::state(*binding.database).stubs;
  for (const auto& [handle, stub] : stubs) before.insert(stub);
  completeLayouts(*binding.database);
  for (const auto& [handle, stub] : stubs) {
    if (before.count(stub) == 0) binding.implied.insert(stub);
    // A broken layout of the same name has made room; in the file it stays.
    ObjectAccess::setErased(*stub->object, false);
    ObjectAccess::finishReading(*stub->object);
  }
}

}  // namespace

std::vector<DictionaryEntry> entriesOf(const TagView& tags) {
  std::vector<DictionaryEntry> entries;
  const TagRange range = tags.range();
  for (std::uint32_t i = range.begin; i + 1 < range.end; ++i) {
    const Tag& name = tags.document().tag(i);
    const Tag& handle = tags.document().tag(i + 1);
    if (name.code != 3 || (handle.code != 350 && handle.code != 360)) continue;
    entries.push_back({tags.textOf(name), parseHandle(tags.document().word(handle)), i});
  }
  return entries;
}

void bindDictionaries(DrawingBinding& binding) {
  const TagDocument& document = binding.document;
  const DrawingSection* section = document.section("OBJECTS");
  const size_t firstBound = binding.bound.size();
  AcDbObjectId& root = ObjectAccess::state(*binding.database).namedObjects;
  for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
       section != nullptr && i < section->endObject; ++i) {
    const TagView tags = binding.view(i);
    const std::string_view type = tags.type();
    AcDbObject* made = nullptr;
    if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT")
      made = new AcDbDictionary;
    else if (type == "XRECORD" && holdsOnlyValues(tags))
      made = makeRecord(tags);
    else if (type == "LAYOUT")
      made = readLayout(binding, tags);
    if (made == nullptr) made = new AcDbProxyObject(std::wstring(type.begin(), type.end()));
    const AcDbObjectId id = binding.add(made, i);
    if (root.isNull() && type == "DICTIONARY") root = id;
  }
  if (root.isNull()) root = binding.addImplied(new AcDbDictionary);
  for (size_t i = firstBound; i < binding.bound.size(); ++i) {
    const BoundObject& bound = binding.bound[i];
    linkDictionary(binding, bound);
    auto* record = AcDbXrecord::cast(peek(bound.id));
    if (record == nullptr) continue;
    const Chain chain = valuesOf(binding, binding.view(bound.first));
    if (chain == nullptr) continue;
    ObjectAccess::beginRestore(*record);
    record->setFromRbChain(*chain);
    ObjectAccess::finishReading(*record);
  }
  implyLayouts(binding);
}

}  // namespace tarn::host
