// The lines of a drawing as text: "0,0>1,1 0,0>2,2", rounded to a millionth.
#pragma once

#include <cmath>
#include <string>

#include "base/text.h"
#include "dbents.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

inline std::string roundedPoint(const AcGePoint3d& p) {
  const auto rounded = [](double v) { return formatDouble(std::round(v * 1e6) / 1e6 + 0.0); };
  return rounded(p.x) + "," + rounded(p.y);
}

inline std::string drawnLines(HostApp& app) {
  std::string text;
  for (const AcDbObjectId& id : currentSpaceEntities(app.documents().current())) {
    AcDbLine* line = nullptr;
    if (acdbOpenObject(line, id, AcDb::kForRead) != Acad::eOk) continue;
    if (!text.empty()) text += " ";
    text += roundedPoint(line->startPoint()) + ">" + roundedPoint(line->endPoint());
    line->close();
  }
  return text;
}

}  // namespace tarn::host
