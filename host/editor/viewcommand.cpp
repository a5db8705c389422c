// VIEW: named views of the current space.
#include "aced.h"
#include "acedads.h"
#include "base/text.h"
#include "dbmain.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/viewnames.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

AcDbViewTable* openViews(AcDb::OpenMode mode) {
  AcDbViewTable* table = nullptr;
  app().documents().current().database()->getSymbolTable(table, mode);
  if (table == nullptr) failCommand(app(), "The views of the drawing cannot be opened.");
  return table;
}

std::optional<std::wstring> askName(const ACHAR* prompt) {
  ACHAR typed[513] = {0};
  if (acedGetString(1, prompt, typed) != RTNORM) return std::nullopt;
  const std::wstring name(trim(std::wstring_view(typed)));
  if (!name.empty()) return name;
  failCommand(app(), "A view needs a name.");
  return std::nullopt;
}

void listViews() {
  for (const std::wstring& name : viewNames(*app().documents().current().database())) {
    app().print("\n" + toUtf8(name) + "\n");
  }
}

void fill(AcDbViewTableRecord& record, const ViewState& view) {
  record.setCenterPoint(AcGePoint2d(view.centerX, view.centerY));
  record.setHeight(view.height);
  record.setWidth(view.height * view.pixelWidth / view.pixelHeight);
  record.setViewTwist(view.twist);
}

void saveView() {
  const auto name = askName(ACRX_T("\nName of the view to save: "));
  AcDbViewTable* table = name ? openViews(AcDb::kForWrite) : nullptr;
  if (table == nullptr) return;
  AcDbViewTableRecord* record = nullptr;
  if (table->getAt(name->c_str(), record, AcDb::kForWrite) != Acad::eOk) {
    record = new AcDbViewTableRecord;
    record->setName(name->c_str());
    if (table->add(record) != Acad::eOk) {
      delete record;
      table->close();
      return failCommand(app(), "The view \"" + toUtf8(*name) + "\" cannot be saved.");
    }
  }
  fill(*record, app().view());
  record->close();
  table->close();
}

/// The view of a name that is asked for; the caller closes it.
AcDbViewTableRecord* askView(const ACHAR* prompt, AcDb::OpenMode mode) {
  const auto name = askName(prompt);
  AcDbViewTable* table = name ? openViews(AcDb::kForRead) : nullptr;
  if (table == nullptr) return nullptr;
  AcDbViewTableRecord* record = nullptr;
  table->getAt(name->c_str(), record, mode);
  table->close();
  if (record == nullptr)
    failCommand(app(), "There is no view \"" + toUtf8(*name) + "\"; VIEW ? lists them.");
  return record;
}

void restoreView() {
  AcDbViewTableRecord* record = askView(ACRX_T("\nName of the view to restore: "), AcDb::kForRead);
  if (record == nullptr) return;
  acedSetCurrentView(record, nullptr);
  record->close();
  app().regenerate();
}

void deleteView() {
  AcDbViewTableRecord* record = askView(ACRX_T("\nName of the view to delete: "), AcDb::kForWrite);
  if (record == nullptr) return;
  record->erase();
  record->close();
}

}  // namespace

std::vector<std::wstring> viewNames(AcDbDatabase& database) {
  std::vector<std::wstring> names;
  const AcDbObjectPointer<AcDbViewTable> table(database.viewTableId(), AcDb::kForRead);
  if (table.openStatus() != Acad::eOk) return names;
  for (const AcDbObjectId& id : table->recordIds()) {
    const AcDbObjectPointer<AcDbViewTableRecord> record(id, AcDb::kForRead);
    const ACHAR* name = L"";
    if (record.openStatus() != Acad::eOk) continue;
    record->getName(name);
    names.emplace_back(name);
  }
  return names;
}

void viewCommand() {
  acedInitGet(RSG_NONULL, ACRX_T("? Delete Restore Save"));
  ACHAR option[513] = {0};
  if (acedGetKword(ACRX_T("\nView [?/Delete/Restore/Save]: "), option) != RTNORM) return;
  const std::string word = toUtf8(option);
  if (word == "?") listViews();
  if (word == "Delete") deleteView();
  if (word == "Restore") restoreView();
  if (word == "Save") saveView();
}

}  // namespace tarn::host
