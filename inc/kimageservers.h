// Image servers as they stand in the configuration.
#pragma once

#include "inc/kelapi.h"
#include "inc/kvalues.h"

namespace kel {

/// Configuration value: 1 when images are loaded from servers, anything else for local files.
constexpr const char* kLoadWayKey = "loadImgWay";
/// Configuration value: the servers, in the form of textOf().
constexpr const char* kImageServersKey = "imageServers";

/// One server: a web server with byte ranges over a folder of images.
struct ImageServer {
  DString name;  ///< as it is shown; no two servers share one
  DString host;  ///< a name or an IPv4 address
  int port = 80;
  bool isHttps = false;
  DString
      folder;  ///< on the server, its names divided by '/', without one at the ends; not encoded
  DString caFile;  ///< certificates that are trusted beside the system's; may be empty
};

/// The reason why the texts make no server, or empty. `address` is "HOST[:PORT][/FOLDER...]" after
/// "http://", "https://" or nothing (then http, and https at port 443). The name defaults to host
/// and port. `server` stays as it was when there is a reason.
KEL_API DString parseImageServer(const DString& name, const DString& address, const DString& caFile,
                                 ImageServer& server);
/// The address in the form that parseImageServer() takes, always with "http://" or "https://".
KEL_API DString addressOf(const ImageServer& server);

/// The configuration's text of servers: a line for each, of name, address and file of
/// certificates, a tab between them.
KEL_API DString textOf(const List<ImageServer>& servers);
/// The servers of such a text; lines that make no server are left out.
KEL_API List<ImageServer> imageServersOf(const DString& text);

}  // namespace kel
