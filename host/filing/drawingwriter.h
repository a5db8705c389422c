// How a drawing that is saved comes from the file that was read.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/filing/drawingedits.h"
#include "host/filing/drawingpieces.h"

class AcDbDatabase;

namespace tarn::host {

struct DrawingBinding;
struct OpeningState;
struct DrawingView;
class TagEditor;
class TextEncoding;

/// What stands on the sheet in front, among the entities of the model: entities and their parts.
std::vector<std::uint32_t> frontSheetObjects(const TagDocument& document,
                                             const TextEncoding& encoding);

/// The file with all changes, as it is to be saved; see DrawingFile::write(). Nothing may change
/// while the pieces are in use.
DrawingPieces writeDrawing(DrawingBinding& binding, const std::optional<OpeningState>& state);
/// The drawing with another sheet in front: its block is the one of the name *Paper_Space and its
/// entities stand among those of the model, as programs expect of the sheet that they open with.
/// What was in front before, if it is still there, takes the other's place. Blocks by the handles
/// of their records; the drawing as it is when there is no such sheet. The ground has to outlive
/// the pieces.
DrawingPieces withFrontSheet(DrawingPieces pieces, const Ground& ground, std::uint64_t block);

// `header` is the editor of the header section.
void writeHeaderVariables(const AcDbDatabase& database, const TagDocument& document,
                          TagEditor& header);
/// What of them stands in an object of its own, of this kind.
void writeFrameMode(const AcDbDatabase& database, std::string_view kind, TagEditor& object);
void writeHeaderState(const TagDocument& document, const OpeningState& state, TagEditor& header);
void editActiveView(const DrawingBinding& binding, const DrawingView& view, DrawingEdits& edits);

}  // namespace tarn::host
