// How dictionaries, extended records, layers and classes stand in drawing files.
#pragma once

#include <string>
#include <vector>

#include "host/database/plotdata.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/tageditor.h"

class AcDbDictionary;
class AcDbLayerTableRecord;
class AcDbLayout;
class AcDbSortentsTable;
class AcDbXrecord;
class AcRxClass;

namespace tarn::host {

// Marks of records that are written back.
constexpr char kLayerMark[] = "AcDbLayerTableRecord";
constexpr char kViewMark[] = "AcDbViewTableRecord";

struct DictionaryEntry {
  std::wstring name;
  std::uint64_t handle = 0;
  std::uint32_t tag = 0;  ///< of the name
};
std::vector<DictionaryEntry> entriesOf(const TagView& tags);

struct AddedObject;

// Bytes of an object. `old` is the file's object that it was made from; without one it is new.
/// `added` get entries behind all others.
std::string writeDictionary(const DrawingBinding& binding, const AcDbDictionary& dictionary,
                            const BoundObject* old, const std::vector<AddedObject>& added);
std::string writeRecord(const DrawingBinding& binding, const AcDbXrecord& record,
                        const BoundObject* old);
std::string writeSortTable(const DrawingBinding& binding, const AcDbSortentsTable& table,
                           const BoundObject* old);
/// Null for one whose block is missing.
AcDbSortentsTable* readSortTable(const DrawingBinding& binding, const TagView& tags);
AcDbSymbolTableRecord* readLinetypeRecord(const TagView& tags);
AcDbSymbolTableRecord* readStyleRecord(const TagView& tags);
AcDbSymbolTableRecord* readViewRecord(const TagView& tags);
std::string writeViewRecord(const DrawingBinding& binding, const AcDbViewTableRecord& view,
                            const BoundObject* old, std::uint64_t tableHandle);
std::string writeLayerRecord(const DrawingBinding& binding, const AcDbLayerTableRecord& layer,
                             const BoundObject* old, std::uint64_t tableHandle);
PlotData readPlotData(const TagView& tags);
std::string writeLayout(const DrawingBinding& binding, const AcDbLayout& layout,
                        const BoundObject* old);
/// A new block: its record in the table, and its definition with the entities given.
std::string writeBlockRecord(const DrawingBinding& binding, const AcDbBlockTableRecord& block,
                             std::uint64_t tableHandle);
std::string writeBlock(DrawingBinding& binding, const AcDbBlockTableRecord& block,
                       const std::string& entities);
/// A record of the CLASSES section for a class whose entities are written.
std::string writeClass(const DrawingBinding& binding, const AcRxClass& description);

}  // namespace tarn::host
