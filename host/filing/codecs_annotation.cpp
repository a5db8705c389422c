// Splines, dimensions and leaders.
#include <optional>

#include "dbdim.h"
#include "dbfcf.h"
#include "dbspline.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

// ---- SPLINE -----------------------------------------------------------------------------------

AcGeVector3d vectorAt(const TagView& tags, int code) {
  return tags.has(code) ? tags.point(code).asVector() : AcGeVector3d(0, 0, 0);
}

AcDbEntity* readSpline(const EntityTags& tags) {
  AcDbSpline::Values values;
  values.flags = static_cast<short>(tags.head.integer(70));
  values.degree = static_cast<short>(tags.head.integer(71, 3));
  values.startTangent = vectorAt(tags.head, 12);
  values.endTangent = vectorAt(tags.head, 13);
  std::vector<AcGePoint3d>* points = nullptr;
  tags.head.forEach([&](const Tag& tag) {
    const double value = tags.head.realOf(tag);
    if (tag.code == 40) values.knots.push_back(value);
    if (tag.code == 41) values.weights.push_back(value);
    if (tag.code == 10 || tag.code == 11) {
      points = tag.code == 10 ? &values.control : &values.fit;
      points->push_back({value, 0, 0});
    }
    if (points == nullptr) return;
    const int first = points == &values.control ? 10 : 11;
    if (tag.code == first + 10) points->back().y = value;
    if (tag.code == first + 20) points->back().z = value;
  });
  auto* spline = new AcDbSpline;
  spline->setValues(std::move(values));
  return spline;
}

/// Fit points that are gone leave their number behind.
void writePoints(int code, const std::vector<AcGePoint3d>& points, TagEditor& head) {
  for (const AcGePoint3d& point : points) {
    if (!head.isNew()) head.nextRun(code);
    if (head.isNew()) {
      head.addReal(code, point.x);
      head.addReal(code + 10, point.y);
      head.addReal(code + 20, point.z);
    } else {
      head.setPoint(code, point);
    }
  }
}

void writeNewSpline(const AcDbSpline::Values& values, TagEditor& head) {
  head.setInteger(70, values.flags);
  head.setInteger(71, values.degree);
  head.setInteger(72, static_cast<long long>(values.knots.size()));
  head.setInteger(73, static_cast<long long>(values.control.size()));
  head.setInteger(74, static_cast<long long>(values.fit.size()));
  const auto addTangent = [&](int code, const AcGeVector3d& tangent) {
    if (tangent.length() > 0) head.setPoint(code, {tangent.x, tangent.y, tangent.z});
  };
  addTangent(12, values.startTangent);
  addTangent(13, values.endTangent);
  for (const double knot : values.knots) head.addReal(40, knot);
  for (const double weight : values.weights) head.addReal(41, weight);
}

void writeSpline(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbSpline::Values& values = static_cast<const AcDbSpline&>(entity).values();
  TagEditor& head = output.head;
  if (head.isNew()) {
    writeNewSpline(values, head);
  } else {
    if (head.count(11) > 0 && values.fit.empty()) {
      head.setInteger(74, 0);
      head.remove({11, 21, 31});
    }
    for (const auto& [code, tangent] :
         {std::pair{12, values.startTangent}, {13, values.endTangent}}) {
      if (head.has(code)) head.setPoint(code, {tangent.x, tangent.y, tangent.z});
    }
  }
  writePoints(10, values.control, head);
  if (!head.isNew()) head.enterOwn("AcDbSpline");
  writePoints(11, values.fit, head);
}

/// The record of a style of dimensions; nothing when the drawing has none of this name.
std::optional<TagView> dimensionStyle(const DrawingBinding& binding, const std::wstring& style) {
  const DrawingSection* tables = binding.document.section("TABLES");
  for (std::uint32_t i = tables != nullptr ? tables->firstObject : 0;
       tables != nullptr && i < tables->endObject; ++i) {
    if (binding.document.typeOf(i) != "DIMSTYLE") continue;
    const TagView tags = binding.view(i);
    if (tags.text(2) == style) return tags;
  }
  return std::nullopt;
}

// ---- DIMENSION --------------------------------------------------------------------------------

constexpr int kKinds = 7;
constexpr int kAlways = 0x20;  ///< the block belongs to this dimension only
constexpr int kFirstPoint = 10;
constexpr int kOfMeasured = 3;  ///< the first point of what is measured
/// The marks behind AcDbDimension, by kind.
constexpr const char* kMarks[kKinds] = {"AcDbAlignedDimension",      "AcDbAlignedDimension",
                                        "AcDb2LineAngularDimension", "AcDbDiametricDimension",
                                        "AcDbRadialDimension",       "AcDb3PointAngularDimension",
                                        "AcDbOrdinateDimension"};

/// What a dimension without a block needs of its style.
AcDbDimensionLook lookOf(const DrawingBinding& binding, const std::wstring& style) {
  AcDbDimensionLook look;
  const std::optional<TagView> tags = dimensionStyle(binding, style);
  if (!tags) return look;
  const double scale = tags->real(40, 1) > 0 ? tags->real(40, 1) : 1;
  look.arrowSize = tags->real(41, look.arrowSize) * scale;
  look.offset = tags->real(42, look.offset) * scale;
  look.beyond = tags->real(44, look.beyond) * scale;
  look.textHeight = tags->real(140, look.textHeight) * scale;
  look.factor = tags->real(144, 1);
  look.decimals = static_cast<short>(tags->integer(271, look.decimals));
  look.trimsZeros = (tags->integer(78) & 8) != 0;
  return look;
}

AcDbEntity* readDimension(const EntityTags& tags) {
  AcDbDimension::Values values;
  values.block = tags.binding.blockOf(tags.head.text(2));
  values.type = static_cast<short>(tags.head.integer(70));
  if ((values.type & 7) >= kKinds) return nullptr;
  const TagView measured = tags.head.own(kMarks[values.type & 7]);
  for (int i = 0; i < kKinds; ++i) {
    const TagView& part = i < kOfMeasured ? tags.head : measured;
    values.points[static_cast<size_t>(i)] = part.point(kFirstPoint + i);
  }
  values.normal = tags.head.normal();
  values.rotation = measured.angle(50);
  values.textRotation = tags.head.angle(53);
  values.direction = tags.head.angle(51);
  values.text = tags.head.text(1);
  values.style = tags.head.text(3);
  if (values.block.isNull()) values.look = lookOf(tags.binding, values.style);
  auto* dimension = new AcDbDimension;
  dimension->setValues(std::move(values));
  return dimension;
}

void writeNewDimension(const AcDbDimension::Values& values, TagEditor& head) {
  const auto setPoint = [&](int i) {
    head.setPoint(kFirstPoint + i, values.points[static_cast<size_t>(i)]);
  };
  if (!values.block.isNull()) head.setText(2, recordName(values.block));
  setPoint(0);
  setPoint(1);
  setPoint(2);
  head.setInteger(70, values.type | kAlways);
  if (!values.text.empty()) head.setText(1, values.text);
  head.setText(3, values.style.empty() ? L"Standard" : values.style);
  head.setNormal(values.normal);
  const int kind = values.type & 7;
  head.enter(kMarks[kind]);
  for (const int i : {3, 4, 5, 6}) setPoint(i);
  if (kind == 0) {
    head.setAngle(50, values.rotation);
    head.enter("AcDbRotatedDimension");
  }
}

void writeDimension(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbDimension::Values& values = static_cast<const AcDbDimension&>(entity).values();
  TagEditor& head = output.head;
  if (head.isNew()) return writeNewDimension(values, head);
  if (!values.block.isNull()) head.setText(2, recordName(values.block));
  for (const auto& [code, angle] : {std::pair{51, values.direction}, {53, values.textRotation}}) {
    if (head.has(code)) head.setAngle(code, angle, 0);
  }
  head.setNormal(values.normal);
  const int kind = values.type & 7;
  for (int i = 0; i < kKinds; ++i) {
    if (i == kOfMeasured) head.enterOwn(kMarks[kind]);
    const AcGePoint3d& point = values.points[static_cast<size_t>(i)];
    const bool isNeeded = i == 2 && point.asVector().length() > 0;
    if (isNeeded || head.has(kFirstPoint + i)) head.setPoint(kFirstPoint + i, point);
  }
  if (kind == 0 || head.has(50)) head.setAngle(50, values.rotation, 0);
}

constexpr int kArrowSize = 41;
constexpr int kTextHeight = 140;

// ---- LEADER -----------------------------------------------------------------------------------

/// A length of a style of dimensions, with the style's scale.
double lengthOfStyle(const DrawingBinding& binding, const std::wstring& style, int code) {
  constexpr double kUsual = 2.5;
  const std::optional<TagView> tags = dimensionStyle(binding, style);
  if (!tags) return kUsual;
  const double scale = tags->real(40, 1);
  return tags->real(code, kUsual) * (scale > 0 ? scale : 1);
}

AcDbEntity* readLeader(const EntityTags& tags) {
  AcDbLeader::Values values;
  tags.head.forEach([&](const Tag& tag) {
    const double value = tags.head.realOf(tag);
    if (tag.code == 10) values.vertices.push_back({value, 0, 0});
    if (values.vertices.empty()) return;
    if (tag.code == 20) values.vertices.back().y = value;
    if (tag.code == 30) values.vertices.back().z = value;
  });
  values.normal = tags.head.normal();
  values.hasArrow = tags.head.integer(71, 1) != 0;
  values.isSpline = tags.head.integer(72) == 1;
  values.style = tags.head.text(3);
  values.arrowSize = lengthOfStyle(tags.binding, values.style, kArrowSize);
  auto* leader = new AcDbLeader;
  leader->setValues(std::move(values));
  return leader;
}

void writeLeader(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbLeader::Values& values = static_cast<const AcDbLeader&>(entity).values();
  TagEditor& head = output.head;
  if (head.isNew()) {
    head.setText(3, values.style.empty() ? L"Standard" : values.style);
    head.setInteger(71, values.hasArrow ? 1 : 0);
    head.setInteger(72, values.isSpline ? 1 : 0);
    head.setInteger(73, 3);
    head.setInteger(76, static_cast<long long>(values.vertices.size()));
  } else {
    head.setNormal(values.normal);
  }
  writePoints(kFirstPoint, values.vertices, head);
  if (head.isNew()) head.setNormal(values.normal);
}

// ---- TOLERANCE --------------------------------------------------------------------------------

AcDbEntity* readTolerance(const EntityTags& tags) {
  AcDbFcf::Values values;
  values.location = tags.head.point(10);
  values.normal = tags.head.normal();
  if (tags.head.has(11)) values.direction = tags.head.point(11).asVector();
  values.text = tags.head.text(1);
  values.style = tags.head.text(3);
  values.textHeight = lengthOfStyle(tags.binding, values.style, kTextHeight);
  auto* tolerance = new AcDbFcf;
  tolerance->setValues(std::move(values));
  return tolerance;
}

void writeTolerance(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbFcf::Values& values = static_cast<const AcDbFcf&>(entity).values();
  TagEditor& head = output.head;
  head.setName(3, values.style.empty() ? L"Standard" : values.style);
  head.setPoint(10, values.location);
  head.setText(1, values.text);
  head.setNormal(values.normal);
  const AcGeVector3d usual = AcDbFcf::Values().direction;
  if (head.isNew() || head.has(11) || !(values.direction == usual)) {
    head.setPoint(11, {values.direction.x, values.direction.y, values.direction.z});
  }
}

}  // namespace

const std::vector<EntityCodec>& annotationCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"SPLINE", "AcDbSpline", &AcDbSpline::desc, readSpline, writeSpline, false, true},
      {"DIMENSION", "AcDbDimension", &AcDbDimension::desc, readDimension, writeDimension, false,
       true},
      {"ARC_DIMENSION", "AcDbDimension", &AcDbDimension::desc, readDimension, writeDimension, false,
       false},
      {"LARGE_RADIAL_DIMENSION", "AcDbDimension", &AcDbDimension::desc, readDimension,
       writeDimension, false, false},
      {"TOLERANCE", "AcDbFcf", &AcDbFcf::desc, readTolerance, writeTolerance, false, true},
      {"LEADER", "AcDbLeader", &AcDbLeader::desc, readLeader, writeLeader, false, true},
  };
  return codecs;
}

}  // namespace tarn::host
