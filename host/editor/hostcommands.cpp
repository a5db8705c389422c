#include "host/editor/hostcommands.h"

#include <cmath>

#include "accmd.h"
#include "acedads.h"
#include "base/text.h"
#include "host/editor/autosave.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/editor/layoutcommands.h"
#include "host/editor/plotjob.h"
#include "host/editor/pointcloudcommand.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

constexpr const ACHAR* kGroup = ACRX_T("CADHOST");

HostApp& app() {
  return *HostApp::instance();
}

void showWindow(const ads_point a, const ads_point b) {
  GroundBox box;
  box.add(a[0], a[1]);
  box.add(b[0], b[1]);
  app().setView(fittedTo(app().view(), box, 0));
  app().regenerateForView();
}

/// "2x" is relative to the current view; a plain number is a view height. False: neither.
bool zoomScale(const std::string& text) {
  const bool relative = !text.empty() && (text.back() == 'x' || text.back() == 'X');
  const auto number = parseNumber(relative ? text.substr(0, text.size() - 1) : text);
  if (!number || *number <= 0) return false;
  ViewState view = app().view();
  view.height = relative ? view.height / *number : *number;
  app().setView(view);
  app().regenerateForView();
  return true;
}

void zoomCenter() {
  ads_point center = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nCenter point: "), center) != RTNORM) return;
  ViewState view = app().view();
  view.centerX = center[0];
  view.centerY = center[1];
  app().setView(view);
  acedInitGet(RSG_NONULL | RSG_OTHER, nullptr);
  ads_real height = 0;
  const int answer = acedGetReal(ACRX_T("\nHeight or magnification (nX): "), &height);
  ACHAR text[513] = {0};
  if (answer == RTKWORD) acedGetInput(text);
  const std::string scale = answer == RTKWORD ? toUtf8(text) : formatDouble(height);
  if (answer == RTCAN) return;
  if (!zoomScale(scale)) failCommand(app(), "A height above zero or a factor like 2x is needed.");
}

void zoomWindow() {
  ads_point a = {0, 0, 0};
  ads_point b = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nFirst corner: "), a) != RTNORM) return;
  if (acedGetCorner(a, ACRX_T("\nOpposite corner: "), b) == RTNORM) showWindow(a, b);
}

void zoomCommand() {
  acedInitGet(RSG_NONULL | RSG_OTHER, ACRX_T("All Center Extents Previous Window"));
  ads_point first = {0, 0, 0};
  const int answer = acedGetPoint(
      nullptr, ACRX_T("\nCorner of window, scale (nX) or [All/Center/Extents/Previous/Window]: "),
      first);
  if (answer == RTNORM) {
    ads_point second = {0, 0, 0};
    if (acedGetCorner(first, ACRX_T("\nOpposite corner: "), second) == RTNORM) {
      showWindow(first, second);
    }
    return;
  }
  if (answer != RTKWORD) return;
  ACHAR typed[513] = {0};
  acedGetInput(typed);
  const std::string word = toUtf8(typed);
  if (word == "Center") return zoomCenter();
  if (word == "Window") return zoomWindow();
  if (word == "Previous") {
    if (!app().zoomPrevious()) app().print("\nThere is no earlier view.\n");
    return;
  }
  if (word == "All" || word == "Extents") {
    if (!app().zoomExtents())
      app().print(
          "\nThere is nothing in the drawing to show: draw something, or add an image "
          "(addImage).\n");
    return;
  }
  if (!zoomScale(word)) failCommand(app(), "\"" + word + "\" is no option and no scale.");
}

void panCommand() {
  ads_point from = {0, 0, 0};
  ads_point to = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nBase point or displacement: "), from) != RTNORM) return;
  const int answer = acedGetPoint(from, ACRX_T("\nSecond point: "), to);
  if (answer == RTCAN) return;
  // Enter takes the first input as the displacement itself.
  const double dx = answer == RTNORM ? to[0] - from[0] : from[0];
  const double dy = answer == RTNORM ? to[1] - from[1] : from[1];
  ViewState view = app().view();
  view.centerX -= dx;
  view.centerY -= dy;
  app().setView(view);
  app().regenerateForView();
}

void regenCommand() {
  app().regenerate();
}

void twistCommand() {
  const Space& space = app().documents().current().space();
  if (!space.isTiled() && space.currentPort() == kPaperViewport) {
    return failCommand(app(), "A sheet cannot be twisted; enter a viewport first (MSPACE).");
  }
  ads_real angle = 0;
  if (acedGetAngle(nullptr, ACRX_T("\nTwist of the view in degrees: "), &angle) != RTNORM) return;
  ViewState view = app().view();
  view.twist = std::remainder(angle, 2 * 3.141592653589793);
  app().setView(view);
  app().regenerateForView();
}

/// Only the twist of the views that a camera can have.
void dviewCommand() {
  acedInitGet(0, ACRX_T("TWist eXit"));
  ACHAR word[513] = {0};
  const int answer = acedGetKword(ACRX_T("\nOption [TWist/eXit] <eXit>: "), word);
  if (answer == RTNORM && word[0] == 'T') twistCommand();
}

void listVariables() {
  SystemVariables& variables = app().variables();
  for (const std::string& name : variables.names()) {
    app().print("\n" + name + " " + formatValue(*variables.get(name)) +
                (variables.isReadOnly(name) ? " (read only)" : "") + "\n");
  }
}

void storeTyped(const std::string& name, const std::string& text) {
  const auto value = app().variables().parse(name, text);
  if (!value) return failCommand(app(), "\"" + text + "\" is no value for " + name + ".");
  resbuf buffer = {};
  if (const short* number = std::get_if<short>(&*value)) {
    buffer.restype = RTSHORT;
    buffer.resval.rint = *number;
  } else if (const double* real = std::get_if<double>(&*value)) {
    buffer.restype = RTREAL;
    buffer.resval.rreal = *real;
  } else if (const Point3* point = std::get_if<Point3>(&*value)) {
    buffer.restype = RT3DPOINT;
    buffer.resval.rpoint[0] = point->x;
    buffer.resval.rpoint[1] = point->y;
    buffer.resval.rpoint[2] = point->z;
  }
  std::wstring wide;
  if (const auto* string = std::get_if<std::string>(&*value)) {
    wide = toWide(*string);
    buffer.restype = RTSTR;
    buffer.resval.rstring = wide.data();
  }
  if (acedSetVar(toWide(name).c_str(), &buffer) != RTNORM) {
    failCommand(app(), "\"" + text + "\" is no value for " + name + ".");
  }
}

void setvarCommand() {
  ACHAR typed[513] = {0};
  std::string name = app().commands().takeNamedVariable();
  if (name.empty()) {
    if (acedGetString(0, ACRX_T("\nVariable name or ?: "), typed) != RTNORM) return;
    name = toUtf8(typed);
  }
  if (name.empty()) return;
  if (name == "?") return listVariables();
  SystemVariables& variables = app().variables();
  const auto value = variables.get(name);
  if (!value) return failCommand(app(), "Unknown variable \"" + name + "\". SETVAR ? lists them.");
  if (variables.isReadOnly(name)) {
    app().print("\n" + name + " = " + formatValue(*value) + " (read only)\n");
    return;
  }
  const bool isText = variables.typeOf(name) == VariableType::kString;
  const std::wstring prompt =
      toWide("\nNew value for " + name + " <" + formatValue(*value) + ">: ");
  if (acedGetString(isText ? 1 : 0, prompt.c_str(), typed) != RTNORM || typed[0] == 0) return;
  storeTyped(name, toUtf8(typed));
}

}  // namespace

void failCommand(HostApp& host, const std::string& message) {
  host.print("\n" + message + "\n");
  host.commands().failRunning();
}

void registerHostCommands() {
  struct Entry {
    const ACHAR* name;
    int flags;
    void (*function)();
  };
  constexpr int kOnSelection = ACRX_CMD_MODAL | ACRX_CMD_USEPICKSET;
  static const Entry kEntries[] = {
      {ACRX_T("APPLOAD"), ACRX_CMD_MODAL, &apploadCommand},
      {ACRX_T("ARX"), ACRX_CMD_MODAL, &arxCommand},
      {ACRX_T("CIRCLE"), ACRX_CMD_MODAL, &circleCommand},
      {ACRX_T("CLOSE"), ACRX_CMD_SESSION, &closeCommand},
      {ACRX_T("COPY"), kOnSelection, &copyCommand},
      {ACRX_T("COPYCLIP"), kOnSelection | ACRX_CMD_REDRAW, &copyclipCommand},
      {ACRX_T("DIST"), ACRX_CMD_TRANSPARENT, &distCommand},
      {ACRX_T("DVIEW"), ACRX_CMD_MODAL, &dviewCommand},
      {ACRX_T("DRAWORDER"), kOnSelection, &drawOrderCommand},
      {ACRX_T("BRINGTOFRONT"), kOnSelection, &bringToFrontCommand},
      {ACRX_T("SENDTOBACK"), kOnSelection, &sendToBackCommand},
      {ACRX_T("ERASE"), kOnSelection, &eraseCommand},
      {ACRX_T("GRIP_STRETCH"), kOnSelection | ACRX_CMD_REDRAW, &gripStretchCommand},
      {ACRX_T("HELP"), ACRX_CMD_TRANSPARENT, &helpCommand},
      {ACRX_T("ID"), ACRX_CMD_TRANSPARENT, &idCommand},
      {ACRX_T("LAYER"), ACRX_CMD_MODAL, &layerCommand},
      {ACRX_T("LAYOUT"), ACRX_CMD_MODAL, &layoutCommand},
      {ACRX_T("LINE"), ACRX_CMD_MODAL, &lineCommand},
      {ACRX_T("LIST"), kOnSelection | ACRX_CMD_REDRAW, &listCommand},
      {ACRX_T("MOVE"), kOnSelection, &moveCommand},
      {ACRX_T("MIRROR"), kOnSelection, &mirrorCommand},
      {ACRX_T("MREDO"), ACRX_CMD_MODAL, &multipleRedoCommand},
      {ACRX_T("MSPACE"), ACRX_CMD_MODAL, &mspaceCommand},
      {ACRX_T("MVIEW"), ACRX_CMD_MODAL, &mviewCommand},
      {ACRX_T("NEW"), ACRX_CMD_SESSION, &newCommand},
      {ACRX_T("OOPS"), ACRX_CMD_MODAL, &oopsCommand},
      {ACRX_T("OPEN"), ACRX_CMD_SESSION, &openCommand},
      {ACRX_T("PAN"), ACRX_CMD_TRANSPARENT, &panCommand},
      {ACRX_T("PASTECLIP"), ACRX_CMD_MODAL, &pasteclipCommand},
      {ACRX_T("PLINE"), ACRX_CMD_MODAL, &plineCommand},
      {ACRX_T("PNGOUT"), ACRX_CMD_MODAL, &pngoutCommand},
      {ACRX_T("PLOT"), ACRX_CMD_MODAL, &plotCommand},
      {ACRX_T("PSPACE"), ACRX_CMD_MODAL, &pspaceCommand},
      {ACRX_T("QUIT"), ACRX_CMD_SESSION, &quitCommand},
      {ACRX_T("RECOVER"), ACRX_CMD_SESSION, &recoverCommand},
      {ACRX_T("REDO"), ACRX_CMD_MODAL, &redoCommand},
      {ACRX_T("REGEN"), ACRX_CMD_MODAL, &regenCommand},
      {ACRX_T("ROTATE"), kOnSelection, &rotateCommand},
      {ACRX_T("SAVE"), ACRX_CMD_MODAL, &saveCommand},
      {ACRX_T("SAVEAS"), ACRX_CMD_MODAL, &saveAsCommand},
      {ACRX_T("SCALE"), kOnSelection, &scaleCommand},
      {ACRX_T("SCRIPT"), ACRX_CMD_MODAL, &scriptCommand},
      {ACRX_T("SETVAR"), ACRX_CMD_TRANSPARENT, &setvarCommand},
      {ACRX_T("TEXT"), ACRX_CMD_MODAL, &textCommand},
      {ACRX_T("TWIST"), ACRX_CMD_TRANSPARENT, &twistCommand},
      {ACRX_T("U"), ACRX_CMD_MODAL, &uCommand},
      {ACRX_T("UICLICK"), ACRX_CMD_SESSION, &uiclickCommand},
      {ACRX_T("UNDO"), ACRX_CMD_MODAL, &undoCommand},
      {ACRX_T("VIEW"), ACRX_CMD_MODAL, &viewCommand},
      {ACRX_T("ZOOM"), ACRX_CMD_TRANSPARENT, &zoomCommand},
  };
  for (const Entry& entry : kEntries) {
    acedRegCmds->addCommand(kGroup, entry.name, entry.name, entry.flags, entry.function);
  }
  addPointCloudCommand(kGroup);
}

void removeHostCommands() {
  acedRegCmds->removeGroup(kGroup);
}

}  // namespace tarn::host
