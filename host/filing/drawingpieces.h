// The bytes of a drawing on their way out, in pieces, so that it never stands in memory twice.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "adesk.h"
#include "base/result.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

/// Takes the next bytes; a failure ends the giving and is its outcome.
using PieceTaker = std::function<Status(std::string_view)>;
/// Gives all bytes of a drawing from the first to the last; the same at every call, as long as
/// nothing changes.
using DrawingPieces = std::function<Status(const PieceTaker&)>;

/// The file that was read, on which what is saved stands: its version and encoding are those of the
/// pieces.
struct Ground {
  const TagDocument& document;
  const TextEncoding& encoding;
};

/// Reads a drawing in pieces as documents of whole objects, from the first to the last: together
/// they hold all bytes, those before the first tag and behind the end mark included. Parts say
/// that they are of the ground's version.
ACADHOST_EXPORT Status forEachPart(const DrawingPieces& pieces, const Ground& ground,
                                   const std::function<Status(const TagDocument&)>& use);

/// In which section an object stands, for those who see one part after the other.
class SectionWatch {
 public:
  /// To be called with each object; true for those inside sections, their first and last included.
  void pass(const TagDocument& part, std::uint32_t object);
  /// The name; empty between sections. The ENDSEC still belongs to its section.
  const std::string& section() const { return section_; }

 private:
  std::string section_;
  bool ends_ = false;
};

}  // namespace tarn::host
