// What rxprobe_wrong.cpp wants to have.
#include "base/export.h"

void tarnProbeNobodyHasThis();

TARN_EXPORT void tarnProbeNobodyHasThis() {}
