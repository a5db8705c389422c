#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>

#include "acutmem.h"
#include "host/rx/resbuf_kind.h"

using tarn::host::ResbufKind;
using tarn::host::resbufKindOf;

namespace {

struct Range {
  int first, last;
  ResbufKind kind;
};

constexpr Range kRanges[] = {{0, 9, ResbufKind::kText},
                             {-4, -4, ResbufKind::kText},  // brackets of filters
                             {10, 18, ResbufKind::kPoint},
                             {19, 59, ResbufKind::kReal},
                             {60, 79, ResbufKind::kInt16},
                             {90, 99, ResbufKind::kInt32},
                             {100, 109, ResbufKind::kText},
                             {110, 119, ResbufKind::kPoint},
                             {120, 149, ResbufKind::kReal},
                             {160, 169, ResbufKind::kInt64},
                             {170, 179, ResbufKind::kInt16},
                             {210, 219, ResbufKind::kPoint},
                             {270, 299, ResbufKind::kInt16},
                             {300, 309, ResbufKind::kText},
                             {310, 319, ResbufKind::kBinary},
                             {320, 369, ResbufKind::kName},
                             {370, 389, ResbufKind::kInt16},
                             {390, 399, ResbufKind::kName},
                             {400, 409, ResbufKind::kInt16},
                             {410, 419, ResbufKind::kText},
                             {420, 429, ResbufKind::kInt32},
                             {430, 439, ResbufKind::kText},
                             {440, 459, ResbufKind::kInt32},
                             {460, 469, ResbufKind::kReal},
                             {470, 479, ResbufKind::kText},
                             {480, 481, ResbufKind::kName},
                             {999, 1003, ResbufKind::kText},
                             {1004, 1004, ResbufKind::kBinary},
                             {1005, 1009, ResbufKind::kText},
                             {1010, 1013, ResbufKind::kPoint},
                             {1040, 1042, ResbufKind::kReal},
                             {1070, 1070, ResbufKind::kInt16},
                             {1071, 1071, ResbufKind::kInt32},
                             {RTREAL, RTREAL, ResbufKind::kReal},
                             {RTPOINT, RTPOINT, ResbufKind::kPoint},
                             {RTSHORT, RTSHORT, ResbufKind::kInt16},
                             {RTANG, RTANG, ResbufKind::kReal},
                             {RTSTR, RTSTR, ResbufKind::kText},
                             {RTENAME, RTPICKS, ResbufKind::kName},
                             {RTORINT, RTORINT, ResbufKind::kReal},
                             {RT3DPOINT, RT3DPOINT, ResbufKind::kPoint},
                             {RTLONG, RTLONG, ResbufKind::kInt32},
                             {RTVOID, RTVOID, ResbufKind::kNothing},
                             {RTLB, RTNIL, ResbufKind::kNothing},
                             {RTT, RTT, ResbufKind::kNothing},
                             {RTINT64, RTINT64, ResbufKind::kInt64}};

/// malloc, as callers of the public interface may put texts of their own (wcsdup) into buffers.
ACHAR* copyText(const ACHAR* text) {
  const size_t bytes = (std::wcslen(text) + 1) * sizeof(ACHAR);
  auto* copy = static_cast<ACHAR*>(std::malloc(bytes));
  if (copy != nullptr) std::memcpy(copy, text, bytes);
  return copy;
}

void copyBinary(const ads_binary& from, ads_binary& to) {
  to.clen = std::max<short>(from.clen, 0);
  to.buf = static_cast<char*>(std::malloc(static_cast<size_t>(to.clen) + 1));
  if (to.buf == nullptr) {
    to.clen = 0;
  } else if (to.clen > 0) {
    std::memcpy(to.buf, from.buf, static_cast<size_t>(to.clen));
  }
}

}  // namespace

ResbufKind tarn::host::resbufKindOf(int type) {
  for (const Range& range : kRanges) {
    if (type >= range.first && type <= range.last) return range.kind;
  }
  return ResbufKind::kUnknown;
}

resbuf* acutNewRb(int type) {
  auto* item = new resbuf{};
  item->restype = static_cast<short>(type == RTDXF0 ? 0 : type);
  return item;
}

int acutRelRb(resbuf* chain) {
  while (chain != nullptr) {
    const std::unique_ptr<resbuf> item(chain);
    chain = item->rbnext;
    const ResbufKind kind = resbufKindOf(item->restype);
    if (kind == ResbufKind::kText) std::free(item->resval.rstring);
    if (kind == ResbufKind::kBinary) std::free(item->resval.rbinary.buf);
  }
  return RTNORM;
}

resbuf* acutBuildList(int type, ...) {
  resbuf* first = nullptr;
  resbuf** next = &first;
  std::va_list values;
  va_start(values, type);
  for (int code = type; code != 0 && code != RTNONE; code = va_arg(values, int)) {
    resbuf* const item = acutNewRb(code);
    *next = item;
    next = &item->rbnext;
    const ResbufKind kind = resbufKindOf(item->restype);
    if (kind == ResbufKind::kText) {
      const ACHAR* const text = va_arg(values, const ACHAR*);
      item->resval.rstring = copyText(text == nullptr ? ACRX_T("") : text);
    } else if (kind == ResbufKind::kReal) {
      item->resval.rreal = va_arg(values, double);
    } else if (kind == ResbufKind::kPoint) {
      std::copy_n(va_arg(values, const double*), 3, item->resval.rpoint);
    } else if (kind == ResbufKind::kInt16) {
      item->resval.rint = static_cast<short>(va_arg(values, int));
    } else if (kind == ResbufKind::kInt32) {
      item->resval.rlong = va_arg(values, Adesk::Int32);
    } else if (kind == ResbufKind::kInt64) {
      item->resval.mnInt64 = va_arg(values, Adesk::Int64);
    } else if (kind == ResbufKind::kName) {
      std::copy_n(va_arg(values, const Adesk::LongPtr*), 2, item->resval.rlname);
    } else if (kind == ResbufKind::kBinary) {
      copyBinary(*va_arg(values, const ads_binary*), item->resval.rbinary);
    } else if (kind == ResbufKind::kUnknown) {
      // What follows cannot be read without knowing the size of this value.
      acutRelRb(first);
      first = nullptr;
      break;
    }
  }
  va_end(values);
  return first;
}

Acad::ErrorStatus acutNewString(const ACHAR* input, ACHAR*& output) {
  output = input == nullptr ? nullptr : copyText(input);
  if (input == nullptr) return Acad::eInvalidInput;
  return output == nullptr ? Acad::eOutOfMemory : Acad::eOk;
}

void acutDelString(ACHAR*& text) {
  std::free(text);
  text = nullptr;
}
