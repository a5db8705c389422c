// The host's own commands.
#pragma once

#include <string>

#include "host/editor/selectionmemory.h"

namespace tarn::host {

class HostApp;

/// Enters and removes the command group "CADHOST".
void registerHostCommands();
void removeHostCommands();

/// Prints the sentence and marks the running command as failed.
void failCommand(HostApp& app, const std::string& message);

/// Entities for the running command: what was selected before it, or asked for now. False when
/// there are none.
bool selectForCommand(EntityIds& ids);

void circleCommand();
void viewCommand();
void lineCommand();
void plineCommand();
void textCommand();
void layerCommand();

void copyclipCommand();
void pasteclipCommand();

void distCommand();
void drawOrderCommand();
void bringToFrontCommand();
void sendToBackCommand();
void helpCommand();
void idCommand();
void listCommand();

void apploadCommand();
void arxCommand();
void pngoutCommand();
void scriptCommand();

void uiclickCommand();

void copyCommand();
void openCommand();
void saveCommand();
void saveAsCommand();
void newCommand();
void closeCommand();
void quitCommand();
void eraseCommand();
void gripStretchCommand();
void mirrorCommand();
void moveCommand();
void oopsCommand();
void rotateCommand();
void scaleCommand();

void uCommand();
void undoCommand();
void redoCommand();
void multipleRedoCommand();

}  // namespace tarn::host
