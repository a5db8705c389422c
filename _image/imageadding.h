// Adding images to a drawing: the one way for commands, panel and command line.
#pragma once

#include <string>
#include <vector>

#include "inc/iimagedivision.h"

class AcApDocument;
class CDocData;

namespace tarn::image {

/// The message of every caller that finds no record of the current document.
void reportNoRecord();

/// The record of the current document; null after the message.
CDocData* currentRecordOrReport();

/// Lets the user choose images, local files or those of a server as the configuration says, and
/// adds them, stores the list and redraws.
void addImages();

/// The same for images that are known, by their paths or their names on servers: each is added or
/// leaves a message, the others still are.
void addImagesOf(AcApDocument* document, CDocData& record, const std::vector<std::wstring>& paths);

/// Adds one image whose source is open: binds it to the document's image entity, enters it in the
/// record's list as displayed, appends the entity to the drawing when it is not there yet. False
/// after a message; the record is then as it was and the source closed.
bool addOpenedImage(AcApDocument* document, CDocData& record, const std::wstring& path,
                    kel::Object<IImageDivision>& division);

/// The second half of that, for any image that is bound to the record's entity. False after a
/// message; the source is then closed.
bool addBoundImage(AcApDocument* document, CDocData& record, const std::wstring& path);

/// The paths stored in a drawing, and storing them. False, after a message, when they cannot be
/// stored.
std::vector<std::wstring> storedImagePaths(const CDocData& record);
bool storeImagePaths(AcApDocument* document, CDocData& record,
                     const std::vector<std::wstring>& paths);
/// Takes the stored list away. False after a message.
bool eraseStoredImagePaths(AcApDocument* document, CDocData& record);
/// Adds one path to those stored, unless it is among them.
bool storeImagePath(AcApDocument* document, CDocData& record, const std::wstring& path);

}  // namespace tarn::image
