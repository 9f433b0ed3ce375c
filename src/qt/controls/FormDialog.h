#pragma once

#include <QDialog>
#include <QEventLoop>

#include "platform/Form.h"

namespace zelvanor {

// The window of a form other than the main one.
class FormDialog : public QDialog {
 public:
  FormDialog(Form& Target, QWidget* Parent);

  // Follows the form from now on. After its widgets have been laid out. A form that can use room may be resized, and
  // keeps the size that its user gives it.
  void BindForm(bool CanUseRoom);

  // Serves events until the form is hidden.
  void Run();

  // Escape and the window's closing.
  void reject() override;

 protected:
  void resizeEvent(QResizeEvent* Resize) override;

 private:
  void ShowForm(Property What);
  void StartAtFirstField();
  void KeepSize();

  Form& Target;
  QEventLoop* Loop = nullptr;  // while it is shown
  bool Resizable = false;
  QSize OwnSize;  // that it has without the user's doing
};

}  // namespace zelvanor
