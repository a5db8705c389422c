// Images of servers in the lists of drawings.
#pragma once

#include <memory>
#include <string>
#include <vector>

class AcApDocument;
class CDocData;
class TarnClientManager;

namespace tarn::image {

/// Lets the user choose images of the configured servers; their names without display names.
std::vector<std::wstring> askForServerImages();
/// The names chosen last, but for the first: who takes one image only leaves these.
std::vector<std::wstring> furtherServerImages();

/// Adds an image whose client is open, as addOpenedImage() does.
bool addServerImage(AcApDocument* document, CDocData& record, const std::wstring& path,
                    std::unique_ptr<TarnClientManager> client);

/// Opens an image that is not held yet and adds it; false after a message.
bool openAndAddServerImage(AcApDocument* document, CDocData& record, const std::wstring& path);

/// The same for an image that the drawing stores: it is listed whatever its server says, which is
/// not asked before openServerImages(). False when it is held already.
bool restoreServerImage(AcApDocument* document, CDocData& record, const std::wstring& path);

/// Opens all images of servers that are listed and not open, with requests that go out together.
void openServerImages(CDocData& record);

}  // namespace tarn::image
