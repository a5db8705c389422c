#include "inc/kelapi.h"

extern "C" KEL_PLUGIN_API int somethingElse();
extern "C" KEL_PLUGIN_API int somethingElse() {
  return 0;
}
