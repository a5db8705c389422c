// Polylines, inserted blocks, viewports.
#include <cmath>

#include "dbpl.h"
#include "dbtable.h"
#include "host/database/objectaccess.h"
#include "host/filing/codecs_texts.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kClosed = 1;
constexpr int kCurveFit = 2;
constexpr int kSplineFit = 4;
constexpr int kInSpace = 8;
constexpr int kMesh = 16;
constexpr int kFaces = 64;

// ---- LWPOLYLINE -------------------------------------------------------------------------------

std::vector<AcDbPolylineVertex> lightVertices(const TagView& tags) {
  std::vector<AcDbPolylineVertex> vertices;
  const double width = tags.real(43);
  tags.forEach([&](const Tag& tag) {
    if (tag.code == 10) {
      AcDbPolylineVertex vertex;
      vertex.point.x = tags.realOf(tag);
      vertex.startWidth = vertex.endWidth = width;
      vertices.push_back(vertex);
    }
    if (vertices.empty()) return;
    AcDbPolylineVertex& last = vertices.back();
    if (tag.code == 20) last.point.y = tags.realOf(tag);
    if (tag.code == 40) last.startWidth = tags.realOf(tag);
    if (tag.code == 41) last.endWidth = tags.realOf(tag);
    if (tag.code == 42) last.bulge = tags.realOf(tag);
  });
  return vertices;
}

AcDbEntity* readLight(const EntityTags& tags) {
  auto* line = new AcDbPolyline;
  line->setVertices(lightVertices(tags.head));
  line->setClosed((tags.head.integer(70) & kClosed) != 0);
  line->setElevation(tags.head.real(38));
  line->setNormal(tags.head.normal());
  return line;
}

void writeLightVertices(const std::vector<AcDbPolylineVertex>& vertices, EntityOutput& output) {
  TagEditor& head = output.head;
  const double width = output.old != nullptr ? output.old->head.real(43) : 0;
  const bool sameNumber = output.old != nullptr && head.count(10) == vertices.size();
  if (!sameNumber) head.remove({10, 20, 40, 41, 42, 91});
  for (const AcDbPolylineVertex& vertex : vertices) {
    if (sameNumber) {
      head.nextRun(10);
      head.setReal(10, vertex.point.x);
      head.setReal(20, vertex.point.y);
      head.setReal(40, vertex.startWidth, width);
      head.setReal(41, vertex.endWidth, width);
      head.setReal(42, vertex.bulge, 0);
      continue;
    }
    head.addReal(10, vertex.point.x);
    head.addReal(20, vertex.point.y);
    if (vertex.startWidth != width) head.addReal(40, vertex.startWidth);
    if (vertex.endWidth != width) head.addReal(41, vertex.endWidth);
    if (vertex.bulge != 0) head.addReal(42, vertex.bulge);
  }
}

void writeLight(const AcDbEntity& entity, EntityOutput& output) {
  const auto& line = static_cast<const AcDbPolyline&>(entity);
  TagEditor& head = output.head;
  head.setInteger(90, line.numVerts());
  head.setFlags(70, kClosed, line.isClosed() ? kClosed : 0, 0);
  head.setReal(38, line.elevation(), 0);
  head.setNormal(line.normal());
  writeLightVertices(line.vertices(), output);
}

// ---- POLYLINE ---------------------------------------------------------------------------------

AcDbEntity* readHeavy(const EntityTags& tags) {
  const int flags = tags.head.integer(70);
  if ((flags & (kMesh | kFaces)) != 0) return readNet(tags);
  auto* line = new AcDbPolyline;
  const bool inSpace = (flags & kInSpace) != 0;
  std::vector<AcDbPolylineVertex> vertices;
  for (std::uint32_t i = 0; i < tags.partCount(); ++i) {
    const TagView part = tags.part(i);
    if (part.type() != "VERTEX") continue;
    AcDbPolylineVertex vertex;
    vertex.point = part.point(10);
    vertex.bulge = part.real(42);
    vertex.startWidth = part.real(40, tags.head.real(40));
    vertex.endWidth = part.real(41, tags.head.real(41));
    vertex.flags = static_cast<short>(part.integer(70));
    vertices.push_back(vertex);
  }
  line->setVertices(std::move(vertices));
  line->setClosed((flags & kClosed) != 0);
  line->setInSpace(inSpace);
  line->setElevation(tags.head.real(30));
  line->setNormal(tags.head.normal());
  return line;
}

/// A new part of a compound entity, up to its own mark; the caller goes on.
TagEditor newPart(EntityOutput& output, const AcDbEntity& entity, const char* type) {
  DrawingBinding& binding = output.binding;
  TagEditor part(binding.document, binding.encoding, type);
  if (binding.hasHandles) {
    part.setHandle(5, output.nextHandle(entity));
    if (!part.isOld()) part.setHandle(330, entity.handle().value());
  }
  writeCommon(binding, entity, part);
  return part;
}

/// What a new polyline says of its vertices that were put in between by a curve through them.
int curveFlags(const std::vector<AcDbPolylineVertex>& vertices) {
  constexpr int kOfFit = 3;
  constexpr int kOfSpline = 24;
  int flags = 0;
  for (const AcDbPolylineVertex& vertex : vertices) {
    if ((vertex.flags & kOfFit) != 0) flags |= kCurveFit;
    if ((vertex.flags & kOfSpline) != 0) flags |= kSplineFit;
  }
  return flags;
}

void writeVertex(const AcDbPolyline& line, const AcDbPolylineVertex& vertex, TagEditor& part) {
  part.enter("AcDbVertex");
  part.enter(line.isInSpace() ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
  part.setPoint(10, vertex.point);
  if (line.isInSpace()) {
    part.setInteger(70, vertex.flags | 32, 0);
    return;
  }
  part.setReal(40, vertex.startWidth, 0);
  part.setReal(41, vertex.endWidth, 0);
  part.setReal(42, vertex.bulge, 0);
  part.setInteger(70, vertex.flags, 0);
}

void writeOldVertex(const AcDbPolyline& line, const AcDbPolylineVertex& vertex,
                    const EntityTags& old, TagEditor& part) {
  part.leave();
  part.setPoint(10, vertex.point);
  if (line.isInSpace()) return;
  part.setReal(40, vertex.startWidth, old.head.real(40));
  part.setReal(41, vertex.endWidth, old.head.real(41));
  part.setReal(42, vertex.bulge, 0);
}

void writeHeavy(const AcDbEntity& entity, EntityOutput& output) {
  const auto& line = static_cast<const AcDbPolyline&>(entity);
  const int flags = (line.isClosed() ? kClosed : 0) | (line.isInSpace() ? kInSpace : 0);
  TagEditor& head = output.head;
  head.leave();
  if (output.old == nullptr) {
    head.enter(line.isInSpace() ? "AcDb3dPolyline" : "AcDb2dPolyline");
    head.setInteger(66, 1);
    head.setPoint(10, {0, 0, line.elevation()});
  } else {
    head.setReal(30, line.elevation(), 0);
  }
  head.setFlags(70, kClosed | kInSpace, flags,
                output.old == nullptr ? curveFlags(line.vertices()) : 0);
  head.setNormal(line.normal());
  size_t next = 0;
  const std::vector<AcDbPolylineVertex>& vertices = line.vertices();
  const auto addNew = [&] {
    for (; next < vertices.size(); ++next) {
      TagEditor part = newPart(output, entity, "VERTEX");
      writeVertex(line, vertices[next], part);
      output.parts += part.bytes();
    }
  };
  bool hasEnd = false;
  for (std::uint32_t i = 0; output.old != nullptr && i < output.old->partCount(); ++i) {
    const TagView tags = output.old->part(i);
    TagEditor part = output.part(i, entity);
    if (tags.type() == "VERTEX") {
      if (next >= vertices.size()) continue;  // there are fewer now
      writeOldVertex(line, vertices[next++], *output.old, part);
    } else {
      addNew();
      hasEnd = true;
    }
    output.parts += part.bytes();
  }
  addNew();
  if (!hasEnd) output.parts += newPart(output, entity, "SEQEND").bytes();
}

// ---- INSERT -----------------------------------------------------------------------------------

constexpr int kHiddenAttribute = 1;

/// Some programs put all of the text behind the attribute's own mark.
bool isTextBehindOwnMark(const TagView& tags) {
  const TagView own = tags.behind("AcDbAttribute");
  const bool isMissing = own.range().begin == own.range().end;
  return isMissing || own.has(7) || own.has(11) || own.has(40);
}

/// What an attribute says as a text: else 71 and 72 behind that mark say other things.
TagView textPartOf(const TagView& tags) {
  if (isTextBehindOwnMark(tags)) return tags.own("AcDbText");
  const TagRange before{tags.range().begin, tags.behind("AcDbAttribute").range().begin};
  return TagView(tags.document(), tags.encoding(), before).own("AcDbText");
}

AcDbAttributeLine readAttribute(DrawingBinding& binding, const TagView& tags) {
  AcDbAttributeLine line;
  static_cast<AcDbTextLine&>(line) = readTextLine(binding, textPartOf(tags));
  line.vertical = static_cast<short>(tags.integer(verticalCodeOf(tags)));
  const Tag* layer = tags.find(8);
  line.layer = binding.layerOf(layer != nullptr ? tags.document().text(*layer) : "0");
  line.color = entityColor(tags.integer(62, AcDbAttributeLine().color));
  line.trueColor = tags.integer(420, -1);
  const int flags = tags.has(100) ? tags.behind("AcDbAttribute").integer(70) : tags.integer(70);
  line.hidden = (flags & kHiddenAttribute) != 0 || tags.integer(60) == 1;
  line.tag = tags.text(2);
  return line;
}

AcDbEntity* readInsert(const EntityTags& tags) {
  const AcDbObjectId block = tags.binding.blockOf(tags.head.text(2));
  // Where the drawing has no such block the insertion stays in the file as it is.
  if (block.isNull()) return nullptr;
  auto* insert = new AcDbBlockReference;
  AcDbBlockReference::Placement placement;
  placement.position = tags.head.point(10);
  placement.normal = tags.head.normal();
  placement.scale = {tags.head.real(41, 1), tags.head.real(42, 1), tags.head.real(43, 1)};
  placement.rotation = tags.head.angle(50);
  placement.columns = static_cast<short>(tags.head.integer(70, 1));
  placement.rows = static_cast<short>(tags.head.integer(71, 1));
  placement.columnSpacing = tags.head.real(44);
  placement.rowSpacing = tags.head.real(45);
  insert->setBlockTableRecord(block);
  insert->setPlacement(placement);
  std::vector<AcDbAttributeLine> attributes;
  for (std::uint32_t i = 0; i < tags.partCount(); ++i) {
    if (tags.part(i).type() == "ATTRIB") {
      attributes.push_back(readAttribute(tags.binding, tags.part(i)));
    }
  }
  insert->setAttributes(std::move(attributes));
  return insert;
}

std::string newAttribute(EntityOutput& output, const AcDbBlockReference& insert,
                         const AcDbAttributeLine& line) {
  TagEditor part = newPart(output, insert, "ATTRIB");
  const std::wstring layer = recordName(line.layer);
  part.setText(8, layer.empty() ? L"0" : layer);
  part.setInteger(62, line.color, AcDbAttributeLine().color);
  const bool hasTrueColors = output.binding.document.version() >= "AC1018";
  if (line.trueColor >= 0 && hasTrueColors) part.setInteger(420, line.trueColor);
  part.enter("AcDbText");
  writeTextLine(line, part, "AcDbAttribute", 74);
  part.setText(2, line.tag);
  part.setInteger(70, line.hidden ? kHiddenAttribute : 0);
  return part.bytes();
}

/// The text of several lines inside of an attribute goes the way that the attribute went; numbers
/// in the plane of the drawing.
void moveEmbedded(const AcDbTextLine& before, const AcDbTextLine& now, const TagView& tags,
                  TagEditor& part) {
  const bool isSame = before.position == now.position && before.rotation == now.rotation &&
                      before.height == now.height;
  if (isSame || !part.enterEmbedded()) return;
  const TagView text = tags.embedded();
  const AcGeMatrix3d turn =
      AcGeMatrix3d::rotation(now.rotation - before.rotation, AcGeVector3d::kZAxis);
  const double scale = before.height > 0 ? now.height / before.height : 1;
  if (text.has(10)) {
    part.setPoint(10, now.position + turn * ((text.point(10) - before.position) * scale));
  }
  if (text.has(11)) {
    const AcGePoint3d direction = text.point(11);
    part.setPoint(11, turn * direction);
  }
  for (const int code : {40, 41, 42, 43, 46}) {
    if (text.has(code)) part.setReal(code, text.real(code) * scale);
  }
}

void writeInsert(const AcDbEntity& entity, EntityOutput& output) {
  const auto& insert = static_cast<const AcDbBlockReference&>(entity);
  const AcDbBlockReference::Placement& placement = insert.placement();
  TagEditor& head = output.head;
  const bool hasNewParts = output.old == nullptr && !insert.attributes().empty();
  if (hasNewParts) head.setInteger(66, 1);
  // A block without a name, as old files have, has one in the database only.
  const bool isSame = output.old != nullptr &&
                      output.binding.blockOf(output.old->head.text(2)) == insert.blockTableRecord();
  if (!isSame) head.setText(2, recordName(insert.blockTableRecord()));
  head.setPoint(10, placement.position);
  head.setReal(41, placement.scale.x, 1);
  head.setReal(42, placement.scale.y, 1);
  head.setReal(43, placement.scale.z, 1);
  head.setAngle(50, placement.rotation, 0);
  head.setInteger(70, placement.columns, 1);
  head.setInteger(71, placement.rows, 1);
  head.setReal(44, placement.columnSpacing, 0);
  head.setReal(45, placement.rowSpacing, 0);
  head.setNormal(placement.normal);
  size_t next = 0;
  for (std::uint32_t i = 0; output.old != nullptr && i < output.old->partCount(); ++i) {
    const TagView tags = output.old->part(i);
    TagEditor part = output.part(i, entity);
    if (tags.type() == "ATTRIB" && next < insert.attributes().size()) {
      if (isTextBehindOwnMark(tags)) part.enterOwn("AcDbText");
      if (!isTextBehindOwnMark(tags)) part.enter("AcDbText");
      const AcDbAttributeLine& line = insert.attributes()[next++];
      writeTextLine(line, part, "AcDbAttribute", verticalCodeOf(tags));
      moveEmbedded(readTextLine(output.binding, textPartOf(tags)), line, tags, part);
    }
    output.parts += part.bytes();
  }
  if (!hasNewParts) return;
  for (const AcDbAttributeLine& line : insert.attributes()) {
    output.parts += newAttribute(output, insert, line);
  }
  output.parts += newPart(output, insert, "SEQEND").bytes();
}

// ---- ACAD_TABLE -------------------------------------------------------------------------------

/// A table is drawn by its block, turned as its direction.
AcDbEntity* readTable(const EntityTags& tags) {
  const TagView& place = tags.head;
  const TagView own = place.own("AcDbTable");
  const AcDbObjectId block = tags.binding.blockOf(place.text(2));
  if (block.isNull()) return nullptr;
  auto* table = new AcDbTable;
  AcDbBlockReference::Placement placement;
  placement.position = place.point(10);
  placement.normal = place.normal();
  placement.rotation = std::atan2(own.real(21), own.real(11, 1));
  table->setBlockTableRecord(block);
  table->setPlacement(placement);
  return table;
}

void writeTable(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbBlockReference::Placement& placement =
      static_cast<const AcDbTable&>(entity).placement();
  TagEditor& head = output.head;
  head.setPoint(10, placement.position);
  head.enterOwn("AcDbTable");
  const AcGePoint3d direction(std::cos(placement.rotation), std::sin(placement.rotation), 0);
  const AcGePoint3d before = output.old->head.own("AcDbTable").point(11);
  const bool isSame = std::atan2(before.y, before.x) == placement.rotation;
  if (!isSame) head.setPoint(11, direction);
}

// ---- VIEWPORT ---------------------------------------------------------------------------------

AcDbEntity* readViewport(const EntityTags& tags) {
  const TagView& head = tags.head;
  const double width = head.real(40);
  const double height = head.real(41);
  if (!(width > 0) || !(height > 0)) return nullptr;
  auto* viewport = new AcDbViewport;
  viewport->setCenterPoint(head.point(10));
  viewport->setWidth(width);
  viewport->setHeight(height);
  viewport->setNumber(static_cast<Adesk::Int16>(head.integer(69)));
  if (head.integer(68, 1) == 0) viewport->setOff();
  viewport->setViewCenter({head.real(12), head.real(22)});
  viewport->setViewHeight(height);
  viewport->setViewHeight(head.real(45, height));  // refused unless above zero
  viewport->setTwistAngle(head.angle(51));
  viewport->setViewTarget(head.point(17));
  viewport->setViewDirection({head.real(16), head.real(26), head.real(36, 1)});
  return viewport;
}

void writeViewport(const AcDbEntity& entity, EntityOutput& output) {
  const auto& viewport = static_cast<const AcDbViewport&>(entity);
  TagEditor& head = output.head;
  head.setPoint(10, viewport.centerPoint());
  head.setReal(40, viewport.width());
  head.setReal(41, viewport.height());
  head.setIntegerUnless(68, viewport.isOn() ? 1 : 0, 1,
                        [&](long long value) { return (value != 0) == viewport.isOn(); });
  head.setInteger(69, viewport.number(), 0);
  // In R12 the view stands in extended data, which is left as it is.
  if (head.isOld()) return;
  head.setReal(12, viewport.viewCenter().x, 0);
  head.setReal(22, viewport.viewCenter().y, 0);
  if (head.isNew() || head.has(16)) {
    const AcGeVector3d direction = viewport.viewDirection();
    head.setPoint(16, {direction.x, direction.y, direction.z});
  }
  if (head.isNew() || head.has(17)) head.setPoint(17, viewport.viewTarget());
  head.setReal(45, viewport.viewHeight(), viewport.height());
  head.setAngle(51, viewport.twistAngle(), 0);
}

}  // namespace

const std::vector<EntityCodec>& compoundCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"LWPOLYLINE", "AcDbPolyline", &AcDbPolyline::desc, readLight, writeLight, false, true, false,
       true},
      {"POLYLINE", nullptr, &AcDbPolyline::desc, readHeavy, writeHeavy, true, true, false, true},
      {"INSERT", "AcDbBlockReference", &AcDbBlockReference::desc, readInsert, writeInsert, true,
       true},
      {"ACAD_TABLE", "AcDbBlockReference", &AcDbTable::desc, readTable, writeTable, false, false},
      {"VIEWPORT", "AcDbViewport", &AcDbViewport::desc, readViewport, writeViewport, true, true},
  };
  return codecs;
}

}  // namespace tarn::host
