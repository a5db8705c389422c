#include "host/window/hostwords.h"

#include <string_view>

#include "host/window/words.h"

namespace tarn::host {

namespace {

/// Keywords stay as they must be typed.
constexpr const char* kKnown[] = {
    toSay("Command:"),
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
};

}  // namespace

QString hostWords(const std::string& english) {
  for (const char* known : kKnown) {
    if (std::string_view(known) == english) return words(known);
  }
  return QString::fromStdString(english);
}

}  // namespace tarn::host
