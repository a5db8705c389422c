// Filled triangles and quadrangles, faces.
#include "dbtrace.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kFirstPoint = 10;

/// A triangle may leave the fourth point out.
AcDbTrace::Points pointsOf(const TagView& tags) {
  AcDbTrace::Points points;
  for (int i = 0; i < 4; ++i) points[static_cast<size_t>(i)] = tags.point(kFirstPoint + i);
  if (!tags.has(kFirstPoint + 3)) points[3] = points[2];
  return points;
}

void writePoints(const AcDbTrace& trace, TagEditor& head) {
  const AcDbTrace::Points& points = trace.ownPoints();
  for (int i = 0; i < 4; ++i) {
    const AcGePoint3d& point = points[static_cast<size_t>(i)];
    const bool isLeftOut = i == 3 && !head.isNew() && !head.has(kFirstPoint + 3);
    const AcGeVector3d apart = point - points[2];
    if (!isLeftOut || apart.length() > 0) head.setPoint(kFirstPoint + i, point);
  }
}

template <class Entity>
AcDbEntity* readTrace(const EntityTags& tags) {
  auto* trace = new Entity;
  trace->setOwn(pointsOf(tags.head), tags.head.normal());
  return trace;
}

void writeTrace(const AcDbEntity& entity, EntityOutput& output) {
  const auto& trace = static_cast<const AcDbTrace&>(entity);
  writePoints(trace, output.head);
  output.head.setNormal(trace.normal());
}

AcDbEntity* readFace(const EntityTags& tags) {
  auto* face = new AcDbFace;
  face->setOwn(pointsOf(tags.head), AcGeVector3d::kZAxis);
  face->setHiddenEdges(static_cast<short>(tags.head.integer(70)));
  return face;
}

void writeFace(const AcDbEntity& entity, EntityOutput& output) {
  const auto& face = static_cast<const AcDbFace&>(entity);
  writePoints(face, output.head);
  output.head.setInteger(70, face.hiddenEdges(), 0);
}

}  // namespace

const std::vector<EntityCodec>& traceCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"TRACE", "AcDbTrace", &AcDbTrace::desc, readTrace<AcDbTrace>, writeTrace, true, true, false,
       true},
      {"SOLID", "AcDbTrace", &AcDbSolid::desc, readTrace<AcDbSolid>, writeTrace, true, true, false,
       true},
      {"3DFACE", "AcDbFace", &AcDbFace::desc, readFace, writeFace, true, true},
  };
  return codecs;
}

}  // namespace tarn::host
