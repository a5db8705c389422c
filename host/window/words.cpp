#include "host/window/words.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "host/editor/profile.h"

static void loadTranslations() {
  Q_INIT_RESOURCE(translations);
}

namespace tarn::host {

namespace {

/// Of the application object, which ends before static objects do.
QTranslator& translatorOf(QApplication& application, const QString& name) {
  if (auto* made = application.findChild<QTranslator*>(name)) return *made;
  auto* made = new QTranslator(&application);
  made->setObjectName(name);
  return *made;
}

}  // namespace

Language languageOf(const Profile& profile) {
  const std::string& chosen = profile.chosenLocale();
  if (!chosen.empty()) return chosen == "CHS" ? Language::kChinese : Language::kEnglish;
  return QLocale::system().language() == QLocale::Chinese ? Language::kChinese : Language::kEnglish;
}

void speak(QApplication& application, Language language) {
  loadTranslations();
  const auto use = [&](const QString& name, const QString& folder) {
    QTranslator& translator = translatorOf(application, name);
    QCoreApplication::removeTranslator(&translator);
    if (language == Language::kChinese && translator.load(name, folder)) {
      QCoreApplication::installTranslator(&translator);
    }
  };
  use("qtbase_zh_CN", QLibraryInfo::location(QLibraryInfo::TranslationsPath));
  use("window_zh", ":/translations");
}

QString words(const char* english) {
  return QCoreApplication::translate("Window", english);
}

}  // namespace tarn::host
