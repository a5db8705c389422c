// What the file says of every entity beside its layer, colour and visibility.
#include "host/database/entityproperties.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

using Properties = EntityAccess::Properties;

/// Some entities have tags of the same codes behind marks of their own.
TagView commonPart(const TagView& tags) {
  const TagView common = tags.behind("AcDbEntity");
  return common.range().begin < tags.range().end ? common : tags;
}

double thicknessOf(const TagView& tags) {
  constexpr int kThickness = 39;
  if (!tags.has(kThickness)) return 0;
  const EntityCodec* codec = codecOf(tags.type());
  return tags.own(codec != nullptr ? codec->subclass : nullptr).real(kThickness);
}

Properties propertiesOf(DrawingBinding& binding, const TagView& tags) {
  Properties found;
  const TagView common = commonPart(tags);
  if (const Tag* name = common.find(6)) {
    found.linetype = binding.linetypeOf(binding.document.text(*name));
  }
  found.linetypeScale = common.real(48, found.linetypeScale);
  found.lineWeight = static_cast<Adesk::Int16>(common.integer(370, found.lineWeight));
  found.trueColor = common.integer(420, -1);
  found.transparency.serializeIn(static_cast<Adesk::UInt32>(common.integer(440)));
  found.thickness = thicknessOf(tags);
  return found;
}

}  // namespace

void readProperties(DrawingBinding& binding, const TagView& tags, AcDbEntity& entity) {
  EntityAccess::setProperties(entity, propertiesOf(binding, tags));
}

void writeProperties(DrawingBinding& binding, const AcDbEntity& entity, const BoundObject* old,
                     TagEditor& editor) {
  const Properties& now = EntityAccess::properties(entity);
  const Properties before =
      old != nullptr ? propertiesOf(binding, binding.view(old->first)) : Properties();
  const std::string_view version = binding.document.version();
  const bool isR13 = !editor.isOld();
  const bool isR2000 = isR13 && version >= "AC1015";
  const bool isR2004 = isR13 && version >= "AC1018";
  editor.enter("AcDbEntity");
  if (now.linetype != before.linetype) {
    editor.setName(6, now.linetype.isNull() ? L"ByLayer" : recordName(now.linetype));
  }
  if (isR13 && now.linetypeScale != before.linetypeScale) editor.setReal(48, now.linetypeScale);
  if (isR2000 && now.lineWeight != before.lineWeight) editor.setInteger(370, now.lineWeight);
  if (isR2004 && now.trueColor != before.trueColor) {
    // The name of a colour book goes with its colour.
    editor.remove({430});
    if (now.trueColor < 0) editor.remove({420});
    if (now.trueColor >= 0) editor.setInteger(420, now.trueColor);
  }
  if (isR2004 && now.transparency.serializeOut() != before.transparency.serializeOut()) {
    editor.setInteger(440, now.transparency.serializeOut());
  }
}

void writeThickness(const DrawingBinding& binding, const AcDbEntity& entity, const BoundObject* old,
                    TagEditor& editor) {
  const double now = EntityAccess::properties(entity).thickness;
  const double before = old != nullptr ? thicknessOf(binding.view(old->first)) : 0;
  if (now != before) editor.setReal(39, now);
}

}  // namespace tarn::host
