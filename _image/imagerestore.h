#pragma once

#include <string>

class AcApDocument;

namespace tarn::image {

/// Makes the document's record and its image entity and binds the images whose paths are stored in
/// the drawing, all displayed. Does nothing for a document that was restored before. Paths that are
/// found neither where they were stored nor beside the drawing are skipped without a word.
void restoreImages(AcApDocument* document);

/// Where an image is that is stored under this path: there, or where the drawing's own folder leads
/// to; empty when it is missing. Images of servers are never missing.
std::wstring presentImagePath(const std::wstring& stored, const AcApDocument& document);

/// Binds stored images that have been missing until now. True when there were some.
bool bindFoundImages(AcApDocument* document);

/// After undo and redo: the record's list and the sources bound to its entity become those of the
/// paths that the drawing stores now. True when that changed what is to be seen.
bool followDrawing(AcApDocument* document);

}  // namespace tarn::image
