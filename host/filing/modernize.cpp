// The file behind an open drawing replaced by one of a later version.
#include <algorithm>
#include <iterator>
#include <set>

#include "dbdict.h"
#include "dblayout.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingfile.h"
#include "host/filing/entitycodec.h"
#include "host/filing/objectcodec.h"
#include "host/filing/olddrawing.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

namespace {

/// False when something stands outside the sections, when a section is there twice, and for a
/// drawing that says it is of R12 and has objects all the same.
bool isWellFormed(const TagDocument& document) {
  std::set<std::string> names;
  std::uint32_t at = 0;
  for (const DrawingSection& section : document.sections()) {
    if (section.firstObject != at || !names.insert(section.name).second) return false;
    at = section.endObject + 1;
  }
  // Only the end mark may follow.
  return names.count("OBJECTS") == 0 && at + 1 >= document.objectCount();
}

}  // namespace

namespace {

/// A copy of something that stands in the file is written as that is.
bool isCopyOfKnown(const AcDbObject& object, const std::set<AcDbStub*>& known) {
  for (const AcDbObject* at = &object; at != nullptr;) {
    const AcDbObjectId source = ObjectAccess::copiedFrom(*at);
    if (known.count(source) > 0) return true;
    at = peek(source);
  }
  return false;
}

}  // namespace

std::string reasonAgainstOld(const DrawingBinding& binding) {
  std::set<AcDbStub*> known;
  for (const BoundObject& bound : binding.bound) known.insert(bound.id);
  for (const auto& [handle, slot] : ObjectAccess::state(*binding.database).stubs) {
    AcDbObject* object = slot->object.get();
    if (known.count(slot) > 0 || object->isErased() || !slot->changed) continue;
    const auto* entity = AcDbEntity::cast(object);
    if (object->isKindOf(AcDbSymbolTable::desc()) ||
        object->isKindOf(AcDbBlockTableRecord::desc())) {
      continue;
    }
    const ObjectAccess::Look look(*object);
    const auto* dictionary = AcDbDictionary::cast(object);
    if (dictionary != nullptr && dictionary->numEntries() == 0) continue;
    const bool fits = entity != nullptr ? codecFor(*entity, true) != nullptr
                                        : object->isKindOf(AcDbLayerTableRecord::desc()) ||
                                              definedTableOf(*object) != nullptr;
    if (fits || isCopyOfKnown(*object, known)) continue;
    const EntityCodec* newer = entity != nullptr ? codecFor(*entity, false) : nullptr;
    if (newer == nullptr || newer->isOwn)
      return "A drawing of R12 cannot keep images and settings.";
    return "A drawing of R12 cannot keep objects of kind " + std::string(newer->type) + ".";
  }
  return {};
}

Status modernize(DrawingBinding& binding) {
  if (!isWellFormed(binding.document)) {
    return Status::error(
        "The sections of this drawing of R12 are damaged or not those of R12; it cannot be made a "
        "drawing of R2000 and was not changed.");
  }
  ModernDrawing modern = modernDrawing(binding);
  auto parsed = TagDocument::parse(std::move(modern.bytes), "the drawing");
  if (!parsed) return parsed.status();
  binding.document = parsed.take();
  const TagDocument& document = binding.document;
  std::unordered_map<std::uint64_t, std::uint32_t> places;
  for (std::uint32_t i = 0; i < document.objectCount(); ++i) {
    if (document.handleOf(i) != 0) places.emplace(document.handleOf(i), i);
  }
  const auto placeOf = [&](std::uint64_t handle) {
    const auto found = places.find(handle);
    return found != places.end() ? found->second : 0;
  };
  binding.encoding = TextEncoding(document);
  binding.hasHandles = true;
  for (BoundObject& bound : binding.bound) bound.first = placeOf(bound.id.handle().value());
  for (auto each = binding.implied.begin(); each != binding.implied.end();) {
    AcDbStub* slot = *each;
    const std::uint32_t place = placeOf(slot->handle.value());
    if (place != 0) binding.bound.push_back({AcDbObjectId(slot), place, 1});
    // Newer drawings name every layer that an entity is on, and have a layout for every sheet.
    if (place == 0 && (slot->object->isKindOf(AcDbLayerTableRecord::desc()) ||
                       slot->object->isKindOf(AcDbLayout::desc()))) {
      ObjectAccess::setChanged(*slot->object);
    }
    each = place != 0 ? binding.implied.erase(each) : std::next(each);
  }
  const auto isGone = [](const BoundObject& bound) { return bound.first == 0; };
  binding.bound.erase(std::remove_if(binding.bound.begin(), binding.bound.end(), isGone),
                      binding.bound.end());
  std::sort(binding.bound.begin(), binding.bound.end(),
            [](const BoundObject& a, const BoundObject& b) { return a.first < b.first; });
  for (DrawingBinding::Waiting& waiting : binding.waiting) {
    waiting.object = placeOf(modern.handles[waiting.object]);
  }
  binding.blockEnds.erase(binding.modelSpace);
  binding.blockEnds.erase(binding.paperSpace);
  for (auto& [block, end] : binding.blockEnds) end = placeOf(modern.handles[end]);
  return {};
}

void raiseVersion(DrawingBinding& binding, std::string bytes) {
  auto parsed = TagDocument::parse(std::move(bytes), "the drawing");
  if (!parsed) return;
  const bool hadLayouts = binding.document.version() >= "AC1015";
  const TextEncoding before = binding.encoding;
  binding.document = parsed.take();
  binding.encoding = TextEncoding(binding.document);
  for (auto* names : {&binding.layers, &binding.linetypes}) {
    std::unordered_map<std::string, AcDbObjectId> renamed;
    for (const auto& [name, id] : *names) {
      renamed.emplace(binding.encoding.encode(before.decode(name)), id);
    }
    *names = std::move(renamed);
  }
  for (AcDbStub* slot : binding.implied) {
    if (!hadLayouts && slot->object->isKindOf(AcDbLayout::desc())) {
      ObjectAccess::setChanged(*slot->object);
    }
  }
}

}  // namespace tarn::host
