// Configuration values by key, kept in tarnconfig.db.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class IConfigManager : public kel::IObject {
 public:
  KEL_INTERFACE(IConfigManager)

  /// Path of the database in use.
  virtual kel::DString databasePath() = 0;
  /// True when the database could be opened and passed its check.
  virtual bool isOpen() = 0;
  virtual bool contains(const kel::DString& key) = 0;
  virtual bool removeValue(const kel::DString& key) = 0;
  /// The ninth operation. Null variant when the key is not there or the database cannot be read.
  virtual kel::Variant getValue(const kel::DString& key) = 0;
  /// False, after a message, when the value could not be stored.
  virtual bool setValue(const kel::DString& key, const kel::Variant& value) = 0;

 protected:
  ~IConfigManager() = default;
};
