// Services of the host application for the database.
#pragma once

#include <cstddef>

#include "acdb.h"
#include "adesk.h"

class AcDbDatabase;

class ACADHOST_EXPORT AcDbHostApplicationServices {
 public:
  enum FindFileHint { kDefault = 0 };

  AcDbHostApplicationServices() = default;
  AcDbHostApplicationServices(const AcDbHostApplicationServices&) = delete;
  AcDbHostApplicationServices& operator=(const AcDbHostApplicationServices&) = delete;
  virtual ~AcDbHostApplicationServices();

  /// Full path of a file into `result` (`capacity` characters with the end). Here only a path that
  /// exists as given is found; a host with a support path overrides it. eFileNotFound,
  /// eBufferTooSmall.
  virtual Acad::ErrorStatus findFile(ACHAR* result, int capacity, const ACHAR* name,
                                     AcDbDatabase* database = nullptr,
                                     FindFileHint hint = kDefault);

  /// The drawing that operations without a database of their own mean; may be null.
  AcDbDatabase* workingDatabase() const { return working_; }
  void setWorkingDatabase(AcDbDatabase* database) { working_ = database; }

 private:
  AcDbDatabase* working_ = nullptr;
};

/// Never null.
ACADHOST_EXPORT AcDbHostApplicationServices* acdbHostApplicationServices();
/// Installs a host's own services (not owned; null brings the built-in ones back). The working
/// database is carried over.
ACADHOST_EXPORT void acdbSetHostApplicationServices(AcDbHostApplicationServices* services);
