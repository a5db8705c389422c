// Dictionaries and extended records.
#include <algorithm>
#include <set>

#include "dbdict.h"
#include "dblayout.h"
#include "dbproxy.h"
#include "dbxrecrd.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/objectcodec.h"
#include "host/filing/tagvalues.h"
#include "host/rx/resbuf_kind.h"
#include "sorttab.h"

namespace tarn::host {

namespace {

/// The values behind the mark and the cloning flag.
ResbufChain valuesOf(const DrawingBinding& binding, const TagView& tags) {
  bool inside = false;
  bool flagSeen = false;
  bool first = true;
  return chainOf(binding, tags, [&](const Tag& tag) {
    if (tag.code == 100 && !inside) {
      inside = binding.document.word(tag) == "AcDbXrecord";
      return false;
    }
    if (!inside || tag.code >= 999) return false;
    const bool isFlag = tag.code == 280 && !flagSeen && first;
    flagSeen = flagSeen || isFlag;
    first = first && isFlag;
    return !isFlag;
  });
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

/// Whether frames of images and wipeouts are seen.
void readFrameMode(const TagView& tags, DatabaseState& state) {
  const auto mode = static_cast<Adesk::Int16>(tags.integer(70, 1));
  if (tags.type() == "RASTERVARIABLES") state.header.imageFrame = mode;
  if (tags.type() == "WIPEOUTVARIABLES") state.header.wipeoutFrame = mode;
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
  for (const auto& [handle, slot] : stubs) before.insert(slot);
  completeLayouts(*binding.database);
  for (const auto& [handle, slot] : stubs) {
    if (before.count(slot) == 0) binding.implied.insert(slot);
    // A broken layout of the same name has made room; in the file it stays.
    ObjectAccess::setErased(*slot->object, false);
    ObjectAccess::finishReading(*slot->object);
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
    readFrameMode(tags, ObjectAccess::state(*binding.database));
    AcDbObject* made = nullptr;
    if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT")
      made = new AcDbDictionary;
    else if (type == "XRECORD" && holdsOnlyValues(tags))
      made = makeRecord(tags);
    else if (type == "LAYOUT")
      made = readLayout(binding, tags);
    else if (type == "SORTENTSTABLE")
      made = readSortTable(binding, tags);
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
    const ResbufChain chain = valuesOf(binding, binding.view(bound.first));
    if (chain == nullptr) continue;
    ObjectAccess::beginRestore(*record);
    record->setFromRbChain(*chain);
    ObjectAccess::finishReading(*record);
  }
  linkExtensions(binding, firstBound);
  implyLayouts(binding);
}

}  // namespace tarn::host
