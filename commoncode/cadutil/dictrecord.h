// Values in a drawing: extended records in a dictionary of its named objects.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"

class AcDbDatabase;

namespace tarn::cad {

/// Where a value stands: dictionary and key in a drawing. A null drawing has no values.
struct RecordPlace {
  const ACHAR* dictionary;
  const ACHAR* key;
  AcDbDatabase* database;
};

// Reading: false, with `value` untouched, when there is no such record or it holds something else.
// Writing makes the dictionary and the record when they are missing and replaces the whole record;
// false when it could not be stored, the old value is then still there. The caller has the
// document locked.

/// One item with group code 90.
bool readInt(const RecordPlace& place, int& value);
bool writeInt(const RecordPlace& place, int value);

/// One item with group code 140.
bool readReal(const RecordPlace& place, double& value);
bool writeReal(const RecordPlace& place, double value);

/// One item with group code 1 a text; an empty text is stored as "NULL". No texts, no
/// record.
bool readTexts(const RecordPlace& place, std::vector<std::wstring>& texts);
bool writeTexts(const RecordPlace& place, const std::vector<std::wstring>& texts);

/// Takes the record away. True when none is left.
bool eraseRecord(const RecordPlace& place);

}  // namespace tarn::cad
