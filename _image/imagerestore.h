#pragma once

class AcApDocument;

namespace tarn::image {

/// Makes the document's record and its image entity and binds the images whose paths are stored in
/// the drawing, all displayed. Does nothing for a document that was restored before. Paths that are
/// found neither where they were stored nor beside the drawing are skipped without a word.
void restoreImages(AcApDocument* document);

}  // namespace tarn::image
