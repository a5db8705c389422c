// Utility functions of the host: result buffers and texts. Command-line output stands in aced.h.
#pragma once

#include "acutmem.h"
