// The host's own commands.
#pragma once

#include <string>

namespace tarn::host {

class HostApp;

/// Enters and removes the command group "CADHOST".
void registerHostCommands();
void removeHostCommands();

/// Prints the sentence and marks the running command as failed.
void failCommand(HostApp& app, const std::string& message);

void lineCommand();
void eraseCommand();

void uCommand();
void undoCommand();
void redoCommand();
void multipleRedoCommand();

}  // namespace tarn::host
