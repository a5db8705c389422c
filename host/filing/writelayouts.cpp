// Layouts and new blocks in a drawing file.
#include "dblayout.h"
#include "dbsymtb.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"
#include "host/filing/objectcodec.h"
#include "host/filing/renamedrecords.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

namespace {

constexpr int kCentered = 4;
constexpr int kStandardScale = 16;
constexpr int kPrintLineweights = 128;
constexpr int kModelType = 1024;

int flagsOf(const PlotData& data) {
  return (data.centered ? kCentered : 0) | (data.fit ? kStandardScale : 0) |
         (data.lineWeights ? kPrintLineweights : 0) | (data.model ? kModelType : 0);
}

struct RealField {
  int code;
  double PlotData::*value;
};
constexpr RealField kReals[] = {
    {40, &PlotData::left},       {41, &PlotData::bottom},      {42, &PlotData::right},
    {43, &PlotData::top},        {44, &PlotData::width},       {45, &PlotData::height},
    {46, &PlotData::originX},    {47, &PlotData::originY},     {48, &PlotData::windowMinX},
    {49, &PlotData::windowMinY}, {140, &PlotData::windowMaxX}, {141, &PlotData::windowMaxY},
    {142, &PlotData::numerator}, {143, &PlotData::denominator}};

struct TextField {
  int code;
  std::wstring PlotData::*value;
};
constexpr TextField kTexts[] = {{1, &PlotData::settingsName},
                                {2, &PlotData::device},
                                {4, &PlotData::paper},
                                {6, &PlotData::view}};

template <typename Enum>
Enum boundedEnum(int value, int highest) {
  return static_cast<Enum>(value >= 0 && value <= highest ? value : 0);
}

void writePlotData(const PlotData& data, const PlotData& before, TagEditor& editor) {
  editor.enter("AcDbPlotSettings");
  // A field that the file leaves out has its standard value.
  const auto ifNew = [&](auto standard) {
    return editor.isNew() ? std::nullopt : std::optional<decltype(standard)>(standard);
  };
  for (const TextField& field : kTexts) {
    editor.setText(field.code, data.*field.value, ifNew(std::wstring_view()));
  }
  for (const RealField& field : kReals) {
    editor.setReal(field.code, data.*field.value, ifNew(0.0));
  }
  if (editor.isNew() || flagsOf(data) != flagsOf(before)) {
    const int mask = kCentered | kStandardScale | kPrintLineweights | kModelType;
    editor.setFlags(70, mask, flagsOf(data), 0);
  }
  editor.setInteger(72, data.units, ifNew(0LL));
  editor.setInteger(73, data.rotation, ifNew(0LL));
  editor.setInteger(74, data.type, ifNew(0LL));
  if (editor.isNew() || data.fit != before.fit) editor.setInteger(75, data.fit ? 0 : 16);
}

}  // namespace

PlotData readPlotData(const TagView& tags) {
  PlotData data;
  for (const TextField& field : kTexts) data.*field.value = tags.text(field.code);
  for (const RealField& field : kReals) data.*field.value = tags.real(field.code);
  const int flags = tags.integer(70);
  data.centered = (flags & kCentered) != 0;
  data.fit = (flags & kStandardScale) != 0 && tags.integer(75) == 0;
  data.lineWeights = (flags & kPrintLineweights) != 0;
  data.model = (flags & kModelType) != 0;
  data.units = boundedEnum<AcDbPlotSettings::PlotPaperUnits>(tags.integer(72), 2);
  data.rotation = boundedEnum<AcDbPlotSettings::PlotRotation>(tags.integer(73), 3);
  data.type = boundedEnum<AcDbPlotSettings::PlotType>(tags.integer(74), 5);
  return data;
}

std::string writeLayout(const DrawingBinding& binding, const AcDbLayout& layout,
                        const BoundObject* old) {
  const ACHAR* name = L"";
  layout.getLayoutName(name);
  const PlotData& data = LayoutAccess::data(layout);
  if (old != nullptr) {
    const TagView tags = binding.view(old->first);
    TagEditor editor = editorOf(binding, old->first);
    writePlotData(data, readPlotData(tags.behind("AcDbPlotSettings")), editor);
    editor.enter("AcDbLayout");
    editor.setText(1, name);
    editor.setInteger(71, layout.getTabOrder(), 0);
    writeExtendedData(binding, layout, old, editor);
    return editor.bytes();
  }
  TagEditor editor(binding.document, binding.encoding, "LAYOUT");
  editor.setHandle(5, layout.handle().value());
  editor.setHandle(330, layout.ownerId().handle().value());
  writePlotData(data, {}, editor);
  for (const int code : {147}) editor.addReal(code, 1);
  for (const int code : {148, 149}) editor.addReal(code, 0);
  editor.enter("AcDbLayout");
  editor.setText(1, name);
  editor.setInteger(70, 1);
  editor.setInteger(71, layout.getTabOrder());
  const auto addFlat = [&](int code, double x, double y) {
    editor.addReal(code, x);
    editor.addReal(code + 10, y);
  };
  addFlat(10, 0, 0);
  addFlat(11, data.width, data.height);
  editor.setPoint(12, {0, 0, 0});
  editor.setPoint(14, {0, 0, 0});
  editor.setPoint(15, {data.width, data.height, 0});
  editor.setReal(146, 0);
  editor.setPoint(13, {0, 0, 0});
  editor.setPoint(16, {1, 0, 0});
  editor.setPoint(17, {0, 1, 0});
  editor.setInteger(76, 0);
  editor.setHandle(330, layout.getBlockTableRecordId().handle().value());
  writeExtendedData(binding, layout, nullptr, editor);
  return editor.bytes();
}

std::string writeBlockRecord(const DrawingBinding& binding, const AcDbBlockTableRecord& block,
                             std::uint64_t tableHandle) {
  TagEditor editor(binding.document, binding.encoding, "BLOCK_RECORD");
  editor.setHandle(5, block.handle().value());
  editor.setHandle(330, tableHandle);
  editor.enter("AcDbSymbolTableRecord");
  editor.enter("AcDbBlockTableRecord");
  editor.setText(2, recordName(block.objectId()));
  if (block.isLayout()) {
    for (const LayoutEntry& entry : layoutsOf(*binding.database)) {
      if (entry.block == block.objectId()) editor.setHandle(340, entry.id.handle().value());
    }
  }
  return editor.bytes();
}

std::string writeBlock(DrawingBinding& binding, const AcDbBlockTableRecord& block,
                       const std::string& entities) {
  std::uint32_t part = 0;
  const auto begin = [&](const char* type) {
    TagEditor editor(binding.document, binding.encoding, type);
    if (binding.hasHandles) {
      editor.setHandle(5, binding.partHandle(block.objectId(), part++));
      if (!editor.isOld()) editor.setHandle(330, block.handle().value());
    }
    editor.enter("AcDbEntity");
    if (block.isLayout()) editor.setInteger(67, 1);
    editor.setText(8, L"0");
    return editor;
  };
  TagEditor head = begin("BLOCK");
  const std::wstring name = recordName(block.objectId());
  head.enter("AcDbBlockBegin");
  head.setText(2, name);
  head.setInteger(70, 0);
  head.setPoint(10, block.origin());
  head.setText(3, name);
  head.setText(1, L"");
  TagEditor end = begin("ENDBLK");
  end.enter("AcDbBlockEnd");
  return head.bytes() + entities + end.bytes();
}

}  // namespace tarn::host
