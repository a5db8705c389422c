// A drawing of R12 as one of R2000.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/result.h"
#include "host/filing/drawingbinding.h"

namespace tarn::host {

/// The bytes of the same drawing as R2000, and what became of its objects. Every entity, record and
/// value of the old file is in it, in the same order and with the same texts; it has the handles,
/// owners, subclass marks, block records and dictionaries that R12 does not know. Objects of the
/// database keep the handles that they have there.
struct ModernDrawing {
  std::string bytes;
  std::map<std::uint32_t, std::uint64_t> handles;  ///< by the object in the old file
};
ModernDrawing modernDrawing(const DrawingBinding& binding);

/// Makes the file of an R12 drawing one of R2000; the objects of the database stay what they are.
/// On failure nothing has changed.
Status modernize(DrawingBinding& binding);

/// How the data of an R12 entity are divided among subclasses.
struct SubclassPart {
  const char* mark;
  std::vector<int> codes;  ///< that belong behind this mark; empty: all that no other part takes
};
/// The marks behind AcDbEntity in their order; none for a kind that R12 does not have.
std::vector<SubclassPart> subclassesOf(const TagView& entity, const TagView* head);

}  // namespace tarn::host
