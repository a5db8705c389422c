// Choosing from a listing on the command line.
#pragma once

#include <string>
#include <vector>

#include "tarnlisting.h"

namespace tarn::host {

class HostApp;

/// Prints what stands in a folder and asks, until an empty line, for a number, a name (also one
/// that leads through folders, "A/B.tif"), ".." or a text that is looked for below the folder.
/// The keys of the images chosen; none when the input is cancelled.
std::vector<std::string> chooseFromListingOnCommandLine(HostApp& app, const TarnListing& listing);

}  // namespace tarn::host
