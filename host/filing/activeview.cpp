// What a drawing is opened with: its tab, the view of its active viewport.
#include <cmath>

#include "base/text.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingfile.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

namespace {

/// The object of the active viewport in the table; 0 when there is none.
std::uint32_t activeViewport(const DrawingBinding& binding) {
  const TagDocument& document = binding.document;
  const DrawingSection* section = document.section("TABLES");
  for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
       section != nullptr && i < section->endObject; ++i) {
    if (document.typeOf(i) == "VPORT" && binding.view(i).text(2) == L"*ACTIVE") return i;
    if (document.typeOf(i) == "VPORT" && binding.view(i).text(2) == L"*Active") return i;
  }
  return 0;
}

/// The centre stands in the system of the view: turned by the twist about the target.
DrawingView groundView(const TagView& tags) {
  DrawingView view;
  view.height = tags.real(40);
  view.twist = tags.angle(51);
  const double x = tags.real(12);
  const double y = tags.real(22);
  const double c = std::cos(view.twist);
  const double s = std::sin(view.twist);
  view.centerX = tags.real(17) + (x * c + y * s);
  view.centerY = tags.real(27) + (y * c - x * s);
  return view;
}

bool isSame(const DrawingView& a, const DrawingView& b) {
  return a.centerX == b.centerX && a.centerY == b.centerY && a.height == b.height &&
         a.twist == b.twist;
}

std::optional<DrawingView> activeView(const DrawingBinding& binding) {
  const std::uint32_t viewport = activeViewport(binding);
  if (viewport == 0) return std::nullopt;
  const DrawingView view = groundView(binding.view(viewport));
  if (!(view.height > 0) || !std::isfinite(view.height + view.centerX + view.centerY)) {
    return std::nullopt;
  }
  return view;
}

constexpr const char* kTileMode = "$TILEMODE";

bool isTiled(const TagDocument& document) {
  const TagRange range = document.headerVariable(kTileMode);
  return range.begin >= range.end || document.word(document.tag(range.begin)) != "0";
}

}  // namespace

OpeningState drawingState(const DrawingBinding& binding) {
  const TagDocument& document = binding.document;
  OpeningState state;
  state.view = activeView(binding);
  state.isTiled = isTiled(document);
  return state;
}

void writeHeaderState(const TagDocument& document, const OpeningState& state, TagEditor& header) {
  if (isTiled(document) == state.isTiled) return;
  const TagRange range = document.headerVariable(kTileMode);
  if (range.begin < range.end) {
    const std::uint32_t begin = document.tagsOf(document.section("HEADER")->firstObject).begin;
    header.replaceAt(range.begin - begin, state.isTiled ? "1" : "0");
  } else {
    header.toEnd();
    header.addWord(9, kTileMode);
    header.addInteger(70, 0);
  }
}

void editActiveView(const DrawingBinding& binding, const DrawingView& view, DrawingEdits& edits) {
  const std::uint32_t viewport = activeViewport(binding);
  if (viewport == 0) return;
  const TagView tags = binding.view(viewport);
  if (isSame(groundView(tags), view)) return;
  const double x = view.centerX - tags.real(17);
  const double y = view.centerY - tags.real(27);
  const double c = std::cos(view.twist);
  const double s = std::sin(view.twist);
  TagEditor editor(binding.document, binding.encoding, tags.range());
  editor.enter("AcDbViewportTableRecord");
  editor.setReal(12, x * c - y * s);
  editor.setReal(22, x * s + y * c);
  editor.setReal(40, view.height);
  editor.setAngle(51, view.twist, 0);
  edits.replace(viewport, 1, editor.bytes());
}

}  // namespace tarn::host
