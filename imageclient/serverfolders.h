// The folders of the configured image servers, as the user walks through them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "imageclient/clienttimes.h"
#include "imageclient/folderlisting.h"
#include "imageclient/operation.h"
#include "imageclient/serveraddress.h"
#include "inc/klisting.h"

namespace tarn::client {

/// What a folder holds: from its catalog.json where there is one, else from the index page of the
/// server. `folder` is below the root, without '/' at its ends; the paths of the items are, too.
/// The reason of a failure is a sentence that names the server and the folder.
Result<std::vector<FolderItem>> readServerFolder(const ServerPlace& place,
                                                 const std::string& folder, Operation& operation);

/// A small JPEG picture of a whole image; empty when there is none.
std::string previewOf(const ServerPlace& place, const std::string& path,
                      const std::shared_ptr<Operation>& operation);

class ServerFolders {
 public:
  struct Server {
    std::string name;
    ServerPlace place;
    std::string folder;
  };

  ServerFolders(std::vector<Server> servers, const ClientTimes& times)
      : servers_(std::move(servers)), times_(times) {}

  bool isEmpty() const { return servers_.empty(); }
  /// As kel::Listing::read. The key of an image is its name; the top holds the servers, or
  /// what a single one holds.
  std::string read(const std::string& key, kel::List<kel::ListingEntry>& entries);
  /// As kel::Listing::preview.
  std::string preview(const std::string& key);

 private:
  struct Located {
    ServerPlace place;
    std::string path;
  };
  std::string readFolder(const Located& folder, kel::List<kel::ListingEntry>& entries);

  std::vector<Server> servers_;
  ClientTimes times_;
  std::map<std::string, Located> known_;
};

}  // namespace tarn::client
