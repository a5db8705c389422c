// Stand-ins for entities whose class is not there, and the entities that come in their place.
#pragma once

#include <vector>

#include "adesk.h"
#include "dbid.h"
#include "dbproxy.h"

class AcDbDatabase;
class AcRxClass;

namespace tarn::host {

struct DrawingBinding;
class TagView;

class ProxyAccess {
 public:
  static const ProxyFacts& facts(const AcDbProxyEntity& proxy) { return proxy.facts_; }
  static void setFacts(AcDbProxyEntity& proxy, ProxyFacts facts) {
    proxy.facts_ = std::move(facts);
  }
};

/// A stand-in for an entity of the file whose class the file lists; null for other kinds. The
/// caller's.
AcDbProxyEntity* makeFileProxy(DrawingBinding& binding, const TagView& tags);

/// Reads what was filed of an object of a class. A class that says eMakeMeProxy gets a stand-in
/// that keeps the bytes; null for other failures. The caller's.
ACADHOST_EXPORT AcDbObject* readFiled(const AcRxClass& description, const std::vector<char>& bytes);

/// Puts an entity in the place of a stand-in: under its id, with its layer and what else every
/// entity has, erased like it. False, and the entity is still the caller's, while the stand-in is
/// open.
bool takePlace(AcDbObjectId proxy, AcDbEntity* entity);

/// Makes entities of all stand-ins that keep filed bytes and whose class takes them now; returns
/// how many.
ACADHOST_EXPORT size_t resurrectFiled(AcDbDatabase& database);

}  // namespace tarn::host
