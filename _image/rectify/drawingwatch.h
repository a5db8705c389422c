// Tells the dialog what happens to the drawing that it works on.
#pragma once

#include <functional>

#include "acdocman.h"
#include "aced.h"

namespace tarn::image {

/// Listens to the host while it lives.
class DrawingWatch {
 public:
  struct Hooks {
    std::function<void()> viewChanged;     ///< panned, zoomed or drawn anew
    std::function<void()> documentCloses;  ///< the watched document goes
  };
  DrawingWatch(AcApDocument* document, Hooks hooks);
  ~DrawingWatch();
  DrawingWatch(const DrawingWatch&) = delete;
  DrawingWatch& operator=(const DrawingWatch&) = delete;

 private:
  class EditorReactor : public AcEditorReactor {
   public:
    explicit EditorReactor(const Hooks& hooks) : hooks_(hooks) {}
    void viewChanged() override;

   private:
    const Hooks& hooks_;
  };
  class DocumentReactor : public AcApDocManagerReactor {
   public:
    DocumentReactor(AcApDocument* document, const Hooks& hooks)
        : document_(document), hooks_(hooks) {}
    void documentToBeDestroyed(AcApDocument* document) override;

   private:
    AcApDocument* document_;
    const Hooks& hooks_;
  };

  Hooks hooks_;
  EditorReactor editor_;
  DocumentReactor documents_;
};

}  // namespace tarn::image
