#pragma once

namespace tarn::cad {

/// Reads the denominator of the current drawing's scale (the host variable "userr1") into `scale`.
/// Below 3 there is none set, and it is 500.
void drawingScale(double& scale);

}  // namespace tarn::cad
