// A form as a dialog.
#pragma once

#include <QDialog>
#include <functional>
#include <vector>

#include "tarnform.h"

class QFormLayout;
class QLabel;
class QVBoxLayout;

namespace tarn::host {

class FormDialog : public QDialog {
 public:
  /// `form` must outlive the dialog; its values are set when the dialog is accepted.
  FormDialog(QWidget* parent, TarnForm& form);

  void accept() override;

 private:
  void addField(const TarnFormField& field, QVBoxLayout& column, QFormLayout& rows);
  void addFiles(const TarnFormField& field, QVBoxLayout& column);
  void addTable(const TarnFormField& field, QVBoxLayout& column);
  QWidget* makeFolder(const TarnFormField& field);

  TarnForm& form_;
  /// Writes what a field's widgets hold into the field; one a field.
  std::vector<std::function<void(TarnFormField&)>> readers_;
  QLabel* reason_;  ///< belongs to the dialog
};

}  // namespace tarn::host
