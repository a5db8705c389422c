// What the drawing keeps of an image's placement: one record an image in a dictionary of its own.
#pragma once

#include <string>
#include <vector>

class AcApDocument;
class AcDbDatabase;
class CDocData;

namespace tarn::image {

/// The component's numbers for one image; empty when the drawing has none.
std::vector<double> storedPlacement(AcDbDatabase* database, const std::wstring& path);

/// Stores them, or takes the record away when there are none. False when the drawing could not take
/// them. The caller has the document locked.
bool storePlacement(AcDbDatabase* database, const std::wstring& path,
                    const std::vector<double>& numbers);

/// Binds what the drawing keeps to the sources of the document's images: after opening and after
/// undo and redo. `stored` are the paths as the drawing stores them; an image that was found
/// elsewhere has the record of the stored path of the same file name, unless it has one of its own.
/// True when that changed what is to be seen.
bool followPlacements(AcApDocument* document, CDocData& record,
                      const std::vector<std::wstring>& stored);

/// Follows a change of the drawing's list of images: the records of images that are listed no more
/// go, and one whose file moved goes with it. The caller has the document locked.
void followPaths(AcDbDatabase* database, const std::vector<std::wstring>& before,
                 const std::vector<std::wstring>& now);

}  // namespace tarn::image
