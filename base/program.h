// What a program learns from the system that starts it, and where its text goes.
#pragma once

#include <string>
#include <vector>

namespace tarn {

/// The words of the command line behind the program's name, in UTF-8. `count` and `words` are those
/// of main().
std::vector<std::string> programArguments(int count, char** words);

/// Value of an environment variable in UTF-8; empty when it is not set.
std::string environmentValue(const char* name);

/// From now on the standard streams carry bytes as they are: UTF-8, lines ended by '\n' alone. For
/// programs, once at their start.
void prepareStandardStreams();

bool standardOutputIsTerminal();

/// Where the system keeps its fonts, for what does not find them itself; empty where that is
/// nothing.
std::string systemFontFolder();

/// True when windows can be shown.
bool hasDisplay();

/// Closes a console window that was opened for this program alone. For programs with a window.
void closeOwnConsole();

}  // namespace tarn
