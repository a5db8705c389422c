// Extension dictionaries in drawing files.
#include <algorithm>
#include <unordered_map>

#include "dbdict.h"
#include "host/database/objectaccess.h"
#include "host/filing/objectcodec.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

namespace {

constexpr char kGroup[] = "{ACAD_XDICTIONARY";
constexpr int kOwned = 360;
constexpr int kOwner = 330;

/// A handle of the object: in the group of that name, or outside of all groups. 0 for none.
std::uint64_t handleIn(const TagDocument& document, TagRange range, std::string_view group,
                       int code) {
  std::string_view open;
  for (std::uint32_t i = range.begin + 1; i < range.end; ++i) {
    const Tag& tag = document.tag(i);
    if (tag.code == 100 || tag.code == 0) break;
    if (tag.code == 102) open = document.word(tag) == "}" ? "" : document.word(tag);
    if (tag.code == code && open == group) return parseHandle(document.word(tag));
  }
  return 0;
}

}  // namespace

void linkExtensions(DrawingBinding& binding, size_t firstObject) {
  const TagDocument& document = binding.document;
  std::unordered_map<AcDbStub*, AcDbObjectId> byOwner;
  bool onlyObjects = true;
  for (size_t i = firstObject; i < binding.bound.size(); ++i) {
    const BoundObject& bound = binding.bound[i];
    if (document.typeOf(bound.first) != "DICTIONARY") continue;
    const AcDbObjectId owner =
        binding.find(handleIn(document, document.tagsOf(bound.first), {}, kOwner));
    const AcDbObject* object = peek(owner);
    if (object == nullptr) continue;
    byOwner.emplace(owner, bound.id);
    onlyObjects = onlyObjects && object->isKindOf(AcDbDictionary::desc());
  }
  for (size_t i = onlyObjects ? firstObject : 0; i < binding.bound.size(); ++i) {
    const BoundObject& bound = binding.bound[i];
    const auto found = byOwner.find(bound.id);
    if (found == byOwner.end()) continue;
    // One owner may have several dictionaries; its group names the one.
    const AcDbObjectId named =
        binding.find(handleIn(document, document.tagsOf(bound.first), kGroup, kOwned));
    AcDbObject* dictionary = peek(named);
    if (dictionary == nullptr || document.isOld()) continue;
    ObjectAccess::setExtension(*peek(bound.id), named);
    ObjectAccess::setOwner(*dictionary, bound.id);
  }
}

void writeExtension(const DrawingBinding& binding, const AcDbObject& object, const BoundObject* old,
                    TagEditor& editor) {
  if (editor.isOld()) return;
  AcDbObjectId now = ObjectAccess::extension(object);
  if (now.isErased()) now.setNull();
  AcDbObjectId before;
  if (old != nullptr) {
    const TagDocument& document = binding.document;
    before = binding.find(handleIn(document, document.tagsOf(old->first), kGroup, kOwned));
  }
  // What could not be taken for the object's own stays as it is.
  const bool isGone = now.isNull() && !before.isNull() && before.isErased();
  if (now == before || (now.isNull() && !isGone)) return;
  editor.setGroupHandle(kGroup, kOwned, now.handle().value());
}

}  // namespace tarn::host
