// Nets of faces: polylines that are meshes, and meshes of their own.
#include <cstdlib>
#include <set>

#include "dbmesh.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kClosedAlong = 1;
constexpr int kSmoothed = 4;
constexpr int kFaces = 64;
constexpr int kClosedAcross = 32;
// Of a vertex.
constexpr int kSmooth = 8;
constexpr int kPlace = 64;
constexpr int kOfFaces = 128;
constexpr Adesk::Int32 kMostEdges = 4000000;

/// A record of vertices that make a face, in a mesh of faces.
bool isFaceRecord(const TagView& part) {
  const int flags = part.integer(70);
  return (flags & kOfFaces) != 0 && (flags & kPlace) == 0;
}

void addFace(const TagView& part, AcDbNetValues& net) {
  int corners[4];
  int count = 0;
  while (count < 4 && part.integer(71 + count) != 0) {
    corners[count] = part.integer(71 + count);
    ++count;
  }
  for (int i = 0; i < count && count > 1; ++i) {
    // Below zero, the edge that begins there is not seen.
    if (corners[i] < 0) continue;
    net.edges.push_back(corners[i] - 1);
    net.edges.push_back(std::abs(corners[(i + 1) % count]) - 1);
  }
}

/// Edges along and across `rows` times `columns` vertices, of which the first is at `first`.
void addGrid(AcDbNetValues& net, Adesk::Int32 first, int rows, int columns, int flags) {
  const auto at = [&](int row, int column) {
    return first + (row % rows) * columns + column % columns;
  };
  const int rowSteps = rows - 1 + ((flags & kClosedAlong) != 0 ? 1 : 0);
  const int columnSteps = columns - 1 + ((flags & kClosedAcross) != 0 ? 1 : 0);
  const auto add = [&](Adesk::Int32 from, Adesk::Int32 to) {
    net.edges.push_back(from);
    net.edges.push_back(to);
  };
  for (int row = 0; row < rows; ++row) {
    for (int i = 0; i < columnSteps; ++i) add(at(row, i), at(row, i + 1));
  }
  for (int column = 0; column < columns; ++column) {
    for (int i = 0; i < rowSteps; ++i) add(at(i, column), at(i + 1, column));
  }
}

AcDbEntity* made(AcDbNet* net, AcDbNetValues values) {
  net->setValues(std::move(values));
  return net;
}

AcDbEntity* readMesh(const EntityTags& tags) {
  AcDbNetValues net;
  Adesk::Int32 frame = 0;  // control points, which come before the smooth ones or are all there are
  const int flags = tags.head.integer(70);
  const bool isSmoothed = (flags & kSmoothed) != 0;
  for (std::uint32_t i = 0; i < tags.partCount(); ++i) {
    const TagView part = tags.part(i);
    if (part.type() != "VERTEX") continue;
    net.points.push_back(part.point(10));
    if (isSmoothed && (part.integer(70) & kSmooth) == 0) ++frame;
  }
  const int rows = tags.head.integer(isSmoothed ? 73 : 71);
  const int columns = tags.head.integer(isSmoothed ? 74 : 72);
  const auto room = static_cast<long long>(net.points.size()) - frame;
  if (rows < 2 || columns < 2 || static_cast<long long>(rows) * columns > room) return nullptr;
  addGrid(net, frame, rows, columns, flags);
  return made(new AcDbPolygonMesh, std::move(net));
}

AcDbEntity* readFaces(const EntityTags& tags) {
  AcDbNetValues net;
  for (std::uint32_t i = 0; i < tags.partCount(); ++i) {
    const TagView part = tags.part(i);
    if (part.type() != "VERTEX") continue;
    if (isFaceRecord(part)) {
      addFace(part, net);
    } else {
      net.points.push_back(part.point(10));
    }
  }
  return made(new AcDbPolyFaceMesh, std::move(net));
}

void writeNetParts(const AcDbEntity& entity, EntityOutput& output) {
  if (output.old == nullptr) return;
  const std::vector<AcGePoint3d>& points = static_cast<const AcDbNet&>(entity).values().points;
  size_t next = 0;
  for (std::uint32_t i = 0; i < output.old->partCount(); ++i) {
    const TagView tags = output.old->part(i);
    TagEditor part = output.part(i, entity);
    if (tags.type() == "VERTEX" && !isFaceRecord(tags) && next < points.size()) {
      part.leave();
      part.setPoint(10, points[next++]);
    }
    output.parts += part.bytes();
  }
}

/// The faces stand as a list of numbers: how many corners, and which.
void addFaceList(const std::vector<int>& list, AcDbNetValues& net) {
  std::set<std::pair<int, int>> seen;
  for (size_t at = 0; at < list.size();) {
    const int count = list[at++];
    if (count < 2 || static_cast<size_t>(count) > list.size() - at) return;
    for (int i = 0; i < count; ++i) {
      const int from = list[at + static_cast<size_t>(i)];
      const int to = list[at + static_cast<size_t>((i + 1) % count)];
      if (!seen.insert(std::minmax(from, to)).second) continue;
      net.edges.push_back(from);
      net.edges.push_back(to);
    }
    at += static_cast<size_t>(count);
  }
}

AcDbEntity* readSubDMesh(const EntityTags& tags) {
  AcDbNetValues net;
  std::vector<int> list;
  Adesk::Int32 left = 0;
  tags.head.forEach([&](const Tag& tag) {
    const auto real = [&] { return tags.head.realOf(tag); };
    if (tag.code == 10) net.points.push_back({real(), 0, 0});
    if (!net.points.empty() && tag.code == 20) net.points.back().y = real();
    if (!net.points.empty() && tag.code == 30) net.points.back().z = real();
    if (tag.code == 93) left = std::min(tags.head.integerOf(tag), kMostEdges);
    if (tag.code == 90 && left > 0) {
      list.push_back(tags.head.integerOf(tag));
      --left;
    }
  });
  addFaceList(list, net);
  return made(new AcDbSubDMesh, std::move(net));
}

void writeSubDMesh(const AcDbEntity& entity, EntityOutput& output) {
  for (const AcGePoint3d& point : static_cast<const AcDbNet&>(entity).values().points) {
    if (output.head.nextRun(10)) output.head.setPoint(10, point);
  }
}

}  // namespace

AcDbEntity* readNet(const EntityTags& tags) {
  return (tags.head.integer(70) & kFaces) != 0 ? readFaces(tags) : readMesh(tags);
}

const std::vector<EntityCodec>& netCodecs() {
  static const std::vector<EntityCodec> codecs = {
      {"POLYLINE", nullptr, &AcDbPolygonMesh::desc, readNet, writeNetParts, false, false},
      {"POLYLINE", nullptr, &AcDbPolyFaceMesh::desc, readNet, writeNetParts, false, false},
      {"MESH", "AcDbSubDMesh", &AcDbSubDMesh::desc, readSubDMesh, writeSubDMesh, false, false},
  };
  return codecs;
}

}  // namespace tarn::host
