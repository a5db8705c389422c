// The extended data of an object.
#pragma once

#include "dbmain.h"
#include "host/database/resbufitems.h"

struct AcDbObject::ExtendedData {
  tarn::host::ResbufItems items;  ///< of all applications, each behind its name
};
