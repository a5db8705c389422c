// The numbers of a fitted transformation as surveyors write them. Pure.
#pragma once

#include <QString>

#include <vector>

#include "commoncode/fitreport/fitreport.h"

namespace tarn::fitreport {

struct Parameter {
  QString name;
  QString value;
  QString unit;
};

/// The name of a method (0 to 4).
QString methodName(int method, Language language);
/// The formula that the parameters belong to.
QString formulaOf(const FitReport& report);
/// Empty without a fit. Linear, affine and Helmert: expanded to the coordinates themselves, then
/// what follows from them (scales, angles). Polynomials keep the centred and scaled coordinates in
/// which they were fitted, because expanding them would cost their digits.
std::vector<Parameter> parametersOf(const FitReport& report);

}  // namespace tarn::fitreport
