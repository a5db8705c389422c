// What covers what.
#include <algorithm>

#include "acedads.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/draworder.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "sorttab.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

enum class Order { kFront, kBack, kAbove, kUnder, kNone };

Order askOrder() {
  acedInitGet(0, ACRX_T("Above Under Front Back"));
  ACHAR word[16] = {};
  const int answer = acedGetKword(
      ACRX_T("\nEnter object ordering option [Above objects/Under objects/Front/Back] <Back>: "),
      word);
  if (answer == RTNONE) return Order::kBack;
  if (answer != RTNORM) return Order::kNone;
  switch (word[0]) {
    case L'A':
      return Order::kAbove;
    case L'U':
      return Order::kUnder;
    case L'F':
      return Order::kFront;
    default:
      return Order::kBack;
  }
}

/// Of the chosen ones, that which is drawn last, or first.
AcDbObjectId outermost(const AcDbBlockTableRecord& block, const EntityIds& chosen, bool last) {
  AcDbObjectId found;
  for (const AcDbObjectId& id : drawnOrder(block)) {
    const bool isChosen = std::find(chosen.begin(), chosen.end(), id) != chosen.end();
    if (isChosen && (last || found.isNull())) found = id;
  }
  return found;
}

Acad::ErrorStatus change(AcDbBlockTableRecord& block, const AcDbObjectIdArray& ids, Order order,
                         const EntityIds& references) {
  AcDbSortentsTable* table = nullptr;
  Acad::ErrorStatus status = AcDbSortentsTable::openFor(block, table, AcDb::kForWrite, true);
  if (status != Acad::eOk) return status;
  if (order == Order::kFront) status = table->moveToTop(ids);
  if (order == Order::kBack) status = table->moveToBottom(ids);
  if (order == Order::kAbove) status = table->moveAbove(ids, outermost(block, references, true));
  if (order == Order::kUnder) status = table->moveBelow(ids, outermost(block, references, false));
  table->close();
  return status;
}

void putInOrder(const EntityIds& chosen, Order order, const EntityIds& references) {
  HostDocument& document = app().documents().current();
  if (document.drawing().isOld()) {
    return failCommand(app(), "A drawing of R12 has no order of drawing; save it as R2000 first.");
  }
  AcDbObjectIdArray ids;
  for (const AcDbObjectId& id : chosen) ids.append(id);
  const AcDbObjectPointer<AcDbBlockTableRecord> block(document.space().currentBlock(),
                                                      AcDb::kForWrite);
  if (block.openStatus() != Acad::eOk ||
      change(*block.object(), ids, order, references) != Acad::eOk) {
    return failCommand(app(), "The order of drawing was not changed.");
  }
  app().print("\n" + std::to_string(ids.length()) + " brought into their place.\n");
}

}  // namespace

void drawOrderCommand() {
  EntityIds chosen;
  if (!selectForCommand(chosen)) return;
  const Order order = askOrder();
  if (order == Order::kNone) return;
  EntityIds references;
  if (order == Order::kAbove || order == Order::kUnder) {
    app().print("\nReference objects:\n");
    if (!selectForCommand(references)) return;
  }
  putInOrder(chosen, order, references);
}

void bringToFrontCommand() {
  EntityIds chosen;
  if (selectForCommand(chosen)) putInOrder(chosen, Order::kFront, {});
}

void sendToBackCommand() {
  EntityIds chosen;
  if (selectForCommand(chosen)) putInOrder(chosen, Order::kBack, {});
}

}  // namespace tarn::host
