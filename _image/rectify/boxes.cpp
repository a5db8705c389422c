#include "_image/rectify/boxes.h"

#include <QMessageBox>

#include "acedads.h"
#include "afxwin.h"

namespace tarn::image {
namespace {

bool isAskedByLine() {
  resbuf value{};
  return acedGetVar(L"FILEDIA", &value) == RTNORM && value.resval.rint == 0;
}

}  // namespace

void informationBox(QWidget* parent, const QString& title, const QString& text) {
  if (isAskedByLine()) {
    AfxMessageBox(text.toStdWString().c_str(), MB_OK | MB_ICONINFORMATION);
  } else {
    QMessageBox::information(parent, title, text);
  }
}

void warningBox(QWidget* parent, const QString& title, const QString& text) {
  if (isAskedByLine()) {
    AfxMessageBox(text.toStdWString().c_str(), MB_OK | MB_ICONWARNING);
  } else {
    QMessageBox::warning(parent, title, text);
  }
}

bool questionBox(QWidget* parent, const QString& title, const QString& text) {
  if (isAskedByLine()) {
    return AfxMessageBox(text.toStdWString().c_str(), MB_YESNO | MB_ICONQUESTION) == IDYES;
  }
  return QMessageBox::question(parent, title, text, QMessageBox::Yes | QMessageBox::No) ==
         QMessageBox::Yes;
}

void plainBox(const QString& text) {
  AfxMessageBox(text.toStdWString().c_str());
}

}  // namespace tarn::image
