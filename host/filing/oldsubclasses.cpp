// Which subclasses an entity of R12 has in later drawings.
#include "host/filing/olddrawing.h"

namespace tarn::host {

namespace {

enum PolylineFlag { kInSpace = 8, kMesh = 16, kPolyface = 64 };
enum VertexFlag { kFaceCorner = 128 };

struct Kind {
  const char* type;
  std::vector<SubclassPart> parts;
};

const std::vector<Kind>& plainKinds() {
  static const std::vector<Kind> kinds = {
      {"LINE", {{"AcDbLine", {}}}},
      {"POINT", {{"AcDbPoint", {}}}},
      {"CIRCLE", {{"AcDbCircle", {}}}},
      {"ARC", {{"AcDbCircle", {}}, {"AcDbArc", {50, 51}}}},
      {"TRACE", {{"AcDbTrace", {}}}},
      {"SOLID", {{"AcDbTrace", {}}}},
      {"3DFACE", {{"AcDbFace", {}}}},
      {"SHAPE", {{"AcDbShape", {}}}},
      {"TEXT", {{"AcDbText", {}}, {"AcDbText", {73}}}},
      {"ATTDEF", {{"AcDbText", {}}, {"AcDbAttributeDefinition", {2, 3, 70, 73, 74}}}},
      {"ATTRIB", {{"AcDbText", {}}, {"AcDbAttribute", {2, 70, 73, 74}}}},
      {"VIEWPORT", {{"AcDbViewport", {}}}},
      {"BLOCK", {{"AcDbBlockBegin", {}}}},
      {"ENDBLK", {{"AcDbBlockEnd", {}}}},
      {"SEQEND", {}},
  };
  return kinds;
}

std::vector<SubclassPart> dimensionParts(int kind) {
  switch (kind & 7) {
    case 0:
      return {{"AcDbDimension", {}},
              {"AcDbAlignedDimension", {12, 22, 32, 13, 23, 33, 14, 24, 34, 40, 50, 52}},
              {"AcDbRotatedDimension", {-1}}};
    case 1:
      return {{"AcDbDimension", {}},
              {"AcDbAlignedDimension", {12, 22, 32, 13, 23, 33, 14, 24, 34, 40, 50, 52}}};
    case 2:
      return {{"AcDbDimension", {}},
              {"AcDb2LineAngularDimension", {13, 23, 33, 14, 24, 34, 15, 25, 35, 16, 26, 36, 40}}};
    case 3:
      return {{"AcDbDimension", {}}, {"AcDbDiametricDimension", {15, 25, 35, 40}}};
    case 4:
      return {{"AcDbDimension", {}}, {"AcDbRadialDimension", {15, 25, 35, 40}}};
    case 5:
      return {{"AcDbDimension", {}},
              {"AcDb3PointAngularDimension", {13, 23, 33, 14, 24, 34, 15, 25, 35, 16, 26, 36, 40}}};
    default:
      return {{"AcDbDimension", {}}, {"AcDbOrdinateDimension", {13, 23, 33, 14, 24, 34}}};
  }
}

const char* polylineClass(int flags) {
  if ((flags & kPolyface) != 0) return "AcDbPolyFaceMesh";
  if ((flags & kMesh) != 0) return "AcDbPolygonMesh";
  return (flags & kInSpace) != 0 ? "AcDb3dPolyline" : "AcDb2dPolyline";
}

std::vector<SubclassPart> vertexParts(int flags, int polyline) {
  if ((polyline & kPolyface) != 0) {
    if ((flags & kFaceCorner) != 0 && (flags & kPolyface) == 0) return {{"AcDbFaceRecord", {}}};
    return {{"AcDbVertex", {}}, {"AcDbPolyFaceMeshVertex", {10, 20, 30, 70}}};
  }
  const char* mark = (polyline & kMesh) != 0      ? "AcDbPolygonMeshVertex"
                     : (polyline & kInSpace) != 0 ? "AcDb3dPolylineVertex"
                                                  : "AcDb2dVertex";
  return {{"AcDbVertex", {-1}}, {mark, {}}};
}

}  // namespace

std::vector<SubclassPart> subclassesOf(const TagView& entity, const TagView* head) {
  const std::string_view type = entity.type();
  if (type == "DIMENSION") return dimensionParts(entity.integer(70));
  if (type == "POLYLINE") return {{polylineClass(entity.integer(70)), {}}};
  if (type == "VERTEX") {
    return vertexParts(entity.integer(70), head != nullptr ? head->integer(70) : 0);
  }
  if (type == "INSERT") {
    const bool isArray = entity.integer(70, 1) > 1 || entity.integer(71, 1) > 1;
    return {{isArray ? "AcDbMInsertBlock" : "AcDbBlockReference", {}}};
  }
  for (const Kind& kind : plainKinds()) {
    if (type == kind.type) return kind.parts;
  }
  return {};
}

}  // namespace tarn::host
