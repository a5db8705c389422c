#include "host/database/extendeddata.h"

#include <algorithm>
#include <cmath>

#include "adscodes.h"
#include "base/text.h"
#include "dbapserv.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "gemat3d.h"
#include "host/database/objectaccess.h"

using tarn::host::ResbufItem;
using tarn::host::ResbufItems;

namespace {

constexpr int kFirst = 1000;
constexpr int kApplication = 1001;
constexpr int kLast = 1071;

// Values that follow what is done to the entity; plain points (1010) and numbers (1040) do not.
constexpr int kWorldPosition = 1011;
constexpr int kDisplacement = 1012;
constexpr int kDirection = 1013;
constexpr int kDistance = 1041;
constexpr int kScaleFactor = 1042;

bool isNameOf(const ResbufItem& item, std::wstring_view application) {
  const auto* name = std::get_if<std::wstring>(&item.value);
  return item.code == kApplication && name != nullptr &&
         tarn::equalsIgnoreCase(std::wstring_view(*name), application);
}

ResbufItems::const_iterator nextApplication(ResbufItems::const_iterator at,
                                            ResbufItems::const_iterator end) {
  return std::find_if(at, end, [](const ResbufItem& item) { return item.code == kApplication; });
}

/// The items of an application with its name; empty when it has none.
std::pair<ResbufItems::const_iterator, ResbufItems::const_iterator> sectionOf(
    const ResbufItems& items, std::wstring_view application) {
  const auto begin = std::find_if(items.begin(), items.end(), [&](const ResbufItem& item) {
    return isNameOf(item, application);
  });
  return {begin, begin == items.end() ? begin : nextApplication(begin + 1, items.end())};
}

/// True for an object of no drawing yet, whose maker knows where it will go.
bool knowsApplications(const AcDbObject& object, const ResbufItems& items) {
  if (object.database() == nullptr) return true;
  const auto* table = AcDbRegAppTable::cast(tarn::host::peek(object.database()->regAppTableId()));
  return table != nullptr && std::all_of(items.begin(), items.end(), [&](const ResbufItem& item) {
           return item.code != kApplication ||
                  table->has(std::get<std::wstring>(item.value).c_str());
         });
}

}  // namespace

resbuf* AcDbObject::xData(const ACHAR* application) const {
  assertReadEnabled();
  if (extendedData_ == nullptr) return nullptr;
  if (application == nullptr) return tarn::host::chainFrom(extendedData_->items);
  const auto [begin, end] = sectionOf(extendedData_->items, application);
  return tarn::host::chainFrom(ResbufItems(begin, end));
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* chain) {
  if (chain == nullptr) return Acad::eInvalidInput;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  ResbufItems given;
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    if (item->restype < kFirst || item->restype > kLast) return Acad::eInvalidResBuf;
  }
  if (chain->restype != kApplication || !tarn::host::itemsFrom(*chain, given)) {
    return Acad::eInvalidResBuf;
  }
  if (!knowsApplications(*this, given)) return Acad::eRegappIdNotFound;
  assertWriteEnabled();
  extendedModified_ = isResident();
  ResbufItems items = tarn::host::ObjectAccess::extendedData(*this);
  for (auto at = given.cbegin(); at != given.cend();) {
    const auto end = nextApplication(at + 1, given.cend());
    const auto [oldBegin, oldEnd] = sectionOf(items, std::get<std::wstring>(at->value));
    items.erase(oldBegin, oldEnd);
    // A name with nothing behind it takes away what the application had.
    if (end - at > 1) items.insert(items.end(), at, end);
    at = end;
  }
  tarn::host::ObjectAccess::setExtendedData(*this, std::move(items));
  return Acad::eOk;
}

namespace tarn::host {

const ResbufItems& ObjectAccess::extendedData(const AcDbObject& object) {
  static const ResbufItems kNone;
  return object.extendedData_ != nullptr ? object.extendedData_->items : kNone;
}

void ObjectAccess::setExtendedData(AcDbObject& object, ResbufItems items) {
  if (items.empty()) {
    object.extendedData_.reset();
    return;
  }
  if (object.extendedData_ == nullptr)
    object.extendedData_ = std::make_unique<AcDbObject::ExtendedData>();
  object.extendedData_->items = std::move(items);
}

void transformExtendedData(AcDbObject& object, const AcGeMatrix3d& transform) {
  const ResbufItems& before = ObjectAccess::extendedData(object);
  if (before.empty()) return;
  constexpr double kSame = 1e-12;
  double scale = transform.scale();
  if (std::abs(scale - 1) < kSame) scale = 1;
  ResbufItems items = before;
  for (ResbufItem& item : items) {
    auto* point = std::get_if<ResbufItem::Point>(&item.value);
    auto* real = std::get_if<double>(&item.value);
    if (point != nullptr && item.code == kWorldPosition) {
      const AcGePoint3d moved = transform * AcGePoint3d((*point)[0], (*point)[1], (*point)[2]);
      *point = {moved.x, moved.y, moved.z};
    } else if (point != nullptr && (item.code == kDisplacement || item.code == kDirection)) {
      const double by = item.code == kDirection && scale > 0 ? 1 / scale : 1;
      const AcGeVector3d turned = transform * AcGeVector3d((*point)[0], (*point)[1], (*point)[2]);
      *point = {turned.x * by, turned.y * by, turned.z * by};
    } else if (real != nullptr && (item.code == kDistance || item.code == kScaleFactor)) {
      *real *= scale;
    }
  }
  ObjectAccess::setExtendedData(object, std::move(items));
}

bool registerApplication(AcDbDatabase& database, const ACHAR* application) {
  const auto* known = AcDbRegAppTable::cast(peek(database.regAppTableId()));
  if (known != nullptr && known->has(application)) return true;
  const AcDbObjectPointer<AcDbRegAppTable> table(database.regAppTableId(), AcDb::kForWrite);
  if (table.openStatus() != Acad::eOk) return false;
  auto record = std::make_unique<AcDbRegAppTableRecord>();
  if (record->setName(application) != Acad::eOk || table->add(record.get()) != Acad::eOk) {
    return false;
  }
  record.release()->close();  // NOLINT(bugprone-unused-return-value): the table owns it now.
  return true;
}

}  // namespace tarn::host

int acdbRegApp(const ACHAR* application) {
  AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
  if (database == nullptr || application == nullptr || *application == 0) return RTERROR;
  return tarn::host::registerApplication(*database, application) ? RTNORM : RTERROR;
}
