// Values that pass between host and modules: points, entity names and chains of result buffers.
#pragma once

#include "adesk.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_name = Adesk::LongPtr[2];
using ads_matrix = ads_real[4][4];

struct ads_binary {
  short clen;
  char* buf;
};

union ads_u_val {
  ads_real rreal;
  ads_real rpoint[3];
  short rint;
  ACHAR* rstring;
  Adesk::LongPtr rlname[2];
  Adesk::Int32 rlong;
  Adesk::Int64 mnInt64;
  ads_binary rbinary;
};

/// One item of a chain. `restype` is a group code or one of the RT codes and tells which member of
/// `resval` holds. Chains are made by acutNewRb or acutBuildList and freed by acutRelRb, which also
/// frees the strings and binary chunks in them.
struct resbuf {
  resbuf* rbnext;
  short restype;
  ads_u_val resval;
};

#define ads_name_set(from, to) (*(to) = *(from), *((to) + 1) = *((from) + 1))
#define ads_name_clear(name) ((name)[0] = (name)[1] = 0)
#define ads_name_nil(name) ((name)[0] == 0)
#define ads_point_set(from, to) \
  (*(to) = *(from), *((to) + 1) = *((from) + 1), *((to) + 2) = *((from) + 2))
