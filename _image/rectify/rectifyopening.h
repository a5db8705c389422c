// Opening the rectification dialog of one image of a document.
#pragma once

#include <string>

class CDocData;

namespace tarn::image {

/// Makes `path` the current image of the document's entity, which is made when there is none, and
/// shows the dialog on it. The dialog goes on after this returns. False when the component is
/// missing (after the framework's assertion) or cannot open the image.
bool openRectification(CDocData& record, const std::wstring& path);

}  // namespace tarn::image
