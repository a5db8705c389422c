// Texts of the window in the language of its user.
#pragma once

#include <QString>
#include <string>

class QApplication;

namespace tarn::host {

class Profile;

enum class Language { kEnglish, kChinese };

/// What the user chose by LOCALE; before any choice that of the system.
Language languageOf(const Profile& profile);

/// Texts asked for from now on, and the toolkit's own, are in this language.
void speak(QApplication& application, Language language);

/// The text in the window's language, the English one where none is known.
QString words(const char* english);

/// Marks a text that words() will be given later.
constexpr const char* toSay(const char* english) {
  return english;
}

}  // namespace tarn::host
