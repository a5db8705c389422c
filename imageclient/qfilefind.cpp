#include "imageclient/qfilefind.h"

#include <memory>
#include <string>

#include "imageclient/clientservices.h"
#include "imageclient/serverfolders.h"
#include "imageclient/tarnclientmanager.h"
#include "inc/iuserinterface.h"
#include "inc/kimageservers.h"

namespace {

using tarn::client::ServerFolders;

/// The configured servers that the name of an image can begin with.
std::vector<ServerFolders::Server> servers() {
  std::vector<ServerFolders::Server> out;
  for (const kel::ImageServer& server :
       kel::imageServersOf(tarn::client::configured(kel::kImageServersKey))) {
    auto place = tarn::client::parsePlace(server.host.str(), std::to_string(server.port));
    if (!place) continue;
    place.value().https = server.isHttps;
    place.value().caFile = server.caFile.str();
    out.push_back({server.name.str(), place.take(), server.folder.str()});
  }
  return out;
}

}  // namespace

QFileFind& QFileFind::Instance(Callback callback) {
  static QFileFind instance;
  if (callback) instance.callback_ = callback;
  return instance;
}

LOADWAY QFileFind::loadImgWay() {
  return tarn::client::configured(kel::kLoadWayKey) == "1" ? LOADWAY::kServer : LOADWAY::kLocal;
}

kel::StringList QFileFind::getImgInfo(kel::DString& imageName) {
  imageName = {};
  chosen_ = {};
  const auto tell = [this](const std::string& message) {
    callback_ ? callback_(message.c_str()) : tarn::client::tellUser(message);
  };
  const auto folders = std::make_shared<ServerFolders>(servers(), TarnClientManager::times());
  if (folders->isEmpty()) {
    tell("No image server is configured; IMAGESERVER does that.");
    return {};
  }
  kel::Listing listing;
  listing.title = "Images on servers";
  listing.accept = "Add";
  listing.read = [folders](const kel::DString& folder, kel::List<kel::ListingEntry>& entries) {
    // The key may stand in the entries that are about to go.
    const std::string key = folder.str();
    return kel::DString(folders->read(key, entries));
  };
  listing.preview = [folders](const kel::DString& image) { return folders->preview(image.str()); };
  chosen_ = tarn::client::chooseFromListing(listing);
  if (!chosen_.empty()) imageName = chosen_.front();
  return chosen_;
}
