// The layouts of a drawing: dictionary ACAD_LAYOUT, one layout for the model and one for each
// sheet.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "dbid.h"
#include "host/database/plotdata.h"

namespace tarn::host {

/// Reading and changing plot settings as a value. Changes need the object open for write.
class ACADHOST_EXPORT LayoutAccess {
 public:
  static const PlotData& data(const AcDbPlotSettings& settings);
  static void setData(AcDbPlotSettings& settings, const PlotData& data);
};

struct LayoutEntry {
  AcDbObjectId id;
  AcDbObjectId block;
  std::string name;
  int order = 0;
  bool isModel = false;
};

/// Gives the drawing the dictionary, "Model", and a layout for every paper space block without one.
/// Changes nothing when all are there.
ACADHOST_EXPORT void completeLayouts(AcDbDatabase& database);

/// The model first, then the sheets in the order of their tabs.
ACADHOST_EXPORT std::vector<LayoutEntry> layoutsOf(AcDbDatabase& database);
/// By name, without regard to case; an entry with a null id when there is none.
ACADHOST_EXPORT LayoutEntry layoutNamed(AcDbDatabase& database, const std::string& name);

/// A new, empty sheet, last in order. The sentence says why not: no name, a name that is taken.
ACADHOST_EXPORT Result<LayoutEntry> addLayout(AcDbDatabase& database, const std::string& name);
/// The model and the only sheet stay as they are.
ACADHOST_EXPORT Status renameLayout(AcDbDatabase& database, const std::string& from,
                                    const std::string& to);
/// Erases the layout, its block and the entities on it.
ACADHOST_EXPORT Status deleteLayout(AcDbDatabase& database, const std::string& name);

struct LayoutViewports {
  AcDbObjectId sheet;               ///< the viewport with number 1; null when there is none
  std::vector<AcDbObjectId> views;  ///< the others: numbers 2, 3 ... in this order
};
ACADHOST_EXPORT LayoutViewports viewportsOf(AcDbObjectId block);

}  // namespace tarn::host
