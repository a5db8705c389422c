// What the image client asks of the framework. Silent where there is none.
#pragma once

#include <string>

#include "imageclient/serveraddress.h"
#include "inc/klisting.h"

namespace tarn::client {

void tellUser(const std::string& message);
bool userWantsToStop();
/// Adds to a counter of the current redraw.
void countForUser(const char* counter, long long amount);

/// The text of a configuration value; empty when there is none.
std::string configured(const char* key);

/// As IUserInterface::chooseFromListing; none where there is no user interface.
kel::StringList chooseFromListing(const kel::Listing& listing);

/// What the configuration says about a server besides its address.
ServerPlace withConfiguration(ServerPlace place);

}  // namespace tarn::client
