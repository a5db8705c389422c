#include "host/filing/erasedmembers.h"

#include <set>

#include "dbents.h"
#include "host/database/objectaccess.h"
#include "host/filing/renamedrecords.h"

namespace tarn::host {

namespace {

constexpr int kHandle = 5;
constexpr int kMember = 340;
constexpr int kOwned = 360;

using Handles = std::set<std::uint64_t>;

std::uint64_t handleOf(const TagDocument& document, const Tag& tag) {
  return parseHandle(document.word(tag));
}

/// What an entity owns beside its extension dictionary, which goes as an object of its own.
void addOwned(const TagDocument& document, std::uint32_t object, Handles& owned) {
  GroupWatch groups;
  const TagRange range = document.tagsOf(object);
  for (std::uint32_t i = range.begin; i < range.end; ++i) {
    const Tag& tag = document.tag(i);
    if (endsOwnTags(tag.code)) return;
    const bool inGroup = groups.pass(tag.code, [&] { return document.word(tag); });
    if (tag.code == kOwned && !inGroup) owned.insert(handleOf(document, tag));
  }
}

/// Empty when the group has none of them.
std::string withoutMembers(const DrawingBinding& binding, std::uint32_t group,
                           const Handles& erased) {
  const TagDocument& document = binding.document;
  const TagRange range = document.tagsOf(group);
  TagEditor editor = editorOf(binding, group);
  bool isChanged = false;
  for (std::uint32_t i = range.end; i-- > range.begin;) {
    const Tag& tag = document.tag(i);
    if (tag.code != kMember || erased.count(handleOf(document, tag)) == 0) continue;
    editor.removeAt(i - range.begin, 1);
    isChanged = true;
  }
  return isChanged ? editor.bytes() : std::string();
}

}  // namespace

void followErased(const DrawingBinding& binding, DrawingEdits& edits) {
  const TagDocument& document = binding.document;
  Handles erased;
  Handles owned;
  for (const BoundObject& bound : binding.bound) {
    if (!bound.id.isErased() || AcDbEntity::cast(peek(bound.id)) == nullptr) continue;
    erased.insert(bound.id.handle().value());
    if (document.typeOf(bound.first) == "IMAGE") addOwned(document, bound.first, owned);
  }
  const DrawingSection* objects = document.section("OBJECTS");
  if (erased.empty() || objects == nullptr) return;
  for (std::uint32_t i = objects->firstObject; i < objects->endObject; ++i) {
    const std::string_view type = document.typeOf(i);
    const bool isGroup = type == "GROUP";
    if (!isGroup && type != "IMAGEDEF_REACTOR") continue;
    const std::uint64_t handle = binding.view(i).reference(kHandle);
    // One that was changed or erased itself is written as such.
    const AcDbObjectId id = binding.find(handle);
    if (!id.isNull() && (id.isErased() || ObjectAccess::isChanged(id))) continue;
    if (!isGroup) {
      if (owned.count(handle) > 0) edits.replace(i, 1, {});
    } else if (std::string bytes = withoutMembers(binding, i, erased); !bytes.empty()) {
      edits.replace(i, 1, std::move(bytes));
    }
  }
}

}  // namespace tarn::host
