#include "host/editor/databasewatch.h"

#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/observer.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/regenerator.h"
#include "sorttab.h"

namespace tarn::host {

namespace {

class PictureWatch : public DatabaseWatch, public DatabaseObserver {
 public:
  PictureWatch(HostApp& app, HostDocument& document) : app_(app), document_(document) {
    setDatabaseObserver(*document_.database(), this);
  }
  ~PictureWatch() override { setDatabaseObserver(*document_.database(), nullptr); }

  /// Drawn when it is closed for the first time, since its maker may still be filling it.
  void objectAppended(AcDbObject& object) override {
    document_.setModified();
    document_.undo().objectAppended(object);
  }
  void objectOpenedForWrite(AcDbObject& object) override {
    document_.undo().objectWillChange(object);
  }
  void headerWillChange() override {
    document_.setModified();
    document_.undo().headerWillChange();
  }
  void headerRestored(bool looks) override {
    document_.setModified();
    if (!looks) return;
    app_.regenerator().regenerate(document_);
    app_.frontEnd().displayChanged();
  }
  void objectModified(AcDbObject& object) override {
    document_.setModified();
    if (object.isKindOf(AcDbLayerTableRecord::desc())) {
      app_.regenerator().redrawLayer(document_, object.objectId());
    } else if (object.isKindOf(AcDbSortentsTable::desc())) {
      reorder(object.objectId());
    } else {
      redrawClosed(object);
    }
  }
  void objectErased(AcDbObject& object, bool erased) override {
    document_.setModified();
    if (object.isKindOf(AcDbSortentsTable::desc())) return reorder(object.objectId());
    auto* entity = AcDbEntity::cast(&object);
    if (entity == nullptr) return;
    if (erased) {
      app_.regenerator().forget(*entity);
    } else {
      redrawClosed(object);
    }
  }
  void drawWanted(AcDbEntity& entity) override { app_.regenerator().redraw(entity); }

 private:
  void reorder(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbSortentsTable> table(id, AcDb::kForRead, true);
    if (table.openStatus() == Acad::eOk) app_.regenerator().reorder(document_, table->blockId());
  }

  void redrawClosed(const AcDbObject& object) {
    if (!object.isKindOf(AcDbEntity::desc())) return;
    const AcDbObjectPointer<AcDbEntity> entity(object.objectId(), AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk) app_.regenerator().redraw(*entity.object());
  }

  HostApp& app_;
  HostDocument& document_;
};

}  // namespace

std::unique_ptr<DatabaseWatch> watchDatabase(HostApp& app, HostDocument& document) {
  return std::make_unique<PictureWatch>(app, document);
}

}  // namespace tarn::host
