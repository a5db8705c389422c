// What happens at the start of the program, with and without a window.
#pragma once

#include <string>

#include "app/options.h"
#include "base/result.h"

namespace tarn::host {
class HostApp;
}  // namespace tarn::host

namespace tarn::app {

/// The folder for settings and cache: that of the options, else the user's data folder.
std::string profileFolder(const Options& options);

/// Makes the profile's folders and, at the first start, an empty configuration database.
Status prepareProfile(const std::string& folder);

/// Until the user chooses one, the program and its modules speak the system's language: Chinese in
/// a Chinese locale, else English.
void speakSystemLanguage(host::HostApp& app);

/// Loads the CAD adapter and the image module from the program's folder; a missing one is reported
/// on the command line and left out.
void loadModules(host::HostApp& app, const std::string& programFolder);

/// Ends the modules, last first. Call it before the host goes.
void unloadModules();

/// Drawings, view, statistics, and the images of the command line. False when a drawing could not
/// be opened or an image not be added; each has left a message.
bool startDrawing(host::HostApp& app, const Options& options);

/// What the command line asks for at the end: the drawing saved, the picture written. False, after
/// a message, when one failed.
bool endDrawing(host::HostApp& app, const Options& options);

/// The program with a window; returns its exit code.
int runWindow(const Options& options, int& argc, char** argv);

/// The program without one.
int runHeadless(const Options& options, int& argc, char** argv);

}  // namespace tarn::app
