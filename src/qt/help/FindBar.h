#pragma once

#include <QLineEdit>
#include <QWidget>

#include "qt/help/HelpPage.h"

namespace zelvanor {

// Finds a text in the page above it. Hidden until it is opened.
class FindBar : public QWidget {
 public:
  FindBar(HelpPage& Page, QWidget* Parent);

  void Open();
  void FindNext(bool Backward);

 private:
  HelpPage& Page;
  QLineEdit* Field = new QLineEdit(this);
};

}  // namespace zelvanor
