#include "_image/rectify/residualarrows.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "acdocman.h"
#include "base/text.h"
#include "commoncode/cadutil/documentlock.h"
#include "commoncode/fitreport/residualplot.h"
#include "dbblockref.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbtext.h"

namespace tarn::image {
namespace {

constexpr const wchar_t* kLayer = L"TARN_RESIDUALS";
constexpr Adesk::UInt16 kRed = 1;
/// Of the points' extent.
constexpr double kTextHeight = 1 / 60.0;

/// The same on every machine, since drawings are carried about.
std::wstring blockName(const std::wstring& path) {
  const QByteArray hash =
      QCryptographicHash::hash(QByteArray::fromStdString(toUtf8(path)), QCryptographicHash::Sha1);
  return L"TARN_RESIDUALS_" + toWide(hash.toHex().left(16).toStdString());
}

void addArrow(ArrowSketch& sketch, double x, double y, double dx, double dy, double text) {
  const double length = std::hypot(dx, dy);
  sketch.lines.push_back({x, y, x + dx, y + dy});
  if (!(length > 0)) return;
  const double head = std::min(text * 0.8, length / 2);
  const double ux = dx / length * head, uy = dy / length * head;
  constexpr double kSlope = 0.35;
  for (const double side : {-kSlope, kSlope})
    sketch.lines.push_back({x + dx, y + dy, x + dx - ux - side * uy, y + dy - uy + side * ux});
}

std::string rounded(double value) {
  constexpr int kDigits = 3;
  return QString::number(value, 'g', kDigits).toStdString();
}

AcDbObjectId layerOf(AcDbDatabase* database) {
  AcDbObjectId id;
  AcDbLayerTable* table = nullptr;
  if (database->getLayerTable(table, AcDb::kForRead) != Acad::eOk) return id;
  if (table->getAt(kLayer, id) != Acad::eOk && table->upgradeOpen() == Acad::eOk) {
    auto* layer = new AcDbLayerTableRecord();
    layer->setName(kLayer);
    layer->setColorIndex(kRed);
    if (table->add(id, layer) == Acad::eOk) {
      layer->close();
    } else {
      delete layer;
    }
  }
  table->close();
  return id;
}

/// Gives an entity to a block; false, and the entity is gone, when the block does not take it.
bool append(AcDbBlockTableRecord& block, std::unique_ptr<AcDbEntity> entity, AcDbObjectId layer) {
  if (!layer.isNull()) entity->setLayer(layer);
  AcDbEntity* given = entity.get();
  if (block.appendAcDbEntity(given) != Acad::eOk) return false;
  entity.release()->close();
  return true;
}

AcDbObjectId idOf(AcDbDatabase* database, const std::wstring& block) {
  AcDbObjectId id;
  AcDbBlockTable* table = nullptr;
  if (database->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return id;
  table->getAt(block.c_str(), id);
  table->close();
  return id;
}

/// Insertions of a block in the model.
std::vector<AcDbObjectId> insertionsOf(AcDbDatabase* database, AcDbObjectId block) {
  std::vector<AcDbObjectId> found;
  const AcDbObjectPointer<AcDbBlockTableRecord> model(idOf(database, ACDB_MODEL_SPACE),
                                                      AcDb::kForRead);
  if (block.isNull() || model.openStatus() != Acad::eOk) return found;
  for (const AcDbObjectId& id : model->entityIds()) {
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
    if (reference.openStatus() == Acad::eOk && reference->blockTableRecord() == block)
      found.push_back(id);
  }
  return found;
}

void eraseAll(AcDbDatabase* database, AcDbObjectId block) {
  for (const AcDbObjectId& id : insertionsOf(database, block)) {
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
    if (reference.openStatus() == Acad::eOk) reference->erase();
  }
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
  if (record.openStatus() == Acad::eOk) record->erase();
}

void fill(AcDbBlockTableRecord& block, const ArrowSketch& sketch, AcDbObjectId layer) {
  for (const ArrowLine& l : sketch.lines)
    append(block,
           std::make_unique<AcDbLine>(AcGePoint3d(l.x1, l.y1, 0), AcGePoint3d(l.x2, l.y2, 0)),
           layer);
  for (const ArrowText& t : sketch.texts)
    append(
        block,
        std::make_unique<AcDbText>(AcGePoint3d(t.x, t.y, 0), toWide(t.text).c_str(), t.height, 0.0),
        layer);
}

/// A new block with the arrows; null when the drawing does not take it.
AcDbObjectId addBlock(AcDbDatabase* database, const std::wstring& name, const ArrowSketch& sketch,
                      AcDbObjectId layer) {
  AcDbObjectId id;
  AcDbBlockTable* table = nullptr;
  if (database->getBlockTable(table, AcDb::kForWrite) != Acad::eOk) return id;
  auto* block = new AcDbBlockTableRecord();
  block->setName(name.c_str());
  const bool isAdded = table->add(id, block) == Acad::eOk;
  table->close();
  if (!isAdded) {
    delete block;
    return {};
  }
  const ArrowLine& first = sketch.lines.front();
  block->setOrigin(AcGePoint3d(first.x1, first.y1, 0));
  fill(*block, sketch, layer);
  block->close();
  return id;
}

}  // namespace

ArrowSketch sketchArrows(const std::vector<fitreport::ReportRow>& rows, double factor,
                         const std::string& unit) {
  ArrowSketch sketch;
  const double extent = fitreport::extentOf(rows);
  const double height = extent > 0 ? extent * kTextHeight : 1;
  double left = HUGE_VAL, bottom = HUGE_VAL;
  for (const fitreport::ReportRow& row : rows) {
    if (!std::isfinite(row.length())) continue;
    addArrow(sketch, row.targetEast, row.targetNorth, row.residualEast * factor,
             row.residualNorth * factor, height);
    std::string text = std::to_string(row.number) + ": " + rounded(row.length());
    if (row.isCheck) text += " *";
    sketch.texts.push_back(
        {row.targetEast + height / 2, row.targetNorth - 1.5 * height, height, std::move(text)});
    left = std::min(left, row.targetEast);
    bottom = std::min({bottom, row.targetNorth, row.targetNorth + row.residualNorth * factor});
  }
  if (sketch.lines.empty()) return sketch;
  const double round = fitreport::roundBelow(fitreport::longestResidual(rows));
  bottom -= 5 * height;
  if (round > 0) addArrow(sketch, left, bottom, round * factor, 0, height);
  sketch.texts.push_back({left, bottom - 1.8 * height, height,
                          rounded(round) + " " + unit + "  (x " + rounded(factor) + ")"});
  return sketch;
}

bool drawArrows(AcApDocument* document, const std::wstring& path, const ArrowSketch& sketch) {
  const cad::DocumentLock lock(document);
  if (!lock.isLocked() || sketch.lines.empty()) return false;
  AcDbDatabase* database = document->database();
  const AcDbObjectId layer = layerOf(database);
  const std::wstring name = blockName(path);
  eraseAll(database, idOf(database, name));
  const AcDbObjectId block = addBlock(database, name, sketch, layer);
  if (layer.isNull() || block.isNull()) return false;
  auto reference = std::make_unique<AcDbBlockReference>();
  reference->setBlockTableRecord(block);
  AcDbBlockReference::Placement placement;
  placement.position = AcGePoint3d(sketch.lines.front().x1, sketch.lines.front().y1, 0);
  reference->setPlacement(placement);
  const AcDbObjectPointer<AcDbBlockTableRecord> model(idOf(database, ACDB_MODEL_SPACE),
                                                      AcDb::kForWrite);
  return model.openStatus() == Acad::eOk && append(*model.object(), std::move(reference), layer);
}

bool eraseArrows(AcApDocument* document, const std::wstring& path) {
  const cad::DocumentLock lock(document);
  if (!lock.isLocked()) return false;
  eraseAll(document->database(), idOf(document->database(), blockName(path)));
  return true;
}

bool hasArrows(AcApDocument* document, const std::wstring& path) {
  AcDbDatabase* database = document ? document->database() : nullptr;
  return database && !insertionsOf(database, idOf(database, blockName(path))).empty();
}

}  // namespace tarn::image
