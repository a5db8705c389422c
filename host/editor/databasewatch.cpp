#include "host/editor/databasewatch.h"

#include "dbents.h"
#include "dbobjptr.h"
#include "host/database/observer.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/regenerator.h"

namespace tarn::host {

namespace {

class PictureWatch : public DatabaseWatch, public DatabaseObserver {
 public:
  PictureWatch(HostApp& app, AcDbDatabase& database) : app_(app), database_(database) {
    setDatabaseObserver(database_, this);
  }
  ~PictureWatch() override { setDatabaseObserver(database_, nullptr); }

  /// Drawn when it is closed for the first time, since its maker may still be filling it.
  void objectAppended(AcDbObject&) override {}
  void objectModified(AcDbObject& object) override { redrawClosed(object); }
  void objectErased(AcDbObject& object, bool erased) override {
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
  void redrawClosed(const AcDbObject& object) {
    if (!object.isKindOf(AcDbEntity::desc())) return;
    const AcDbObjectPointer<AcDbEntity> entity(object.objectId(), AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk) app_.regenerator().redraw(*entity.object());
  }

  HostApp& app_;
  AcDbDatabase& database_;
};

}  // namespace

std::unique_ptr<DatabaseWatch> watchDatabase(HostApp& app, HostDocument& document) {
  return std::make_unique<PictureWatch>(app, *document.database());
}

}  // namespace tarn::host
