// Texts that come from the editor, in the words of the window: prompts, titles, answers.
#pragma once

#include <QString>
#include <string>

namespace tarn::host {

/// The text in the window's language; as it is when it is none of those known here (a module's
/// own, one with a name in it).
QString hostWords(const std::string& english);

}  // namespace tarn::host
