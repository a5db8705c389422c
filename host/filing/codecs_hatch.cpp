// Hatches. Their rims and patterns are a sequence in which each number says what follows.
#include "dbhatch.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

/// Reads tags one after the other; one that is not there makes the whole entity not understood.
class TagCursor {
 public:
  explicit TagCursor(const TagView& tags) : tags_(tags), at_(tags.range().begin) {}

  bool good() const { return good_; }
  /// Goes to the first tag of a code outside of groups.
  void find(int code) {
    GroupWatch groups;
    for (; at_ < tags_.range().end; ++at_) {
      const Tag& tag = tags_.document().tag(at_);
      const bool inGroup = groups.pass(tag.code, [&] { return tags_.document().word(tag); });
      if (tag.code == code && !inGroup) return;
    }
  }
  bool isNext(int code) const {
    return at_ < tags_.range().end && tags_.document().tag(at_).code == code;
  }
  double real(int code) {
    const Tag* tag = take(code);
    return tag != nullptr ? tags_.realOf(*tag) : 0;
  }
  int integer(int code) {
    const Tag* tag = take(code);
    return tag != nullptr ? tags_.integerOf(*tag) : 0;
  }
  double angle(int code) { return real(code) * kDegree; }
  AcGePoint3d point(int code) {
    const double x = real(code);
    return {x, real(code + 10), 0};
  }
  /// A number of things that are there: each takes a tag at least.
  int count(int code) {
    const int number = integer(code);
    if (number < 0 || static_cast<std::uint32_t>(number) > tags_.range().end - at_) good_ = false;
    return good_ ? number : 0;
  }

 private:
  const Tag* take(int code) {
    if (good_ && isNext(code)) return &tags_.document().tag(at_++);
    good_ = false;
    return nullptr;
  }

  TagView tags_;
  std::uint32_t at_;
  bool good_ = true;
};

void readSpline(TagCursor& cursor, AcDbHatchEdge& edge) {
  edge.degree = static_cast<short>(cursor.integer(94));
  edge.rational = cursor.integer(73) != 0;
  edge.periodic = cursor.integer(74) != 0;
  const int knots = cursor.count(95);
  const int controls = cursor.count(96);
  for (int i = 0; i < knots && cursor.good(); ++i) edge.knots.push_back(cursor.real(40));
  for (int i = 0; i < controls && cursor.good(); ++i) {
    AcGePoint3d point = cursor.point(10);
    if (edge.rational || cursor.isNext(42)) point.z = cursor.real(42);
    edge.control.push_back(point);
  }
  // Older drawings have no fit points; there the number is that of the sources of the whole rim.
  if (!cursor.isNext(97)) return;
  TagCursor ahead = cursor;
  const int fits = ahead.count(97);
  if (fits > 0 && !ahead.isNext(11)) return;
  if (fits == 0 && !ahead.isNext(12) && !ahead.isNext(72) && !ahead.isNext(97)) return;
  edge.hasFit = true;
  for (int i = 0; i < fits && ahead.good(); ++i) edge.fit.push_back(ahead.point(11));
  if (ahead.isNext(12)) edge.tangents = {ahead.point(12), ahead.point(13)};
  cursor = ahead;
}

AcDbHatchEdge readEdge(TagCursor& cursor) {
  AcDbHatchEdge edge;
  edge.kind = static_cast<short>(cursor.integer(72));
  if (edge.kind == AcDbHatchEdge::kSpline) {
    readSpline(cursor, edge);
    return edge;
  }
  edge.first = cursor.point(10);
  if (edge.kind != AcDbHatchEdge::kArc) edge.second = cursor.point(11);
  if (edge.kind == AcDbHatchEdge::kLine) return edge;
  edge.ratio = cursor.real(40);
  edge.start = cursor.angle(50);
  edge.end = cursor.angle(51);
  edge.counterClockwise = cursor.integer(73) != 0;
  return edge;
}

AcDbHatchLoop readLoop(TagCursor& cursor) {
  AcDbHatchLoop loop;
  loop.flags = cursor.integer(92);
  if (loop.isPolyline()) {
    loop.hasBulges = cursor.integer(72) != 0;
    loop.closed = cursor.integer(73) != 0;
    const int count = cursor.count(93);
    for (int i = 0; i < count && cursor.good(); ++i) {
      AcGePoint3d vertex = cursor.point(10);
      if (loop.hasBulges && cursor.isNext(42)) vertex.z = cursor.real(42);
      loop.vertices.push_back(vertex);
    }
  } else {
    const int count = cursor.count(93);
    for (int i = 0; i < count && cursor.good(); ++i) loop.edges.push_back(readEdge(cursor));
  }
  loop.sources = cursor.isNext(97) ? cursor.count(97) : 0;
  for (int i = 0; i < loop.sources && cursor.good(); ++i) cursor.integer(330);
  return loop;
}

AcDbHatchLines readLines(TagCursor& cursor) {
  AcDbHatchLines lines;
  lines.angle = cursor.angle(53);
  lines.base.x = cursor.real(43);
  lines.base.y = cursor.real(44);
  lines.offset.x = cursor.real(45);
  lines.offset.y = cursor.real(46);
  const int dashes = cursor.count(79);
  for (int i = 0; i < dashes && cursor.good(); ++i) lines.dashes.push_back(cursor.real(49));
  return lines;
}

void readPattern(TagCursor& cursor, AcDbHatch::Values& values) {
  values.angle = cursor.angle(52);
  values.scale = cursor.real(41);
  values.isDouble = cursor.integer(77) != 0;
  const int lines = cursor.count(78);
  for (int i = 0; i < lines && cursor.good(); ++i) values.lines.push_back(readLines(cursor));
}

bool readValues(const TagView& tags, AcDbHatch::Values& values) {
  values.elevation = tags.real(30);
  values.normal = tags.normal();
  values.pattern = tags.text(2);
  values.solid = tags.integer(70, 1) != 0;
  values.associative = tags.integer(71) != 0;
  TagCursor cursor(tags);
  cursor.find(91);
  const int loops = cursor.count(91);
  for (int i = 0; i < loops && cursor.good(); ++i) values.loops.push_back(readLoop(cursor));
  values.style = static_cast<short>(cursor.integer(75));
  values.type = static_cast<short>(cursor.integer(76));
  if (!values.solid) readPattern(cursor, values);
  cursor.find(98);
  if (!cursor.isNext(98)) return cursor.good();
  const int seeds = cursor.count(98);
  for (int i = 0; i < seeds && cursor.isNext(10); ++i) values.seeds.push_back(cursor.point(10));
  return cursor.good();
}

AcDbEntity* readHatch(const EntityTags& tags) {
  AcDbHatch::Values values;
  if (!readValues(tags.head, values)) return nullptr;
  auto* hatch = new AcDbHatch;
  hatch->setValues(std::move(values));
  return hatch;
}

// ---- Writing ----------------------------------------------------------------------------------

void putPoint(TagEditor& head, int code, const AcGePoint3d& point) {
  head.putReal(code, point.x);
  head.putReal(code + 10, point.y);
}

/// Angles keep their text while they are the same.
void putAngle(TagEditor& head, int code, double radians) {
  if (head.isNext(code)) {
    head.setNextAngle(code, radians);
  } else {
    head.putReal(code, radians / kDegree);
  }
}

void putSpline(TagEditor& head, const AcDbHatchEdge& edge) {
  head.putInteger(94, edge.degree);
  head.putInteger(73, edge.rational ? 1 : 0);
  head.putInteger(74, edge.periodic ? 1 : 0);
  head.putInteger(95, static_cast<long long>(edge.knots.size()));
  head.putInteger(96, static_cast<long long>(edge.control.size()));
  for (const double knot : edge.knots) head.putReal(40, knot);
  for (const AcGePoint3d& point : edge.control) {
    putPoint(head, 10, point);
    if (edge.rational || head.isNext(42)) head.putReal(42, point.z);
  }
  if (!edge.hasFit) return;
  head.putInteger(97, static_cast<long long>(edge.fit.size()));
  for (const AcGePoint3d& point : edge.fit) putPoint(head, 11, point);
  if (edge.tangents.size() != 2) return;
  putPoint(head, 12, edge.tangents[0]);
  putPoint(head, 13, edge.tangents[1]);
}

void putEdge(TagEditor& head, const AcDbHatchEdge& edge) {
  head.putInteger(72, edge.kind);
  if (edge.kind == AcDbHatchEdge::kSpline) return putSpline(head, edge);
  putPoint(head, 10, edge.first);
  if (edge.kind != AcDbHatchEdge::kArc) putPoint(head, 11, edge.second);
  if (edge.kind == AcDbHatchEdge::kLine) return;
  head.putReal(40, edge.ratio);
  putAngle(head, 50, edge.start);
  putAngle(head, 51, edge.end);
  head.putInteger(73, edge.counterClockwise ? 1 : 0);
}

void putLoop(TagEditor& head, const AcDbHatchLoop& loop) {
  head.putInteger(92, loop.flags);
  if (loop.isPolyline()) {
    head.putInteger(72, loop.hasBulges ? 1 : 0);
    head.putInteger(73, loop.closed ? 1 : 0);
    head.putInteger(93, static_cast<long long>(loop.vertices.size()));
    for (const AcGePoint3d& vertex : loop.vertices) {
      putPoint(head, 10, vertex);
      if (loop.hasBulges && (head.isNew() || head.isNext(42))) head.putReal(42, vertex.z);
    }
  } else {
    head.putInteger(93, static_cast<long long>(loop.edges.size()));
    for (const AcDbHatchEdge& edge : loop.edges) putEdge(head, edge);
  }
  // What a new one was made of belongs to another drawing.
  const int sources = head.isNew() ? 0 : loop.sources;
  if (head.isNew() || head.isNext(97)) head.putInteger(97, sources);
  for (int i = 0; i < sources; ++i) head.putHandle(330, 0);
}

void putPattern(TagEditor& head, const AcDbHatch::Values& values) {
  putAngle(head, 52, values.angle);
  head.putReal(41, values.scale);
  head.putInteger(77, values.isDouble ? 1 : 0);
  head.putInteger(78, static_cast<long long>(values.lines.size()));
  for (const AcDbHatchLines& lines : values.lines) {
    putAngle(head, 53, lines.angle);
    head.putReal(43, lines.base.x);
    head.putReal(44, lines.base.y);
    head.putReal(45, lines.offset.x);
    head.putReal(46, lines.offset.y);
    head.putInteger(79, static_cast<long long>(lines.dashes.size()));
    for (const double dash : lines.dashes) head.putReal(49, dash);
  }
}

void putSeeds(TagEditor& head, const AcDbHatch::Values& values) {
  if (head.isNew()) {
    head.putInteger(98, static_cast<long long>(values.seeds.size()));
  } else if (!head.goTo(98)) {
    return;
  }
  for (const AcGePoint3d& seed : values.seeds) putPoint(head, 10, seed);
}

void writeHatch(const AcDbEntity& entity, EntityOutput& output) {
  const AcDbHatch::Values& values = static_cast<const AcDbHatch&>(entity).values();
  TagEditor& head = output.head;
  if (!head.isNew()) head.setReal(30, values.elevation, 0);
  if (head.isNew()) {
    head.setPoint(10, {0, 0, values.elevation});
    head.addReal(210, values.normal.x);
    head.addReal(220, values.normal.y);
    head.addReal(230, values.normal.z);
  } else {
    head.setNormal(values.normal);
  }
  head.setText(2, values.pattern);
  head.setInteger(70, values.solid ? 1 : 0);
  head.setInteger(71, values.associative && !head.isNew() && !output.isCopy ? 1 : 0);
  head.setInteger(91, static_cast<long long>(values.loops.size()));
  for (const AcDbHatchLoop& loop : values.loops) putLoop(head, loop);
  head.putInteger(75, values.style);
  head.putInteger(76, values.type);
  if (!values.solid) putPattern(head, values);
  putSeeds(head, values);
}

}  // namespace

const std::vector<EntityCodec>& hatchCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"HATCH", "AcDbHatch", &AcDbHatch::desc, readHatch, writeHatch, false, true},
  };
  return codecs;
}

}  // namespace tarn::host
