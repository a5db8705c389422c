#include "_image/rectify/drawingwatch.h"

#include <utility>

#include "rxdict.h"

namespace tarn::image {

DrawingWatch::DrawingWatch(AcApDocument* document, Hooks hooks)
    : hooks_(std::move(hooks)), editor_(hooks_), documents_(document, hooks_) {
  if (AcEditor* editor = acedEditor) editor->addReactor(&editor_);
  if (acDocManager) acDocManager->addReactor(&documents_);
}

DrawingWatch::~DrawingWatch() {
  if (AcEditor* editor = acedEditor) editor->removeReactor(&editor_);
  if (acDocManager) acDocManager->removeReactor(&documents_);
}

void DrawingWatch::EditorReactor::viewChanged() {
  hooks_.viewChanged();
}

// What the hook does may take the watch away, so nothing follows it.
void DrawingWatch::DocumentReactor::documentToBeDestroyed(AcApDocument* document) {
  if (document != document_) return;
  const std::function<void()> closes = hooks_.documentCloses;
  closes();
}

}  // namespace tarn::image
