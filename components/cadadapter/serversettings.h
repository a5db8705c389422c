// The command by which the user says where images are loaded from.
#pragma once

namespace kel {

/// IMAGESERVER: the load way and the image servers, kept in the configuration.
void registerServerCommand();
void removeServerCommand();

}  // namespace kel
