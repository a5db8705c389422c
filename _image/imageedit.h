// Changes of a document's image list that are no additions.
#pragma once

#include <string>
#include <vector>

class AcApDocument;
class CDocData;

namespace tarn::image {

/// From now on the image client releases images of the current document by path.
void setImageReleaser();

/// Closes the image's source and takes it out of the list of the current document's record. False
/// when there was none.
bool releaseListedImage(CDocData& record, const std::wstring& path);

/// Stores the record's order in the drawing. Stored paths without an image keep their places.
void storeOrder(AcApDocument* document, CDocData& record);

/// Takes away what the drawing keeps of the places of images that are listed no more.
void forgetPlacements(AcApDocument* document, CDocData& record,
                      const std::vector<std::wstring>& before,
                      const std::vector<std::wstring>& now);

/// The stored list while images are taken out of it: erased at first, written with what remains in
/// the end, whatever happened meanwhile.
class StoredListChange {
 public:
  StoredListChange(AcApDocument* document, CDocData& record);
  ~StoredListChange();
  StoredListChange(const StoredListChange&) = delete;
  StoredListChange& operator=(const StoredListChange&) = delete;

  /// False, after a message, when nothing may be changed.
  bool isErased() const { return m_isErased; }
  /// Takes out what leads to that image.
  void remove(const std::wstring& path);

 private:
  AcApDocument* m_document;
  CDocData& m_record;
  std::vector<std::wstring> m_before;
  std::vector<std::wstring> m_paths;
  bool m_isErased = false;
};

}  // namespace tarn::image
