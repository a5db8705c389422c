// Runs of values in a drawing file as result buffers: records, extended data, definitions.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "acutads.h"
#include "host/database/resbufitems.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

struct ReleaseChain {
  void operator()(resbuf* chain) const { acutRelRb(chain); }
};
using ResbufChain = std::unique_ptr<resbuf, ReleaseChain>;

/// The tags that `wanted` says yes to, in their order; codes without a kind are left out.
ResbufChain chainOf(const DrawingBinding& binding, const TagView& tags,
                    const std::function<bool(const Tag&)>& wanted);

/// Behind the tag that was set last; see TagEditor::putReal().
void putValue(const resbuf& item, TagEditor& editor);

/// The extended data at the end of an object; nothing when some of it cannot be held.
std::optional<ResbufItems> extendedDataOf(const DrawingBinding& binding, const TagView& tags);
/// Gives the file's extended data to a new object.
void readExtendedData(const DrawingBinding& binding, const TagView& tags, AcDbObject& object);
/// Writes the object's extended data where it differs from what stands in the file (`old`).
/// The object's extension dictionary, where it is another one than in the file.
void writeExtension(const DrawingBinding& binding, const AcDbObject& object, const BoundObject* old,
                    TagEditor& editor);
void writeExtendedData(const DrawingBinding& binding, const AcDbObject& object,
                       const BoundObject* old, TagEditor& editor);

/// Reads what the line types and the styles of texts say beyond their names. All tables have been
/// read.
void readDefinitions(DrawingBinding& binding);
/// A new line type, style of texts or name of an application. Empty for other records and for what
/// a drawing of R12 takes for granted.
std::string writeDefinedRecord(const DrawingBinding& binding, const AcDbSymbolTableRecord& record,
                               std::uint64_t tableHandle);
/// The table of such a record in the file; null for other records.
const char* definedTableOf(const AcDbObject& record);

}  // namespace tarn::host
