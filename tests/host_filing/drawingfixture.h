// Drawings as tests make and compare them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "dbid.h"

class AcDbDatabase;
class AcDbEntity;

namespace tarn::host {

/// Opens each object read from `bytes` for write and marks it as changed without changing anything.
void touchEverything(AcDbDatabase& database, const std::string& bytes);

AcDbObjectIdArray modelEntities(AcDbDatabase& database);
/// Appends and closes.
void appendToModel(AcDbDatabase& database, AcDbEntity* entity);

/// True when both have the same group codes and values in the same order; else the first that
/// differs.
testing::AssertionResult sameTags(const std::string& before, const std::string& after);

}  // namespace tarn::host
