// HELP: the commands by what they are for.
#include <algorithm>
#include <set>

#include "base/text.h"
#include "host/editor/aliases.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

/// Names between blanks, of the host and of the modules that are usually there.
constexpr struct {
  const char* title;
  const char* names;
} kGroups[] = {
    {"Files", "NEW OPEN SAVE SAVEAS CLOSE RECOVER PLOT PNGOUT QUIT"},
    {"Look", "ZOOM PAN TWIST DVIEW VIEW REGEN"},
    {"Images",
     "addImage OpenImageList IMAGESERVER rectifyImage ImageConversion SetImageClarityRatio "
     "SetImageOffsetRatio EraseInvalidImage"},
    {"Point clouds", "loadCloud -POINTCLOUDATTACH"},
    {"Draw", "LINE PLINE CIRCLE TEXT"},
    {"Change",
     "MOVE COPY ROTATE SCALE ERASE OOPS COPYCLIP PASTECLIP DRAWORDER BRINGTOFRONT SENDTOBACK U "
     "UNDO REDO MREDO"},
    {"Layers, sheets", "LAYER LAYOUT MVIEW MSPACE PSPACE"},
    {"Ask", "ID DIST LIST"},
    {"Program", "HELP SETVAR SCRIPT APPLOAD ARX"},
};

/// Steps of scripts, of the mouse and of the module's makers.
constexpr const char* kNotForUsers =
    "GRIP_STRETCH UICLICK AddImage DelImage DrawImage ShowImage IOTEST testimage tarnimage "
    "_image_List _image_ShowImage";

constexpr const char* kHints =
    "\nTab completes a name, Enter repeats the last command, Escape leaves any.\n"
    "'ZOOM and 'PAN work while another command waits.\n"
    "Points: 3,4 or @3,4 from the last one or @5<90; END, MID, CEN, INT, NEA take one of an "
    "entity.\n"
    "A variable's name shows and changes it. In the window F2 shows all of this.\n";

/// "MOVE (M)".
std::string withAlias(const std::string& name) {
  for (const Alias& one : aliases()) {
    if (equalsIgnoreCase(std::string_view(one.command), name)) return name + " (" + one.alias + ")";
  }
  return name;
}

std::string lineOf(const std::string& title, const std::vector<std::string>& names) {
  std::string line;
  for (const std::string& name : names) line += (line.empty() ? "" : ", ") + withAlias(name);
  return line.empty() ? line : "\n" + title + ": " + line;
}

}  // namespace

void helpCommand() {
  HostApp& app = *HostApp::instance();
  const std::vector<std::string> all = app.commandsBeginningWith("");
  std::set<std::string> left(all.begin(), all.end());
  for (const std::string& name : split(kNotForUsers, ' ')) left.erase(name);
  std::string text;
  for (const auto& group : kGroups) {
    std::vector<std::string> present;
    for (const std::string& name : split(group.names, ' ')) {
      if (left.erase(name) != 0) present.push_back(name);
    }
    text += lineOf(group.title, present);
  }
  app.print(text + lineOf("Others", {left.begin(), left.end()}) + kHints);
}

}  // namespace tarn::host
