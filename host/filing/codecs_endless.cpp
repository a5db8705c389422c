// Lines without an end.
#include "dbray.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

/// Without a direction it is no line.
template <class Entity>
AcDbEntity* readEndless(const EntityTags& tags) {
  AcDbEndlessLineValues values;
  values.base = tags.head.point(10);
  values.direction = tags.head.point(11).asVector();
  if (!(values.direction.length() > 0)) return nullptr;
  auto* line = new Entity;
  line->setValues(values);
  return line;
}

void writeEndless(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbEndlessLineValues& values = static_cast<const AcDbEndlessLine&>(entity).values();
  const AcGeVector3d& direction = values.direction;
  output.head.setPoint(10, values.base);
  output.head.setPoint(11, {direction.x, direction.y, direction.z});
}

}  // namespace

const std::vector<EntityCodec>& endlessLineCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"RAY", "AcDbRay", &AcDbRay::desc, readEndless<AcDbRay>, writeEndless, false, true},
      {"XLINE", "AcDbXline", &AcDbXline::desc, readEndless<AcDbXline>, writeEndless, false, true},
  };
  return codecs;
}

}  // namespace tarn::host
