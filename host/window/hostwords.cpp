#include "host/window/hostwords.h"

#include <optional>
#include <string_view>

#include "host/window/words.h"

namespace tarn::host {

namespace {

/// Keywords stay as they must be typed.
constexpr const char* kKnown[] = {
    toSay("Command:"),
    toSay("Enter object ordering option [Above objects/Under objects/Front/Back] <Back>:"),
    toSay("Erase the originals? [Yes/No] <No>:"),
    toSay("First point of the mirror:"),
    toSay("Second point of the mirror:"),
    toSay("Base point or [Displacement] <Displacement>:"),
    toSay("Base point or displacement:"),
    toSay("Base point:"),
    toSay("Center point:"),
    toSay("Radius or [Diameter]:"),
    toSay("Colour, 1 to 255:"),
    toSay("Corner of the viewport or [ON/OFF/Fit]:"),
    toSay("Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]:"),
    toSay("Displacement:"),
    toSay("First corner:"),
    toSay("First point:"),
    toSay("Height or magnification (nX):"),
    toSay("Height <2.5>:"),
    toSay("Insertion point <0,0>:"),
    toSay("Insertion point:"),
    toSay("Layout [?/Delete/New/Rename/Set] <Set>:"),
    toSay("Module to unload:"),
    toSay("Modules [?/Load/Unload]:"),
    toSay("Name of the layer to be current:"),
    toSay("Name of the new layer:"),
    toSay("Names of the layers, or *:"),
    toSay("New angle:"),
    toSay("New length:"),
    toSay("Next point or [Arc/Close/Line/Undo]:"),
    toSay("Next point or [Close/Undo]:"),
    toSay("Next point or [Undo]:"),
    toSay("Number of steps to undo or [BAck/BEgin/Control/End/Mark] <1>:"),
    toSay("Number of steps to redo or [All/Last]:"),
    toSay("Opposite corner:"),
    toSay("Point:"),
    toSay("Rotation angle <0>:"),
    toSay("Rotation angle or [Reference]:"),
    toSay("Scale factor or [Reference]:"),
    toSay("Second point or <use first point as displacement>:"),
    toSay("Second point:"),
    toSay("Select objects:"),
    toSay("Remove objects:"),
    toSay("Start point of the text:"),
    toSay("Stretch to point or [Base/eXit]:"),
    toSay("Stretch to point or [eXit]:"),
    toSay("Text:"),
    toSay("Twist of the view in degrees:"),
    toSay("Variable name or ?:"),
    toSay("View [?/Delete/Restore/Save]:"),
    toSay("of"),
    toSay("Open drawing"),
    toSay("Save drawing as"),
    toSay("Load a module"),
    toSay("Script"),
    toSay("Save"),
    toSay("Discard"),
    toSay("Cancel"),
    toSay("Yes"),
    toSay("No"),
    toSay("Version of the drawing"),
    toSay("Open"),
    toSay("Later"),
    toSay("%1 has changes that are not saved."),
    toSay("%1 was changed by another program since it was opened. Replace it?"),
    toSay("%1 Save it as a drawing of R2000?"),
    toSay("%1 exists. Replace it?"),
    toSay("The program ended before changes of %1 were saved; there is an automatic copy."),
    toSay("The program ended before changes of %1 were saved; there are automatic copies."),
    toSay("Drawings"),
    toSay("Images"),
    toSay("%1 drawing"),
    toSay("PNG picture"),
    toSay("Plot"),
    toSay("Plot to"),
    toSay("The plot needs a file name."),
    toSay("There is nothing to plot: draw something first, or choose another area."),
    toSay("The area to plot is empty: choose another one."),
    toSay("The area to plot falls outside the paper: centre it, or choose another scale."),
    toSay("%1 is no scale: two numbers above zero as 1=500, or Fit."),
    // The form of image servers.
    toSay("Image servers"),
    toSay("Images are loaded from"),
    toSay("Image server"),
    toSay("Local files"),
    toSay("Servers (a name and password are taken from the environment or a netrc file)"),
    toSay("Name"),
    toSay("Address"),
    toSay("File of certificates"),
    toSay("\"%1\": two servers have this name."),
    toSay("%1: there is no such file of certificates."),
    toSay("To load images from a server, add one to the list."),
    toSay("A server's name, address and file hold no control characters."),
    toSay("The address of a server is missing."),
    toSay("A user name or password does not belong into the address of a server."),
    toSay("%1: only http and https are possible."),
    toSay("%1: this is no HOST or HOST:PORT."),
    toSay("%1: a port is a number from 1 to 65535."),
    toSay("%1: port 443 is for https only."),
    toSay("%1: a folder's names hold no \":\", \".\" or \"..\"."),
    toSay("Image servers: saved."),
};

/// What stands in the place of "%1" when the text is of that form.
std::optional<std::string> middleOf(std::string_view form, std::string_view text) {
  const size_t place = form.find("%1");
  if (place == std::string_view::npos) return std::nullopt;
  const std::string_view before = form.substr(0, place);
  const std::string_view after = form.substr(place + 2);
  if (text.size() < before.size() + after.size() || text.substr(0, before.size()) != before ||
      text.substr(text.size() - after.size()) != after) {
    return std::nullopt;
  }
  return std::string(text.substr(before.size(), text.size() - before.size() - after.size()));
}

}  // namespace

QString hostWords(const std::string& english) {
  for (const char* known : kKnown) {
    if (std::string_view(known) == english) return words(known);
    if (const auto middle = middleOf(known, english)) {
      return words(known).arg(QString::fromStdString(*middle));
    }
  }
  return QString::fromStdString(english);
}

}  // namespace tarn::host
